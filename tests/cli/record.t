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

--redact keeps only what identifies no board or site (the README's
allow-list) and replaces every other text, and every word of the management
network's values, whatever a terminator says. Replayed, a redacted recording
publishes the same items with the same statuses: on each generation's
default and largest board, on a board with an identifying text in every
field (and words hidden after a host name's end, a second MAC, an IPv6
address), and on Embedded API boards whose serial number is a text the
module treats apart. No original text, nor four characters of one, is left:

  $ cat > site.json <<'JSON'
  > {"board": {"manufacturer": "Qwertz Automation", "name": "QZ-88", "serial_number": "QZSN-7731-ZULU\n",
  >   "customer_strings": [{"label": "Plantcode", "value": "Krefeld-Halle7"}, {"label": "Custodian", "value": "Ingrid Vogt"}]},
  >  "sensors": {"voltage": [{"index": 0, "name": "Vcore", "value": 1.1}]},
  >  "gpio": [{"pin": 0, "name": "Kiln door interlock", "input": true, "output": false}],
  >  "backlight": [{"panel": 0, "name": "LVDS", "brightness": 50, "enable": true}],
  >  "network": {"control": 1, "status": 3, "mac": "02:1A:2B:3C:4D:5E", "server_domain_name": "ops.krefeld.example",
  >   "modified": {"ip": "10.77.31.9", "mask": "255.255.0.0", "dns": "10.77.31.2", "gateway": "10.77.31.1"},
  >   "server": "10.77.31.1:623", "words": {"0x12002": [107, 114, 101, 102, 98, 109, 99, 0, 104, 105, 100, 101],
  >   "0x12003": [2, 26, 43, 60, 77, 94, 2, 26, 43, 60, 77, 95], "0x12008": [10, 77, 31, 9, 8193, 3512, 4660]}}}
  > JSON
  $ secrets="QZSN-7731-ZULU Plantcode Krefeld-Halle7 Custodian Ingrid Kiln krefbmc hidde ops.krefeld
  >   2,26,43,60,77,9 10,77,31, 8193,3512 SNEAKY-SERIAL"
  $ items() { voractl "$@" --quiet list --json 2> /dev/null |
  >   python3 -c 'import json, sys; [print(r["id"], r["access"], r.get("error")) for r in json.load(sys.stdin)]'; }
  $ left() { python3 -c 'import sys; t = open(sys.argv[1]).read()
  > print(*sorted({s[i:i + 4] for s in sys.argv[2:] for i in range(len(s) - 3) if s[i:i + 4] in t}) or ["clean"])' "$@"; }
  $ for serial in Unknown '' SNEAKY-SERIAL-0123456789-0123456789 'SNEAKY-SERIAL\n'; do
  >   python3 -c 'import json, sys; b = json.load(open("site.json")); b["board"]["serial_number"] = sys.argv[1]
  > json.dump(b, open("eapi-%s.json" % sys.argv[2], "w"))' "${serial/\\n/$'\n'}" $((++n))
  > done
  $ profiles=$VTEST_SOURCE_DIR/sim/profiles
  $ for board in 4 4=$profiles/vora4-largest.json 4=site.json 3 3=$profiles/vora3-largest.json 3=site.json \
  >     eapi eapi=$profiles/eapi-largest.json eapi=site.json eapi=eapi-1.json eapi=eapi-2.json \
  >     eapi=eapi-3.json eapi=eapi-4.json; do
  >   generation=${board%%=*} sim=--sim${board#${board%%=*}}
  >   voractl $sim --sim-generation $generation --quiet record --redact --output redacted.json 2> /dev/null
  >   cmp -s <(items $sim --sim-generation $generation) <(items --sim=redacted.json) || echo "$board: differs"
  >   echo "${board##*/}: $(left redacted.json $secrets)"
  > done
  4: clean
  vora4-largest.json: clean
  4=site.json: clean
  3: clean
  vora3-largest.json: clean
  3=site.json: clean
  eapi: clean
  eapi-largest.json: clean
  eapi=site.json: clean
  eapi=eapi-1.json: clean
  eapi=eapi-2.json: clean
  eapi=eapi-3.json: clean
  eapi=eapi-4.json: clean
  $ voractl --sim=site.json --quiet record --output original.json; left original.json $secrets | wc -w
  60

What stays is what a fault report needs; the rest reads as placeholders of
the same form (documentation addresses, a documentation MAC):

  $ voractl --sim=site.json --quiet record --redact --output redacted.json
  $ voractl --sim=redacted.json --quiet get 'Board name' 'Board serial number' 0x1010411 0x1040201 \
  >   'Network host name' 'Network MAC address' 'Modified device IP' 'Modified sub mask' 'Server IP/Port'
  Platform Information/Board name: QZ-88
  Platform Information/Board serial number: XXXX-0001-XXXX\n
  Platform Information/Xxxxxxxxx: Xxxxxxx-Xxxxx2
  GPIO/Xxxx xxxx xxxxxxxxx/Dir: in
  OOB-Network/OOBNetwork0/Network host name: xxxxxxx
  OOB-Network/OOBNetwork0/Network MAC address: 00:00:5E:00:53:01
  OOB-Network/OOBNetwork0/Modified device IP: 192.0.2.1
  OOB-Network/OOBNetwork0/Modified sub mask: 255.255.0.0
  OOB-Network/OOBNetwork0/Server IP/Port: 192.0.2.3:623

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
