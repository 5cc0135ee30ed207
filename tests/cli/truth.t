cram's terminal is 80 columns wide; this one is wide enough for the build
tree's paths, so that they stay on one line:

  $ export COLUMNS=200

voractl shows the board's true values. On an Embedded API board the library
answers temperatures in tenths of a kelvin, publishes voltages of different
blocks under one id, and reads a lit panel as 0:

  $ vora() { voractl --sim --sim-generation eapi "$@"; }
  $ vora info
  Module         */module/libVORADrv.so (version 1.0.0) (glob)
  Board library  libEApi (Embedded API), */sim/libEApi.so (glob)
    Platform Information   13 items
    Hardware Monitor       7 items
    GPIO                   12 items
    Backlight              4 items
  $ vora list Temperature Voltage Backlight
  Board library: libEApi (Embedded API), */sim/libEApi.so (glob)
  Hardware Monitor
    Voltage
      0x1020201  V5          5.034 V   (min = 0.000 V, max = 15.000 V)   read-only, id shared with VCORE
      0x1020203  V12         12.050 V  (min = 0.000 V, max = 15.000 V)   read-only, id shared with V3.3
      0x1020204  VBAT        3.011 V   (min = 0.000 V, max = 15.000 V)   read-only
    Temperature
      0x1020101  CPU         +45.8 \xc2\xb0C  (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)  read-only (esc)
      0x1020102  ChipSet     +39.5 \xc2\xb0C  (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)  read-only (esc)
  Backlight
    Backlight 1
      0x1050401  Backlight   on
      0x1050501  Brightness  60        (min = 0, max = 100)
    Backlight 2
      0x1050402  Backlight   off
      0x1050502  Brightness  100       (min = 0, max = 100)
  $ vora get Temperature/CPU
  +45.8 \xc2\xb0C (esc)
  $ vora --raw get Temperature/CPU
  3189
  $ vora get --json Temperature/CPU
  {
    "id": 16908545,
    "path": "Hardware Monitor/Temperature/CPU",
    "block": "Hardware Monitor",
    "group": "Temperature",
    "name": "CPU",
    "unit": "Cel",
    "access": "r",
    "value": 45.8,
    "raw": 3189.0,
    "min": 0.0,
    "max": 100.0,
    "alarm": false
  }
  $ vora export --format prometheus | grep -E '^voradrv_(temperature_celsius|voltage_volts)'
  voradrv_voltage_volts{sensor="V5"} 5.034
  voradrv_voltage_volts{sensor="V12"} 12.05
  voradrv_voltage_volts{sensor="VBAT"} 3.011
  voradrv_temperature_celsius{sensor="CPU"} 45.8
  voradrv_temperature_celsius{sensor="ChipSet"} 39.5
  $ vora export --format senml | grep -A2 Temperature
      "n": "Hardware_Monitor/Temperature/CPU",
      "u": "Cel",
      "v": 45.8
  --
      "n": "Hardware_Monitor/Temperature/ChipSet",
      "u": "Cel",
      "v": 39.5

A voltage published under another's id is one sensor, with both names; the
library reads the last block's:

  $ vora get VCORE V5 0x1020201
  5.034 V
  $ vora get --json V5 | grep -A3 shares
    "shares_id_with": [
      "VCORE"
    ]
  }

The panel's on/off reads the way it is written:

  $ vora set 'Backlight 1/Backlight' 1
  $ vora get 'Backlight 1/Backlight'
  on
  $ vora set 'Backlight 1/Backlight=off'
  $ vora get 'Backlight 1/Backlight'
  off
  $ vora --raw get 'Backlight 1/Backlight'
  1

The other generations' values are the module's own:

  $ voractl --sim get Temperature/CPU LVDS/Backlight
  Hardware Monitor/Temperature/CPU: +48.5 \xc2\xb0C (esc)
  Backlight/LVDS/Backlight: on
  $ voractl --sim --sim-generation 3 get Temperature/CPU
  +52.3 \xc2\xb0C (esc)

A reading outside the range its element publishes is marked as `sensors`
marks an alarm, after the limits, and the exit status stays 0 as with
`sensors`. At the maximum is no alarm, a tenth above it is; a sensor that
answers all ones and a negative rail published from 0 V are flagged too:

  $ cat > rails.json <<'JSON'
  > {"board": {"name": "VB-1"}, "sensors": {"temperature": [{"index": 0, "value": 100}, {"index": 1, "value": 100.1}, {"index": 2, "raw": "0xFFFFFFFF"}],
  >  "voltage": [{"index": 9, "name": "VN50", "value": -5}]}}
  > JSON
  $ voractl --sim=rails.json list Temperature Voltage | tail -n +3
    Voltage
      0x102020A  VN50     -5.000 V         (min = 0.000 V, max = 50.000 V)   ALARM  read-only
    Temperature
      0x1020101  CPU      +100.0 \xc2\xb0C        (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)         read-only (esc)
      0x1020102  Chipset  +100.1 \xc2\xb0C        (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)  ALARM  read-only (esc)
      0x1020103  System   +429496456.4 \xc2\xb0C  (min = +0.0 \xc2\xb0C, max = +100.0 \xc2\xb0C)  ALARM  read-only (esc)
  $ voractl --sim=rails.json get VN50 Temperature/CPU
  Hardware Monitor/Voltage/VN50: -5.000 V  ALARM
  Hardware Monitor/Temperature/CPU: +100.0 \xc2\xb0C (esc)
  $ voractl --sim=rails.json --raw get VN50
  -5
  $ voractl --sim=rails.json watch --count 1 VN50 Temperature/CPU | cut -d ' ' -f 2-
   Voltage/VN50=-5.000 V ALARM  Temperature/CPU=+100.0 \xc2\xb0C (esc)
  $ voractl --sim=rails.json list --json VN50 Chipset | grep alarm
      "alarm": true
      "alarm": true

The alarm is the true value's: an Embedded API temperature of 0 (tenths of
a kelvin) is -273.1 °C, below the published minimum, also where --raw shows 0
beside the limits in the same tenths of a kelvin:

  $ echo '{"board": {"name": "VB-1"}, "sensors": {"temperature": [{"index": 0, "raw": "0"}]}}' > cold.json
  $ vora --sim=cold.json --raw list Temperature | tail -1
      0x1020101  CPU  0  (min = 2731, max = 3731)  ALARM  read-only
