A board library talks to its controller over a slow bus. A profile's fault
can make a call slow ("latency_ms", and up to "jitter_ms" more) or never
return ("hang"), with "arg", "after" and "times" as for any fault. Here the
first panel's brightness is slow on its second read (the module's first is
at initialise), once per process; the board, once written to, keeps the
fault in its state for the next run:

  $ python3 -c 'import json, sys
  > board = json.load(open(sys.argv[1]))
  > board["faults"] = [{"function": "VoraVgaGetBacklightBrightness", "arg": 0, "latency_ms": 200, "jitter_ms": 50, "after": 1, "times": 1}]
  > json.dump(board, open("slow.json", "w"))
  > board["faults"] = [{"function": "VoraBoardGetValue", "arg": "0x21000", "hang": True, "after": 1}]
  > json.dump(board, open("stuck.json", "w"))' $VTEST_SOURCE_DIR/sim/profiles/vora4.json
  $ took() { voractl "$@" --trace get Brightness 2>&1 > /dev/null |
  >   sed -n 's/^VoraVgaGetBacklightBrightness(id=0x0) .*<\(.*\)>$/\1/p' | awk "{print (\$1 >= 0.2) ? \"slow\" : \"fast\"}"; }
  $ took --sim=slow.json; voractl --sim=slow.json set Frequency=300; took --sim=slow.json
  fast
  slow
  fast
  slow

A call that hangs sleeps, costing no processor time, until the process ends:

  $ voractl --sim=stuck.json get VCORE & sleep 1; awk "{print \$3, (\$14 < 20) ? \"idle\" : \"busy\"}" /proc/$!/stat
  S idle
  $ kill $!; wait $!
  [143]

A recording keeps how long each call took (a slow one apart from quick ones
with the same answer), and --timing replays it at that speed:

  $ voractl --sim=slow.json --quiet record --output slow-recording.json
  $ took --sim=slow-recording.json --timing; took --sim=slow-recording.json
  fast
  slow
  fast
  fast
  $ voractl --sim --timing info
  voractl: --timing replays a recording at its recorded speed: give --sim=RECORDING
  [2]
