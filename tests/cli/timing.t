A board library talks to its controller over a slow bus. A profile's fault
can make a call slow ("latency_ms", and up to "jitter_ms" more) or never
return ("hang"), with "arg", "after" and "times" as for any fault. Here the
first panel's brightness is slow on its second read (the module's first is
at initialise), once per process; the board, once written to, keeps the
fault in its state for the next run:

  $ python3 -c 'import json, sys
  > board = json.load(open(sys.argv[1])); board["faults"] = [
  >   {"function": "VoraVgaGetBacklightBrightness", "arg": 0, "latency_ms": 200, "jitter_ms": 50, "after": 1, "times": 1},
  >   {"function": "VoraBoardGetValue", "arg": "0x21000", "hang": True, "after": 1}]
  > json.dump(board, open("slow.json", "w"))' $VTEST_SOURCE_DIR/sim/profiles/vora4.json
  $ took() { voractl --sim=slow.json --trace get "$@" 2>&1 > /dev/null |
  >   sed -n 's/^VoraVgaGetBacklightBrightness(id=0x0) .*<\(.*\)>$/\1/p' | awk "{print (\$1 >= 0.2) ? \"slow\" : \"fast\"}"; }
  $ took Brightness; voractl --sim=slow.json set Frequency=300; took Brightness
  fast
  slow
  fast
  slow

A call that hangs sleeps, costing no processor time, until the process ends:

  $ voractl --sim=slow.json get VCORE & sleep 1; awk "{print \$3, (\$14 < 20) ? \"idle\" : \"busy\"}" /proc/$!/stat
  S idle
  $ kill $!; wait $!
  [143]
