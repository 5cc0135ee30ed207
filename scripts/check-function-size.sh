#!/usr/bin/env bash
# Fails when a function of the simulator or the tools (sim/, tools/) is
# longer than 40 lines from its opening brace to its closing one, as
# clang-tidy's readability-function-size counts them; names each one.
#   check-function-size.sh [BUILD_DIR]   (default: build; any configured tree,
#                                         whose compile_commands.json it reads)
# A function that grows past 40 lines reads better as steps, or as a
# table; a function that only returns a data table is marked
# NOLINT(readability-function-size) where it is defined.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
./scripts/install-deps.sh clang-tidy
[ -f "$build/compile_commands.json" ] || {
    echo "check-function-size.sh: no $build/compile_commands.json: configure $build first" >&2
    exit 2
}
root=$(pwd)
mapfile -t sources < <(python3 - "$build/compile_commands.json" "$root" <<'PY'
import json, sys
root = sys.argv[2]
files = {entry["file"] for entry in json.load(open(sys.argv[1]))}
for f in sorted(files):
    if f.startswith((root + "/sim/", root + "/tools/")) and f.endswith((".c", ".cpp")):
        print(f)
PY
)
config='{Checks: "-*,readability-function-size", WarningsAsErrors: "*",
         CheckOptions: [{key: readability-function-size.LineThreshold, value: 40}]}'
# Headers of the simulator and the tools are checked with the sources that
# include them; each function is named once, with its length.
report="$build/function-size.txt"
printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -n 8 clang-tidy --quiet -p "$build" --config="$config" \
        --header-filter="^$root/(sim|tools)/" > "$report" 2>&1 || true
if grep -q 'clang-diagnostic-error' "$report"; then
    grep 'clang-diagnostic-error' "$report" | sort -u >&2
    echo "check-function-size.sh: clang-tidy could not read every source (above)" >&2
    exit 1
fi
long=$(python3 - "$report" "$root/" <<'PY'
import re, sys
root, named, found = sys.argv[2], {}, set()
for line in open(sys.argv[1]):
    warning = re.match(r"(/\S+?:\d+):\d+: \w+: function '(.+)' exceeds", line)
    note = re.match(r"(/\S+?:\d+):\d+: note: (\d+) lines including", line)
    if warning:
        named[warning[1]] = warning[2]
    elif note and note[1] in named:
        found.add("%s: %s, %s lines" % (note[1].replace(root, "", 1), named[note[1]], note[2]))
print("\n".join(sorted(found)))
PY
)
if [ -n "$long" ]; then
    echo "$long" >&2
    echo "check-function-size.sh: $(echo "$long" | wc -l) functions over 40 lines" >&2
    exit 1
fi
echo "check-function-size.sh: every function of sim/ and tools/ within 40 lines"
