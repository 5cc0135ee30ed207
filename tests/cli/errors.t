Errors say what to do, and have the same exit status in every command: 1
when the module or the board failed, 2 for a wrong command line.

  $ voractl list
  voractl: no board library: the module looks for /usr/lib/libVORA-4.00.so, /usr/lib64/libVORA-4.00.so, /usr/lib/libVORA-3.02.so and /usr/lib/libEApi.so (and /usr/lib64/libVORA-4.00.so again in place of the last two), and none is there; --sim runs against the simulated board
  [1]
  $ voractl --sim-generation 3 list
  voractl: --sim-generation, --sim-reset and --timing choose the simulated board: give --sim too
  [2]
  $ voractl --sim-reset list
  voractl: --sim-generation, --sim-reset and --timing choose the simulated board: give --sim too
  [2]
  $ voractl --module '' --sim list
  voractl: --module needs a file name
  [2]
  $ voractl --module /nonexistent/libVORADrv.so --sim list
  voractl: cannot load the module /nonexistent/libVORADrv.so: /nonexistent/libVORADrv.so: cannot open shared object file: No such file or directory
  [1]
  $ voractl --sim=/nonexistent.json list
  voractl: cannot read the board profile /nonexistent.json: No such file or directory
  [1]
  $ voractl help bogus
  voractl: no help on "bogus"; commands: info, caps, list, get, set, watch, export, record, serve
  [2]
  $ voractl help set | head -1
  Usage: voractl set [--json] [--force] NAME=VALUE...
  $ voractl bogus
  voractl: unknown command "bogus" (see voractl --help)
  [2]
  $ voractl --sim get
  voractl: get needs at least one ITEM
  [2]
  $ voractl --sim watch --interval 0
  voractl: --interval must be a number of seconds from 0.01 to 86400, not "0"
  [2]
  $ voractl --sim export
  voractl: export needs --format senml or --format prometheus
  [2]
  $ voractl --version
  voractl 1.0.0

A simulated board whose state cannot be used is named, with the way out:

  $ voractl --sim set DO1/Level=0
  $ for state in $XDG_RUNTIME_DIR/voractl-sim-4-*.json; do printf '{"board": ' > $state; done
  $ voractl --sim get 'Board name'
  voractl: the simulated board's state */tests/cli/errors/voractl-sim-4-*.json is damaged (line 1: unexpected token near end of file); --sim-reset starts the simulated board again from its profile (glob)
  [1]
  $ voractl --sim --sim-reset get DO1/Level
  high

An item that cannot be read fails every command alike, the rest still
shown. This board's second voltage fails after its first read:

  $ cat > board.json <<'JSON'
  > {"board": {"name": "VB-1"}, "sensors": {"voltage": [{"index": 0, "value": 1}, {"index": 1, "value": 2}]},
  >  "faults": [{"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0x1234", "after": 1}]}
  > JSON
  $ vora() { voractl --sim=board.json --quiet "$@"; }

Data goes to standard output and nothing else does: the module's own lines
go to standard error as "module: ...", and --quiet drops them.

  $ x=$(voractl --sim=board.json get Voltage 2>/dev/null); echo "$x"
  Hardware Monitor/Voltage/VCORE: 1.000 V
  Hardware Monitor/Voltage/VCORE2: N/A
  $ voractl --sim=board.json get Voltage/VCORE2 2>&1 >/dev/null
  module: VORADrv get value: function:Hardware Monitor get value failed fffff0ff
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  [1]
  $ vora get Voltage/VCORE2
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  N/A
  [1]

Every command reports it, and exits 1 (list in texts.t):

  $ vora get Voltage
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  Hardware Monitor/Voltage/VCORE: 1.000 V
  Hardware Monitor/Voltage/VCORE2: N/A
  [1]
  $ vora export --format prometheus > out.prom; echo "exit $?"; grep -E '^voradrv_(volt|unreadable|published)' out.prom
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  exit 1
  voradrv_voltage_volts{sensor="VCORE"} 1
  voradrv_voltage_max_volts{sensor="VCORE"} 50
  voradrv_voltage_min_volts{sensor="VCORE"} 0
  voradrv_unreadable_items 1
  voradrv_published_items{block="Platform Information"} 1
  voradrv_published_items{block="Hardware Monitor"} 2
  $ vora watch --count 2 --interval 0.01 > out.txt; echo "exit $?"; cut -c 30- out.txt
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  exit 1
    Voltage/VCORE=1.000 V  Voltage/VCORE2=N/A
    Voltage/VCORE=1.000 V  Voltage/VCORE2=N/A
  $ vora list --json > out.json; echo "exit $?"; grep -B1 -A1 '"error"' out.json
  voractl: cannot read Hardware Monitor/Voltage/VCORE2: error (0xFFFFF0FF)
  exit 1
      "value": null,
      "error": "error (0xFFFFF0FF)",
      "min": 0.0,

A sensor that fails its first read, as the module starts, is not published
at all; its block counts one item less, which an alert can see:

  $ sed 's/"after": 1/"times": 1/' board.json > vanished.json
  $ voractl --sim=vanished.json --quiet export --format prometheus | grep '^voradrv_published_items{block="Hard'
  voradrv_published_items{block="Hardware Monitor"} 1
