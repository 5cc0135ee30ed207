A board library's answers recorded, and replayed anywhere. For each
generation's default board, its largest, and a board with faults and
misbehaving answers, the replay publishes the same document, reads every
item to the same value and status, and makes the module print the same:

  $ cat > odd.json <<'JSON'
  > {"board": {"name": "VB-ODD", "revision": "r\u00e9v", "serial_number": "SN-0042"},
  >  "sensors": {"voltage": [{"index": 0, "value": 1.2}, {"index": 1, "value": 3.3}]},
  >  "gpio": [{"pin": 0, "input": true, "output": true}],
  >  "backlight": [{"panel": 0, "brightness": 50, "frequency": 200}],
  >  "faults": [{"function": "VoraBoardGetStringA", "arg": 1, "unterminated": true},
  >             {"function": "VoraBoardGetStringA", "arg": 2, "length": "0xFFFFFFFF"},
  >             {"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0x1234"},
  >             {"function": "VoraVgaGetFrequency", "status": "0x4321"},
  >             {"function": "VoraGPIOGetCaps", "value": "0xFFFFFFFF"},
  >             {"function": "VoraDllGetVersion", "value": 7},
  >             {"function": "VoraCoreGetBIOSVersion", "length": 0},
  >             {"function": "EApiBoardGetStringA", "arg": 1, "unterminated": true},
  >             {"function": "EApiHWMGetCaps", "arg": "0x21004", "value": 2}]}
  > JSON
  $ seen() {
  >   voractl "$@" caps > caps.json
  >   voractl "$@" list --json > list.json 2> messages.txt
  >   cat caps.json list.json messages.txt | md5sum
  > }
  $ for generation in 4 3 eapi; do
  >   for board in '' "=$VTEST_SOURCE_DIR/sim/profiles/$generation-largest.json" =odd.json; do
  >     [ $generation = 4 ] && board=${board/4-largest/vora4-largest}
  >     [ $generation = 3 ] && board=${board/3-largest/vora3-largest}
  >     voractl --sim$board --sim-generation $generation --quiet record --output recording.json 2> /dev/null
  >     original=$(seen --sim$board --sim-generation $generation)
  >     replayed=$(seen --sim=recording.json)
  >     [ "$original" = "$replayed" ] && echo "$generation ${board##*/}: the same" || echo "$generation ${board##*/}: differs"
  >   done
  > done
  4 : the same
  4 vora4-largest.json: the same
  4 =odd.json: the same
  3 : the same
  3 vora3-largest.json: the same
  3 =odd.json: the same
  eapi : the same
  eapi eapi-largest.json: the same
  eapi =odd.json: the same

A recording is one call a line, its answers as the library gave them:

  $ voractl --sim=odd.json --quiet record --output odd-recording.json 2> /dev/null
  [1]
  $ grep -c '"function"' odd-recording.json
  503
  $ grep -E '"id":(1|2|33)[,}].*GetStringA|GetStringA.*"id":(1|2)[,}]' odd-recording.json | cut -c 1-120
  {"function":"VoraBoardGetStringA","in":{"id":1,"length":64},"status":0,"out":{"buffer":"VB-ODDVB-ODDVB-ODDVB-ODDVB-ODDVB
  {"function":"VoraBoardGetStringA","in":{"id":2,"length":64},"status":0,"out":{"buffer":"r\xc3\xa9v","length":4294967295}}, (esc)

A hand-edited recording changes exactly what was edited: one sensor's answer
and one call made to fail.

  $ voractl --sim --quiet record --output edited.json
  $ sed -i -e 's/\("in":{"id":135168},"status":0,"out":{"words":\)\[1050\]/\1[1234]/' \
  >        -e 's/\("function":"VoraGPIOGetLevel","in":{"id":3,"mask":1},"status":\)0/\14660/' edited.json
  $ voractl --sim list > before.txt; voractl --sim=edited.json --quiet list > after.txt
  voractl: cannot read GPIO/DO1/Level: error (0xFFFFF0FF)
  [1]
  $ diff before.txt after.txt | sed -n 's/^</was:/p; s/^>/now:/p' | sed 's/  */ /g'
  was: 0x1020201 VCORE 1.050 V (min = 0.000 V, max = 50.000 V) read-only
  now: 0x1020201 VCORE 1.234 V (min = 0.000 V, max = 50.000 V) read-only
  was: 3 DO1 out high fixed direction
  now: 3 DO1 out N/A fixed direction

A write the recording did not see is accepted and read back; a call it
lacks answers "not supported", named once:

  $ voractl --sim=edited.json set Brightness=70 && voractl --sim=edited.json get Brightness
  70

  $ grep -v '"function":"VoraGPIOGetLevel","in":{"id":5,' edited.json > lacking.json
  $ voractl --sim=lacking.json get GPIO5 2>&1
  vorasim: libVORA-4.00: the recording has no answer to VoraGPIOGetLevel {"id":5,"mask":1}
  module: VORADrv get value: function:GPIO get value failed fffff0ff
  voractl: cannot read GPIO/GPIO5/Level: error (0xFFFFF0FF)
  GPIO/GPIO5/Dir: out
  GPIO/GPIO5/Level: N/A
  [1]

--redact leaves nothing that names the board's site: serial number,
customer strings and their labels, the management network's names and
addresses, each replaced by a placeholder of the same length and form:

  $ voractl --sim --quiet record --redact --output redacted.json
  $ grep -c -E 'VB4410-2291|LINE3-CELL7|Plant 2|Maintenance|Asset tag|Site|Owner|vb4410-bmc|mgmt.plant2|"words":\[(0,11,171,18,52,95|192,168,10)' redacted.json
  0
  [1]
  $ voractl --sim=redacted.json --quiet get 'Board serial number' 0x1010411 0x1010412 'Network host name' 'Network MAC address' 'Modified device IP' 'Modified sub mask' 'Server IP/Port'
  Platform Information/Board serial number: XX0000-0000-00001
  Platform Information/Xxxxx xxx: XXXX0-XXXX2
  Platform Information/Xxxx: Xxxxx 4, Xxxx X
  OOB-Network/OOBNetwork0/Network host name: xx0008-xxx
  OOB-Network/OOBNetwork0/Network MAC address: 00:00:5E:00:53:01
  OOB-Network/OOBNetwork0/Modified device IP: 192.0.2.1
  OOB-Network/OOBNetwork0/Modified sub mask: 255.255.255.0
  OOB-Network/OOBNetwork0/Server IP/Port: 192.0.2.3:623
  $ voractl --sim --quiet caps | wc -c; voractl --sim=redacted.json --quiet caps | wc -c
  15052
  15029

A recording that cannot be replayed is refused, naming its place:

  $ bad() { printf '%s' "$1" > bad.json; voractl --sim=bad.json get 'Board name'; }
  $ bad '{"format": "voradrv-recording", "version": 1, "library": {"generation": "4"}, "calls": ['
  voractl: the recording */record.t/bad.json cannot be replayed: line 1, column 88: ']' expected near end of file (glob)
  [1]
  $ bad '{"format": "voradrv-recording", "version": 2, "library": {"generation": "4"}, "calls": []}'
  voractl: the recording */record.t/bad.json cannot be replayed: version: this simulator reads recordings of version 1 (glob)
  [1]
  $ bad '{"format": "voradrv-recording", "version": 1, "library": {"generation": "4"}, "calls": [{"function": "VoraLibInitialize", "in": {}, "status": "0", "out": {}}]}'
  voractl: the recording */record.t/bad.json cannot be replayed: calls[0].status: expected a number (glob)
  [1]
  $ bad '{"format": "voradrv-recording", "version": 1, "library": {"generation": "4"}, "calls": [{"function": "F", "in": {"id": {"deep": [[1]]}}, "out": {}}]}'
  voractl: the recording */record.t/bad.json cannot be replayed: calls[0].in.id: expected a number, a text, null or up to 64 numbers (glob)
  [1]
  $ bad "{\"format\": \"voradrv-recording\", \"version\": 1, \"library\": {\"generation\": \"4\"}, \"calls\": [{\"function\": \"VoraBoardGetStringA\", \"in\": {\"id\": 1, \"length\": 64}, \"status\": 0, \"out\": {\"buffer\": \"$(printf 'x%.0s' $(seq 65))\"}}]}"
  voractl: the recording */record.t/bad.json cannot be replayed: calls[0].out.buffer: longer than the call's buffer (64 bytes) (glob)
  [1]
  $ bad "{\"format\": \"voradrv-recording\", \"calls\": $(printf '%.0s[' $(seq 3000))$(printf '%.0s]' $(seq 3000))}"
  voractl: the recording */record.t/bad.json cannot be replayed: line 1, column 2089: maximum parsing depth reached near '[' (glob)
  [1]
  $ VORA_SIM_BOARD=bad.json run-simulated -- voractl --quiet get 'Board name' 2>&1 | head -1
  vorasim: libVORA-4.00: bad.json: line 1, column 2089: maximum parsing depth reached near '['

--trace prints every call the module makes into the library as it returns,
with what went in and came out, on every generation, in front of a real
board library as of the simulated one:

  $ for generation in 4 3 eapi; do
  >   voractl --sim --sim-generation $generation --quiet --trace get 'Board name' 2> trace.txt > /dev/null
  >   grep -c . trace.txt; grep -m 3 -E 'Init|Name|StringA\(id=0x1' trace.txt | sed 's/ <[0-9.]*>$//'
  > done
  210
  VoraLibInitialize() = 0x0
  VoraBoardGetStringA(id=0x1, length=0x40) = 0x0 -> buffer="VB-4410", length=0x7
  VoraBoardGetStringA(id=0x10, length=0x40) = 0x0 -> buffer="LINE3-CELL7", length=0xB
  134
  VoraDllInit() = 0x1
  VoraCoreGetPlatformName(buffer=NULL, length=0x1) = 0x1 -> length=0x8
  VoraCoreGetPlatformName(length=0x10) = 0x1 -> buffer="VB-3200", length=0x8
  105
  EApiLibInitialize() = 0x0
  EApiBoardGetStringA(id=0x1, length=0x20) = 0x0 -> buffer="VB-2150\n", length=0x8
  EApiBoardGetStringA(id=0x1, length=0x40) = 0x0 -> buffer="VB-2150\n", length=0x8
