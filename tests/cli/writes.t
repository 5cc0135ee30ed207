Writes are checked against the capability document before any reaches the
module, and read back after:

  $ export VORA_SIM_LOG=1
  $ voractl --sim set Backlight/LVDS/Brightness 4294967296
  voractl: cannot set Backlight/LVDS/Brightness to 4294967296: 4294967296 is outside its range 0..100
  [1]
  $ voractl --sim set Brightness 4294967346
  voractl: cannot set Backlight/LVDS/Brightness to 4294967346: 4294967346 is outside its range 0..100
  [1]
  $ voractl --sim set 'Current device IP' 1.2.3.4
  voractl: cannot set OOB-Network/OOBNetwork0/Current device IP to 1.2.3.4: it is read-only
  [1]
  $ voractl --sim set 'Network control=19'
  voractl: cannot set OOB-Network/OOBNetwork0/Network control to 19: 19 is outside its range 0..18
  [1]
  $ voractl --sim set Brightness=x
  voractl: cannot set Backlight/LVDS/Brightness to x: "x" is not an integer
  [1]
  $ voractl --sim set Brightness
  voractl: set takes NAME=VALUE... or ITEM VALUE
  [2]

A two-state item takes 1, 0 and the words of its own kind, in any case, and
no word of another kind: a row per word, a column per item of each
generation, the state it sets or - where it is refused. NAME=VALUE pairs
are all checked before any is written:

  $ words=(in out high low active inactive on off true false 1 0 HIGH '' 2)
  $ states() {  # GENERATION ITEM...: each word's state on each item
  >   local generation=$1 word item pairs=(); shift
  >   for word in "${words[@]}"; do for item; do pairs+=("$item=$word"); done; done
  >   voractl --sim --sim-generation "$generation" set --json "${pairs[@]}" 2>/dev/null |
  >     awk -v n=$# '/"written"/ { row = row (/": "/ ? " -" : " " $2 + 0); if (++k % n == 0) { print row; row = "" } }'
  > }
  $ paste -d '|' <(printf "%-10s\n" word "${words[@]/#/=}") \
  >   <(echo " Dir Level Backlight"; states 4 GPIO4/Dir GPIO4/Level LVDS/Backlight) \
  >   <(echo " Dir Level"; states 3 GPIO5/Dir GPIO5/Level) \
  >   <(echo " Dir Level Backlight"; states eapi GPIO4/Dir GPIO4/Level 'Backlight 1/Backlight')
  word      | Dir Level Backlight| Dir Level| Dir Level Backlight
  =in       | 1 - -| 1 -| 1 - -
  =out      | 0 - -| 0 -| 0 - -
  =high     | - 1 -| - 1| - 1 -
  =low      | - 0 -| - 0| - 0 -
  =active   | - 1 -| - 1| - 1 -
  =inactive | - 0 -| - 0| - 0 -
  =on       | - - 1| - -| - - 1
  =off      | - - 0| - -| - - 0
  =true     | - - 1| - -| - - 1
  =false    | - - 0| - -| - - 0
  =1        | 1 1 1| 1 1| 1 1 1
  =0        | 0 0 0| 0 0| 0 0 0
  =HIGH     | - 1 -| - 1| - 1 -
  =         | - - -| - -| - - -
  =2        | - - -| - -| - - -
  $ voractl --sim set GPIO4/Dir=out GPIO4/Level=out LVDS/Backlight=in Brightness=5
  voractl: cannot set GPIO/GPIO4/Level to out: "out" is not a level (high/low, active/inactive or 1/0)
  voractl: cannot set Backlight/LVDS/Backlight to in: "in" is not an on/off state (on/off, true/false or 1/0)
  [1]
  $ voractl --sim get GPIO4/Dir Brightness
  GPIO/GPIO4/Dir: in
  Backlight/LVDS/Brightness: 80
  $ voractl --sim set --force GPIO4/Dir=low
  voractl: cannot set GPIO/GPIO4/Dir to low: "low" is not a direction (in/out or 1/0) nor an integer
  [1]

NAME=VALUE pairs, as gpioset takes them; brightness a share of its range or
a step from where it is:

  $ voractl --sim set DO1/Level=high GPIO4/Dir=out 'Backlight/LVDS/Brightness=50%' Polarity=on
  $ voractl --sim get DO1/Level GPIO4/Dir Brightness Polarity
  GPIO/DO1/Level: high
  GPIO/GPIO4/Dir: out
  Backlight/LVDS/Brightness: 50
  Backlight/LVDS/Polarity: on
  $ voractl --sim set Brightness=+10% && voractl --sim get Brightness
  60
  $ voractl --sim set Brightness=-10 && voractl --sim get Brightness
  50
  $ voractl --sim set Brightness=+60%
  voractl: cannot set Backlight/LVDS/Brightness to +60%: 110 is outside its range 0..100
  [1]
  $ voractl --sim set --json 'Modified device IP=192.168.001.010'
  {
    "id": 17498117,
    "path": "OOB-Network/OOBNetwork0/Modified device IP",
    "block": "OOB-Network",
    "group": "OOBNetwork0",
    "name": "Modified device IP",
    "unit": "DEC",
    "access": "rw",
    "value": "192.168.1.10",
    "written": "192.168.001.010",
    "outcome": "written"
  }
  $ voractl --sim get 'Modified device IP'
  192.168.1.10

--force sends a value unchecked; the board decides:

  $ voractl --sim set --force Brightness 500
  module: VORADrv set value: function:Backlight set value failed
  voractl: cannot set Backlight/LVDS/Brightness to 500: library status (0xFFFFFEFF)
  [1]
  $ voractl --sim set --force DO1/Level 2 && voractl --sim get DO1/Level
  voractl: GPIO/DO1/Level: wrote 2 H/L, the board reads low
  [1]

A board that refuses a write while answering success is caught reading the
value back; the third generation refuses a brightness below its minimum so:

  $ vora3() { voractl --sim --sim-generation 3 "$@"; }
  $ vora3 set Brightness 5
  voractl: cannot set Backlight/VGA/Brightness to 5: 5 is outside its range 10..255
  [1]
  $ vora3 set --force Brightness 5
  voractl: Backlight/VGA/Brightness: wrote 5, the board reads 70
  [1]
  $ vora3 set --json --force Brightness 5
  voractl: Backlight/VGA/Brightness: wrote 5, the board reads 70
  {
    "id": 17106177,
    "path": "Backlight/VGA/Brightness",
    "block": "Backlight",
    "group": "VGA",
    "name": "Brightness",
    "unit": "Step",
    "access": "rw",
    "value": 70,
    "min": 10.0,
    "max": 255.0,
    "alarm": false,
    "written": 5,
    "outcome": "differs",
    "reason": "wrote 5, the board reads 70"
  }
  [1]
  $ vora3 set --force --type int 0x1050401 0
  module: VORADrv get value: function:Backlight get value failed fffffbff
  voractl: set 0x1050401 to 0, but it cannot be read back: not found (0xFFFFFBFF)
  $ vora3 set --type int 0x1050401 0
  voractl: cannot set 0x1050401 to 0: the capability document does not publish it, so nothing can check the value (--force writes it anyway)
  [1]
