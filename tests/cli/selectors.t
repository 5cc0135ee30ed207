cram's terminal is 80 columns wide; this one is wide enough for the build
tree's paths, so that they stay on one line:

  $ export COLUMNS=200

Items are named by id (hexadecimal or decimal), by path, or by the last
parts of their path when they name one item, as gpioget names a line:

  $ voractl --sim get 0x1020201 16908801 'Hardware Monitor/Voltage/VCORE' VCORE Voltage/VCORE
  1.050 V
  $ voractl --sim get DI0/Level 'Board name'
  GPIO/DI0/Level: high
  Platform Information/Board name: VB-4410
  $ voractl --sim get CPU
  voractl: "CPU" names more than one item; one of:
    Hardware Monitor/Temperature/CPU (0x1020101)
    Hardware Monitor/Fan Speed/CPU (0x1020301)
  [2]
  $ voractl --sim get Nothing
  voractl: no item or group "Nothing" (see voractl list)
  [2]

A block or group names every item in it:

  $ voractl --sim list GPIO
  Board library: libVORA-4.00 (fourth generation), */sim/libVORA-4.00.so (glob)
  GPIO
      pin  name                             dir  level
        0  DI0                              in   high   read-only
        1  DI1                              in   low    read-only
        2  DO0                              out  low    fixed direction
        3  DO1                              out  high   fixed direction
        4  GPIO4                            in   low
        5  GPIO5                            out  high
        6  Relay K1 coil driver, 24 V iso*  out  low    fixed direction
       33  Front panel button               in   low    read-only
  $ voractl --sim list --all DO1
  Board library: libVORA-4.00 (fourth generation), */sim/libVORA-4.00.so (glob)
  GPIO
    DO1
      0x1040204  Dir    out   read-only
      0x1040304  Level  high
  $ voractl --sim get 'Hardware Monitor/Fan Speed'
  Hardware Monitor/Fan Speed/CPU: 2400 RPM
  Hardware Monitor/Fan Speed/System: 1850 RPM

--type reads with another JSON type, the same by path or by id; a number
read as text (or the reverse) needs --force:

  $ voractl --sim get --type int 'Board name'
  voractl: Platform Information/Board name is published as text; --type int reads it only with --force
  [1]
  $ voractl --sim get --type int 0x1010402
  voractl: Platform Information/Board name is published as text; --type int reads it only with --force
  [1]
  $ voractl --sim get --type string 0x1010102
  voractl: Platform Information/Boot up times is published as a number; --type string reads it only with --force
  [1]
  $ voractl --sim get --force --type int 'Board name'
  1342
  $ voractl --sim get --type real 0x1020299
  module: VORADrv get value: function:Hardware Monitor get value failed fffffbff
  voractl: cannot read 0x1020299: not found (0xFFFFFBFF)
  N/A
  [1]
  $ voractl --sim get 0x1020299
  voractl: 0x1020299 is not an item of the capability document (give --type to use it anyway)
  [2]

A GPIO pin, by its name or by its number as list shows it (decimal, 0 to
255; item ids start at 0x1000000), is its level for get and set, as
gpioget and gpioset take a line; list and watch show the whole pin:

  $ voractl --sim get DI0
  high
  $ voractl --sim get 0 33 DO1 DO1/Dir
  GPIO/DI0/Level: high
  GPIO/Front panel button/Level: low
  GPIO/DO1/Level: high
  GPIO/DO1/Dir: out
  $ voractl --sim set DO1=0 5=high && voractl --sim --raw get DO1 GPIO5
  GPIO/DO1/Level: 0
  GPIO/GPIO5/Level: 1
  $ voractl --sim list 33 | sed 1,2d
      pin  name                dir  level
       33  Front panel button  in   low    read-only
  $ for selector in 7 256 0x5 -1 GPIO DO; do voractl --sim set $selector=1; echo "[$?]"; done
  voractl: no GPIO pin 7 (see voractl list GPIO)
  [2]
  voractl: 0x100 is not an item of the capability document (give --type to use it anyway)
  [2]
  voractl: 0x5 is not an item of the capability document (give --type to use it anyway)
  [2]
  voractl: no item "-1" (see voractl list)
  [2]
  voractl: no item "GPIO" (see voractl list)
  [2]
  voractl: no item "DO" (see voractl list)
  [2]

A pin named as a sensor is named: the name fits several things.

  $ cat > pins.json <<'JSON'
  > {"board": {"name": "VB-1"}, "sensors": {"temperature": [{"index": 0, "name": "CPU", "value": 40}]},
  >  "gpio": [{"pin": 0, "name": "CPU", "input": true, "output": true, "level": 1}]}
  > JSON
  $ voractl --sim=pins.json get CPU
  voractl: "CPU" names more than one thing; one of:
    Hardware Monitor/Temperature/CPU (0x1020101)
    GPIO/CPU/
  [2]
  $ voractl --sim=pins.json get GPIO/CPU Temperature/CPU
  GPIO/CPU/Level: high
  Hardware Monitor/Temperature/CPU: +40.0 \xc2\xb0C (esc)
