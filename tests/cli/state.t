The simulated board is one board for every process on it. Sixteen sets
started at once, each of its own pin, are all kept; a host that keeps the
module loaded (voractl watch) reads what the others wrote:

  $ board=$VTEST_SOURCE_DIR/sim/profiles/vora4-largest.json
  $ pins="2 8 14 20 26 32 38 44 50 56 62 68 74 80 86 92"
  $ voractl --sim=$board watch --interval 0.2 --count 25 'Pin 92/Level' > watched &
  $ for pin in $pins; do voractl --sim=$board set "Pin $pin/Level=1" & done; wait
  $ for pin in $pins; do voractl --sim=$board get "Pin $pin/Level"; done | uniq -c
       16 high
  $ grep -c 'Level=high' watched > /dev/null && echo seen
  seen

The board keeps its profile's faults when it is kept, as the profile gives
them: a write does not heal a sensor that fails once after its first read.

  $ cat > faulty.json <<'JSON'
  > {"board": {"name": "VB-1"}, "gpio": [{"pin": 3, "name": "DO1", "input": false, "output": true, "direction": "out"}],
  >  "sensors": {"voltage": [{"index": 0, "value": 1}, {"index": 1, "value": 2}]},
  >  "faults": [{"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0x1234", "after": 1, "times": 1}]}
  > JSON
  $ voractl --sim=faulty.json set DO1/Level=1
  $ voractl --sim=faulty.json --quiet watch --count 2 --interval 0.01 0x1020202 | cut -c 31-
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
   Voltage/VCORE2=N/A
   Voltage/VCORE2=2.000 V*

A board written to is kept whole: read again from its state, it shows what
it showed from its profile.

  $ voractl --sim list > before.txt; voractl --sim set GPIO4/Dir=in; voractl --sim list | diff before.txt -
