cram's terminal is 80 columns wide; this one is wide enough for the build
tree's paths, so that they stay on one line:

  $ export COLUMNS=200

Board texts are shown escaped, as ls -b shows names, columns kept; a name
may be typed as shown; JSON carries them whole, in its own escapes:

  $ cat > board.json <<'END'
  > {"board": {"name": "VB\u001b[31mRED\u0007", "manufacturer": "Tab\there\nand a line",
  >            "serial_number": "\u009b2J\u202eevil\\"},
  >  "sensors": {"temperature": [{"index": 0, "name": "CPU\u001b]0;owned\u0007", "value": 48.5}],
  >              "voltage": [{"index": 0, "name": "V\tCORE", "value": 1.05},
  >                          {"index": 1, "name": "\r3V3", "value": 3.3}]},
  >  "gpio": [{"pin": 0, "name": "DI\n0", "input": true, "output": false, "level": 1}],
  >  "backlight": [{"panel": 0, "name": "LV\u001b[2JDS", "brightness": 80, "min": 0, "max": 100}],
  >  "faults": [{"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0xFFFFF0FF", "after": 1}]}
  > END
  $ vora() { voractl --sim=board.json "$@"; }
  $ vora list
  module: VORADrv get value: function:Hardware Monitor get value failed fffff0ff
  voractl: cannot read Hardware Monitor/Voltage/\r3V3: error (0xFFFFF0FF)
  Board library: libVORA-4.00 (fourth generation), */sim/libVORA-4.00.so (glob)
  Platform Information
      0x1010401  Board manufacturer   Tab\there\nand a line                                           read-only
      0x1010402  Board name           VB\e[31mRED\x07                                                 read-only
      0x1010404  Board serial number  \xc2\x9b2J\xe2\x80\xaeevil\\                                    read-only
  Hardware Monitor
    Voltage
      0x1020201  V\tCORE              1.050 V                       (min = 0.000 V, max = 50.000 V)   read-only
      0x1020202  \r3V3                N/A                           (min = 0.000 V, max = 50.000 V)   read-only
    Temperature
      0x1020101  CPU\\e]0;owned\\x07    +48.5 \xc2\xb0C                      (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)  read-only (esc)
  GPIO
      pin  name                 dir  level
        0  DI\n0                in   high   read-only
  Backlight
    LV\e[2JDS
      0x1050501  Brightness           80                            (min = 0, max = 100)
  [1]
  $ vora get 'Board name' 'DI\n0/Dir'
  Platform Information/Board name: VB\e[31mRED\x07
  GPIO/DI\n0/Dir: in
  $ vora set 'DI\n0/Level=1'
  voractl: cannot set GPIO/DI\n0/Level to 1: it is read-only
  [1]
  $ vora watch --count 1 Temperature 'DI\n0' | cut -d ' ' -f 2-
   Temperature/CPU\\e]0;owned\\x07=+48.5 \xc2\xb0C  DI\\n0/Dir=in  DI\\n0/Level=high (esc)
  $ vora get --json Temperature 'Board name' | grep -E '"name": "CPU|"value": "'
      "name": "CPU\u001B]0;owned\u0007",
      "value": "VB\u001B[31mRED\u0007"

A text of 4 KiB (the third generation's longest) goes on over lines of
its own, whole, and no line is wider than the terminal (COLUMNS, else 80;
the board library's path, a word longer than a line, left out here):

  $ printf '{"board": {"name": "%05000d"}}' 0 > long.json
  $ vora3() { voractl --sim=long.json --sim-generation 3 "$@"; }
  $ for columns in '' 0 -1 abc 100000 1 60; do
  >   if [ -z "$columns" ]; then unset COLUMNS; else export COLUMNS=$columns; fi
  >   vora3 list 'Platform Information' | sed '1,/^Platform Information/{/^Platform Information/!d}' > out.txt
  >   echo "${columns:-unset}: $(wc -l < out.txt) lines, widest $(awk '{ print length }' out.txt | sort -n | tail -1), $(tr -cd 0 < out.txt | wc -c) zeros"
  > done
  unset: 86 lines, widest 80, 4105 zeros
  0: 86 lines, widest 80, 4105 zeros
  -1: 86 lines, widest 80, 4105 zeros
  abc: 86 lines, widest 80, 4105 zeros
  100000: 3 lines, widest 4137, 4105 zeros
  1: 133 lines, widest 40, 4105 zeros
  60: 144 lines, widest 60, 4105 zeros
  $ export COLUMNS=200

The simulator's messages quote a profile in JSON's escapes; local texts are
escaped as the board's, invalid UTF-8 too:

  $ printf '{"board": {"name": "x"}, "bogus\\u001b[2J": 1}' > bad.json
  $ voractl --sim=bad.json list
  vorasim: libVORA-4.00: */bad.json: profile: unknown key "bogus\u001B[2J" (glob)
  module: [VORADrv] VORA4 can not load (0xFFFFFCFF)
  voractl: cannot initialise the module: unsupported (0xFFFFFCFF)
  [1]
  $ voractl --sim get $'\xc3(\xc0\xaf\xe0\x80\xaf\xe2\x82(\xed\xa0\x80\xf4\x90\x80\x80\xf0\x8f\xbf\xbf\x80\xe2\x81\xa7\xc3\xa9\xc3'
  voractl: no item or group "\\xc3(\\xc0\\xaf\\xe0\\x80\\xaf\\xe2\\x82(\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80\\xf0\\x8f\\xbf\\xbf\\x80\\xe2\\x81\\xa7\xc3\xa9\\xc3" (see voractl list) (esc)
  [2]
  $ mkdir $'module\e[1m\xff' && cp "$(voractl --sim info --json | grep -o '/[^"]*libVORADrv.so' | head -1)" $'module\e[1m\xff/'
  $ voractl --module $'module\e[1m\xff/libVORADrv.so' --sim info | head -1
  Module         module\e[1m\xff/libVORADrv.so (version unknown)
