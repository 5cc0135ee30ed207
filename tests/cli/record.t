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

A recording is one call a line, its answers as the library gave them, in
their order; an item that cannot be read is named and recorded (the recording
is whole: exit status 0):

  $ voractl --sim=odd.json --quiet record --output odd-recording.json 2>&1 | sed -n '1p;$='
  voractl: cannot read GPIO/GPIO1/Dir: error (0xFFFFF0FF) (recorded)
  254
  $ grep -c '"function"' odd-recording.json
  503
  $ grep -E 'GetStringA.*"id":2[,}]|"id":135169' odd-recording.json
  {"function":"VoraBoardGetStringA","in":{"id":2,"length":64},"answers":[{"status":0,"out":{"buffer":"r\xc3\xa9v","length":4294967295},"times":2,"took_us":*}]}, (esc) (glob)
  {"function":"VoraBoardGetValue","in":{"id":135169},"status":4660,"out":{"words":[0]},"took_us":*}, (glob)

A board whose answers change recorded over time (--duration, reading every
item each --interval) replays as it happened, item by item: a fan reading
that fails once and recovers, a pin that fails from its second reading on,
a brightness unreadable in one reading. A steady board's recording does not
grow as it is read again:

  $ python3 -c 'import json, sys
  > board = json.load(open(sys.argv[1])); board["faults"] = [
  >   {"function": "VoraBoardGetValue", "arg": "0x22000", "status": "0xFFFFF0FF", "after": 1, "times": 1},
  >   {"function": "VoraGPIOGetLevel", "arg": 3, "status": "0xFFFFF0FF", "after": 2},
  >   {"function": "VoraVgaGetBacklightBrightness", "arg": 0, "status": "0xFFFFF0FF", "after": 2, "times": 1}]
  > json.dump(board, open("transient.json", "w"))' $VTEST_SOURCE_DIR/sim/profiles/vora4.json
  $ voractl --sim=transient.json --quiet record --duration 0.4 --interval 0.2 --output transient-recording.json
  voractl: cannot read Hardware Monitor/Fan Speed/CPU: error (0xFFFFF0FF) in 1 of 3 readings (recorded)
  voractl: cannot read GPIO/DO1/Level: error (0xFFFFF0FF) in 2 of 3 readings (recorded)
  voractl: cannot read Backlight/LVDS/Brightness: error (0xFFFFF0FF) in 1 of 3 readings (recorded)
  $ readings() { voractl "$@" --quiet watch --json --count 4 --interval 0.01 'Platform Information' \
  >     'Hardware Monitor' GPIO Backlight OOB-Network 2> /dev/null | python3 -c 'import json, sys
  > for line in sys.stdin:
  >   items = json.loads(line)["items"]; print(len(items), *[r["value"] for r in items if r["name"] in ("CPU", "Level", "Brightness") and r["group"] in ("Fan Speed", "DO1", "LVDS")])'; }
  $ readings --sim=transient.json
  74 None 1 80
  74 2400.0 None None
  74 2400.0 None 80
  74 2400.0 None 80
  $ readings --sim=transient-recording.json
  74 None 1 80
  74 2400.0 None None
  74 2400.0 None 80
  74 2400.0 None 80
  $ voractl --sim --quiet record --duration 1 --interval 0.1 --output steady.json
  $ grep -c '"function"' steady.json; grep '"id":135168}' steady.json
  161
  {"function":"VoraBoardGetValue","in":{"id":135168},"answers":[{"status":0,"out":{"words":[1050]},"times":12,"took_us":*}]}, (glob)

A hand-edited recording changes exactly what was edited: one sensor's answer
and one call made to fail.

  $ voractl --sim --quiet record --output edited.json
  $ sed -i -e 's/\("in":{"id":135168},"answers":\[{"status":0,"out":{"words":\)\[1050\]/\1[1234]/' \
  >        -e 's/\("function":"VoraGPIOGetLevel","in":{"id":3,"mask":1},"answers":\[{"status":\)0/\14660/' edited.json
  $ voractl --sim list > before.txt; voractl --sim=edited.json --quiet list > after.txt
  voractl: cannot read GPIO/DO1/Level: error (0xFFFFF0FF)
  [1]
  $ diff before.txt after.txt | sed -n 's/^</was:/p; s/^>/now:/p' | sed 's/  */ /g'
  was: 0x1020201 VCORE 1.050 V (min = 0.000 V, max = 50.000 V) read-only
  now: 0x1020201 VCORE 1.234 V (min = 0.000 V, max = 50.000 V) read-only
  was: 3 DO1 out high fixed direction
  now: 3 DO1 out N/A fixed direction

A board whose library fails to initialise is recorded all the same (the
failure named, exit status 0), and the recording replays as the same
failure, on every generation; so does a board with nothing on it, whose
library comes up but the module does not:

  $ for init in VoraLibInitialize:4 VoraDllInit:3 EApiLibInitialize:eapi nothing:4; do
  >   echo "{\"faults\": [{\"function\": \"${init%:*}\", \"status\": \"0xFFFFF0FF\"}]}" > down.json
  >   [ ${init%:*} = nothing ] && echo '{}' > down.json
  >   voractl --sim=down.json --sim-generation ${init#*:} record --output down-recording.json
  >   cmp <(voractl --sim=down.json --sim-generation ${init#*:} info 2>&1) <(voractl --sim=down-recording.json info 2>&1) &&
  >     voractl --sim=down-recording.json info 2>&1 | tail -1
  > done
  module: [VORADrv] VORA4 can not load (0xFFFFF0FF)
  voractl: the module did not come up: error (0xFFFFF0FF) (recorded)
  voractl: cannot initialise the module: error (0xFFFFF0FF)
  module: [VORADrv] VORA3 can not load (0xFFFFF0FF)
  voractl: the module did not come up: error (0xFFFFF0FF) (recorded)
  voractl: cannot initialise the module: error (0xFFFFF0FF)
  module: [VORADrv] ECTL2 can not load (0xFFFFF0FF)
  voractl: the module did not come up: error (0xFFFFF0FF) (recorded)
  voractl: cannot initialise the module: error (0xFFFFF0FF)
  module: VORADrv Info init: json_pack array failed
  module: VORADrvnInit: module Init failed
  voractl: the module did not come up: error (0xFFFFF0FF) (recorded)
  voractl: cannot initialise the module: error (0xFFFFF0FF)

A write during a replay is kept and read back, by later runs too, on every
generation (a third-generation pin's direction among them):

  $ for generation in 4 3 eapi; do
  >   pin=GPIO$([ $generation = 3 ] && echo 6 || echo 4)
  >   voractl --sim --sim-generation $generation --quiet record --output written-$generation.json
  >   voractl --sim=written-$generation.json set $pin/Dir=out $pin/Level=1 0x1050501=50 &&
  >     voractl --sim=written-$generation.json get $pin/Dir $pin/Level 0x1050501 | tr '\n' ' ' && echo
  > done
  GPIO/GPIO4/Dir: out GPIO/GPIO4/Level: high Backlight/LVDS/Brightness: 50 
  GPIO/GPIO6/Dir: out GPIO/GPIO6/Level: high Backlight/VGA/Brightness: 50 
  GPIO/GPIO4/Dir: out GPIO/GPIO4/Level: high Backlight/Backlight 1/Brightness: 50 

A recording made while writing (VORA_RECORD=FILE records any host run
under the path redirection, voractl among them) replays the write as the
board took it, its answers in their order, and a later run starts from what
was written (the capability's value is read at initialise):

  $ cp $VTEST_SOURCE_DIR/sim/profiles/vora4.json board.json
  $ VORA_RECORD=while-writing.json voractl --sim=board.json set --json Brightness=50 > original.txt
  $ grep -o '"function":"VoraVgaGetBacklightBrightness","in":{"id":0},.*"out":{"brightness":50}' while-writing.json
  "function":"VoraVgaGetBacklightBrightness","in":{"id":0},"answers":[{"status":0,"out":{"brightness":80},"took_us":*},{"status":0,"out":{"brightness":50} (glob)
  $ voractl --sim=while-writing.json set --json Brightness=50 | cmp - original.txt &&
  >   voractl --sim=while-writing.json caps | grep -A 1 '"n": "Brightness"'
            "n": "Brightness",
            "v": 50,

A call the recording lacks answers "not supported", named once:

  $ grep -v '"function":"VoraGPIOGetLevel","in":{"id":5,' edited.json > lacking.json
  $ voractl --sim=lacking.json get GPIO5 2>&1
  vorasim: libVORA-4.00: the recording has no answer to VoraGPIOGetLevel {"id":5,"mask":1}
  module: VORADrv get value: function:GPIO get value failed fffff0ff
  voractl: cannot read GPIO/GPIO5/Level: error (0xFFFFF0FF)
  N/A
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

VORA_RECORD_REDACT=1 redacts what VORA_RECORD writes. Ctrl-C (or SIGTERM)
ends a recording over time between two readings and keeps what was
recorded, redacted as asked; nothing else is left behind:

  $ VORA_RECORD=host.json VORA_RECORD_REDACT=1 voractl --sim=site.json --quiet list > /dev/null; left host.json $secrets
  clean
  $ mkdir out; voractl --sim=site.json --quiet record --redact --duration 60 --interval 0.1 --output out/site.json &
  $ sleep 1; kill -INT $!; wait $!
  voractl: recording stopped after * of 601 readings (glob)
  $ ls -A out; left out/site.json $secrets; voractl --sim=out/site.json get 'Board name'
  site.json
  clean
  QZ-88

A recording holds at most 100,000 answers and 16 MiB; one that fills up says
so, keeps what came before and takes no more. (Python calls the library
here; when the simulator is built with AddressSanitizer, its run-time is
loaded first.)

  $ asan=$(ldd "$(command -v voractl)" | sed -n 's/^\s*libasan\S* => \(\S*\).*/\1/p')
  $ LD_PRELOAD=$asan ASAN_OPTIONS=detect_leaks=0 VORA_RECORD=full.json run-simulated -- python3 -c 'import ctypes
  > library, value = ctypes.CDLL("/usr/lib/libVORA-4.00.so"), ctypes.c_uint()
  > for i in range(100002): library.VoraBoardGetValue(0x30000000 + i, ctypes.byref(value))'
  voradrv stand-in: the recording is full (100000 answers; it holds at most 100000 answers and 16 MiB); later calls are not recorded
  $ grep -c '"function"' full.json; grep -o '"full":true' full.json; voractl --sim=full.json --quiet info
  100000
  "full":true
  vorasim: libVORA-4.00: the recording has no answer to VoraLibInitialize {}
  voractl: cannot initialise the module: unsupported (0xFFFFFCFF)
  [1]

A recording that cannot be replayed is refused, naming its place, what was
expected and what was found; each row is a recording after its header's
start, {"format": "voradrv-recording", "version": 2:

  $ while read -r row; do printf '{"format": "voradrv-recording", "version": %s' "$row" > bad.json
  >   voractl --sim=bad.json get 'Board name' 2>&1 | sed 's/^voractl: the recording .*bad.json cannot be replayed: //'
  > done <<'ROWS'
  > 2, "library": {"generation": "4"}, "calls": [
  > "1", "library": {"generation": "4"}, "calls": []}
  > 3, "library": {"generation": "4"}, "calls": [], "answers": 1}
  > 2, "library": {"generation": "5"}, "calls": []}
  > 2, "library": {"generation": "4", "name": "libEApi"}, "calls": []}
  > 2, "library": {"generation": "4"}, "calls": [], "extra": 1}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraDllInit", "in": {}, "status": 1, "out": {}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraLibInitialize", "in": {}, "status": "0", "out": {}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraLibInitialize", "in": {}, "status": 9223372036854775807, "out": {}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3, "mask": 1}, "status": 0, "out": {"level": "high"}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3}, "status": 0, "out": {"level": 1}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraBoardGetValue", "in": {"id": 1}, "status": 0, "out": {"words": 7}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraBoardGetValue", "in": {"id": {"deep": [[1]]}}, "status": 0, "out": {}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3, "mask": 1}, "status": 0, "out": {"level": 1}}, {"function": "VoraGPIOGetLevel", "in": {"mask": 1, "id": 3}, "status": 0, "out": {"level": 0}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3, "mask": 1}, "answers": [{"status": 0, "out": {"level": 1}, "times": 0}]}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3, "mask": 1}, "status": 0, "answers": [{"status": 0, "out": {"level": 1}}]}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraGPIOGetLevel", "in": {"id": 3, "mask": 1}, "answers": []}]}
  > 2, "library": {"generation": "3"}, "calls": [{"function": "VoraDllGetVersion", "in": {}, "status": 1, "out": {}}]}
  > 2, "library": {"generation": "3"}, "calls": [{"function": "VoraHWMGetFanSpeed", "in": {"id": 1}, "status": 1, "out": {"value": 65536}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraBoardGetStringA", "in": {"id": 1, "length": 64}, "status": 0, "out": {"buffer": "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"}}]}
  > 2, "library": {"generation": "4"}, "calls": [{"function": "VoraBoardGetStringA", "in": {"id": 1, "length": 64}, "status": 0, "out": {"hex": "4g"}}]}
  > ROWS
  line 1, column 88: ']' expected near end of file
  version: expected 1 or 2, the versions this simulator reads, found the text "1"
  version: expected 1 or 2, the versions this simulator reads, found the number 3
  library.generation: expected "4", "3" or "eapi", found the text "5"
  library.name: expected "libVORA-4.00", the library of that generation, found the text "libEApi"
  recording: unknown key "extra"
  calls[0].function: expected a function of libVORA-4.00, found the text "VoraDllInit"
  calls[0].status: expected a status from 0 to 4294967295, found the text "0"
  calls[0].status: expected a status from 0 to 4294967295, found the number 9223372036854775807
  calls[0].out.level: expected a number from 0 to 4294967295, found the text "high"
  calls[0].in.mask: expected a number from 0 to 4294967295, found nothing
  calls[0].out.words: expected from 1 to 64 words, found the number 7
  calls[0].in.id: expected a number from 0 to 4294967295, found an object
  calls[1]: expected each call once, its answers in order in "answers", found VoraGPIOGetLevel {"id":3,"mask":1} again with other answers
  calls[0].answers[0].times: expected a number from 1 to 4294967295, found the number 0
  calls[0].status: expected nothing beside "answers", found the number 0
  calls[0].answers: expected at least one answer, found an array of 0
  calls[0].status: expected nothing, as VoraDllGetVersion answers no status, found the number 1
  calls[0].out.value: expected a number from 0 to 65535, found the number 65536
  calls[0].out.buffer: expected a text that fits the call's buffer of 64 bytes, found the text "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
  calls[0].out.hex: expected pairs of hexadecimal digits, found the text "4g"
  $ VORA_SIM_BOARD=bad.json run-simulated -- voractl --quiet get 'Board name' 2>&1 | head -1
  vorasim: libVORA-4.00: bad.json: calls[0].out.hex: expected pairs of hexadecimal digits, found the text "4g"

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
