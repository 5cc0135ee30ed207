Writes are checked against the capability document before any reaches the
module, and read back after:

  $ export VORA_SIM_LOG=1
  $ voractl --sim set Backlight/LVDS/Brightness 4294967296
  voractl: cannot set Backlight/LVDS/Brightness to 4294967296: 4294967296 is outside its range 0..100
  [1]
  $ voractl --sim set Brightness 4294967346
  voractl: cannot set Backlight/LVDS/Brightness to 4294967346: 4294967346 is outside its range 0..100
  [1]
  $ voractl --sim set GPIO/DO1/Level 2
  voractl: cannot set GPIO/DO1/Level to 2: "2" is not 0, 1, on/off, high/low, in/out, true/false or active/inactive
  [1]
  $ voractl --sim set 'Current device IP' 1.2.3.4
  voractl: cannot set OOB-Network/OOBNetwork0/Current device IP to 1.2.3.4: it is read-only
  [1]
  $ voractl --sim set DI0/Level 1
  voractl: cannot set GPIO/DI0/Level to 1: it is read-only
  [1]
  $ voractl --sim set 'Board name' X
  voractl: cannot set Platform Information/Board name to X: it is read-only
  [1]
  $ voractl --sim set DO1/Dir in
  voractl: cannot set GPIO/DO1/Dir to in: it is read-only
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

NAME=VALUE pairs, as gpioset takes them, are all checked before any is
written; two-state items take words, brightness a share of its range or a
step from where it is:

  $ voractl --sim set DO1/Level=low Brightness=5
  $ voractl --sim set DO1/Level=off Brightness=500
  voractl: cannot set Backlight/LVDS/Brightness to 500: 500 is outside its range 0..100
  [1]
  $ voractl --sim get DO1/Level Brightness
  GPIO/DO1/Level: low
  Backlight/LVDS/Brightness: 5
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
