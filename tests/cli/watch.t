watch samples until it is told to stop. Without a terminal, one line a
sample:

  $ voractl --sim watch --count 2 --interval 0.05 'Fan Speed' | sed 's/^[^ ]* //'
   Fan Speed/CPU=2400 RPM  Fan Speed/System=1850 RPM
   Fan Speed/CPU=2400 RPM  Fan Speed/System=1850 RPM
  $ voractl --sim watch --json --count 1 DO1/Level | grep -o '"changed":[a-z]*'
  "changed":false

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
