watch samples until it is told to stop. Without a terminal, one line a
sample:

  $ voractl --sim watch --count 2 --interval 0.05 'Fan Speed' | sed 's/^[^ ]* //'
   Fan Speed/CPU=2400 RPM  Fan Speed/System=1850 RPM
   Fan Speed/CPU=2400 RPM  Fan Speed/System=1850 RPM
  $ voractl --sim watch --json --count 1 DO1/Level | grep -o '"changed":[a-z]*'
  "changed":false

--changes prints only what changed, a line each, as gpiomon reports edges:
rising and falling for a pin's level, changed for anything else (this
board's second voltage fails its third read, once):

  $ cat > flaky.json <<'JSON'
  > {"board": {"name": "VB-1"}, "sensors": {"voltage": [{"index": 0, "value": 1}, {"index": 1, "value": 2}]},
  >  "faults": [{"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0x1234", "after": 2, "times": 1}]}
  > JSON
  $ voractl --sim=flaky.json --quiet watch --changes --interval 0.01 --count 5 Voltage 2>&1 | sed 's/^[^ ]* //'
  cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
   changed  Voltage/VCORE2=N/A
   changed  Voltage/VCORE2=2.000 V
  $ voractl --sim=flaky.json --quiet watch --changes --json --interval 0.01 --count 5 Voltage 2>/dev/null |
  >   grep -o '"value":[^,]*\|"edge":"[a-z]*"' | paste -sd ' '
  "value":null "edge":"changed" "value":2.0 "edge":"changed"
  $ voractl --sim watch --changes --interval 0.2 --count 20 DO1 > edges & sleep 0.5
  $ voractl --sim set DO1=0; sleep 1.5; voractl --sim set DO1=1; wait
  $ sed 's/^[^ ]* //' edges
   falling  DO1/Level=low
   rising   DO1/Level=high

On a terminal the table is redrawn in place, with cursor movement; a
terminal whose TERM is "dumb" cannot move its cursor and gets lines:

  $ onterminal() { script -qec "$*" /dev/null < /dev/null | tr -d '\r'; }
  $ TERM=xterm onterminal voractl --sim --color=never watch --count 1 VCORE | grep -c $'\033\\['
  6
  $ TERM=dumb onterminal voractl --sim watch --count 1 VCORE | grep -c $'\033'
  0
  [1]
  $ TERM=dumb onterminal voractl --sim watch --count 1 VCORE | sed 's/^[^ ]* //'
   Voltage/VCORE=1.050 V

SIGTERM (or Ctrl-C) ends a watch between samples, with the module shut down
and the cursor given back:

  $ voractl --sim watch --interval 10 VCORE > lines & sleep 1; kill -TERM $!; wait $!
  $ grep -c VCORE lines
  1
