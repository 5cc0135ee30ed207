cram's terminal is 80 columns wide; this one is wide enough for the build
tree's paths, so that they stay on one line:

  $ export COLUMNS=200

What voractl shows of each generation's default simulated board, against
the golden files in tests/data/golden/ (VTEST_UPDATE_GOLDEN=1 rewrites
them). The exports are held to promtool's reading of the Prometheus format.

  $ golden() {
  >   local file=$VTEST_SOURCE_DIR/tests/data/golden/$1
  >   if [ "${VTEST_UPDATE_GOLDEN:-}" = 1 ]; then cat > "$file"; else diff -u "$file" -; fi
  > }
  $ for generation in 4 3 eapi; do
  >   vora() { voractl --sim --sim-generation $generation "$@"; }
  >   COLUMNS=80 vora list | sed '1,/^Platform Information/{/^Platform Information/!d}' | golden voractl-list-$generation.txt
  >   vora export --format prometheus | golden voractl-export-$generation.prom
  >   vora export --format senml | grep -v '"bt":' | golden voractl-export-$generation.senml.json
  >   vora caps | python3 -c 'import json, sys; print(len(json.load(sys.stdin)), "blocks")'
  >   vora info | tail -n +2
  >   if command -v promtool > /dev/null; then
  >     vora export --format prometheus | promtool check metrics || echo "promtool refused it"
  >   fi
  > done
  5 blocks
  Board library  libVORA-4.00 (fourth generation), */sim/libVORA-4.00.so (glob)
    Platform Information   22 items
    Hardware Monitor       15 items
    GPIO                   16 items
    Backlight              5 items
    OOB-Network            16 items
  4 blocks
  Board library  libVORA-3.02 (third generation), */sim/libVORA-3.02.so (glob)
    Platform Information   3 items
    Hardware Monitor       9 items
    GPIO                   16 items
    Backlight              1 item
  4 blocks
  Board library  libEApi (Embedded API), */sim/libEApi.so (glob)
    Platform Information   13 items
    Hardware Monitor       7 items
    GPIO                   12 items
    Backlight              4 items

The largest boards of each generation fit 80 columns too:

  $ for board in vora4-largest:4 vora3-largest:3 eapi-largest:eapi; do
  >   COLUMNS=80 voractl --sim=$VTEST_SOURCE_DIR/sim/profiles/${board%:*}.json --sim-generation ${board#*:} list |
  >     sed '1,/^Platform Information/{/^Platform Information/!d}' |
  >     python3 -c 'import sys; lines = sys.stdin.read().splitlines(); print(len(lines), "lines, widest", max(map(len, lines)))'
  > done
  261 lines, widest 79
  166 lines, widest 76
  56 lines, widest 77

Every item of the list reads, and reads the same in every form:

  $ for generation in 4 3 eapi; do
  >   voractl --sim --sim-generation $generation list --json | python3 -c '
  > import json, sys
  > items = json.load(sys.stdin)
  > print(len(items), "items,", sum(1 for i in items if i["value"] is None), "unreadable")'
  > done
  74 items, 0 unreadable
  29 items, 0 unreadable
  36 items, 0 unreadable
