A board library on a slow bus takes milliseconds a call, and now and then a
call never returns. Boards whose libraries hang on a reading: the first
voltage (a boot counter on the Embedded API) after initialise ("stuck", of
the default boards) or after initialise and one reading ("hang", of the
largest); a fourth-generation board whose initialise hangs, and a slow one:

  $ python3 - "$VTEST_SOURCE_DIR/sim/profiles" <<'PY'
  > import json, sys
  > calls = {"4": ("VoraBoardGetValue", "0x21000"), "3": ("VoraHWMGetVoltage", 1), "eapi": ("EApiBoardGetValue", 1)}
  > def board(generation, size, faults):
  >     profile = json.load(open(f"{sys.argv[1]}/{'' if generation == 'eapi' else 'vora'}{generation}{size}.json"))
  >     profile["faults"] = faults
  >     return profile
  > for generation, (function, arg) in calls.items():
  >     for name, size, after in (("stuck", "", 1), ("hang", "-largest", 2), ("largest", "-largest", None)):
  >         faults = [] if after is None else [{"function": function, "arg": arg, "hang": True, "after": after}]
  >         json.dump(board(generation, size, faults), open(f"{name}{generation}.json", "w"))
  > json.dump(board("4", "", [{"function": "VoraLibInitialize", "hang": True}]), open("hanginit.json", "w"))
  > json.dump(board("4", "", [{"function": "VoraBoardGetValue", "arg": "0x21000", "latency_ms": 150, "after": 1}]), open("slow.json", "w"))
  > PY

get, list, export and watch take --timeout: what is not read by then is
unreadable, said once, with exit status 1, and voractl leaves at once, the
module left in its call; what it prints stays whole. Each row: the board,
the command, its exit status, what it printed (lines, those unread, and
whether JSON output parses), what it said; none may take 10 s:

  $ while read -r board generation command; do
  >   SECONDS=0
  >   voractl --sim=$board.json --sim-generation $generation --sim-reset --quiet $command > out 2> err
  >   status=$? took=$SECONDS
  >   json=$(python3 -m json.tool < out > /dev/null 2>&1 && echo ", JSON")
  >   echo "$board $command: exit $status, $(wc -l < out) lines, $(grep -c 'N/A\|null' out) unread$json$( ((took < 10)) || echo ", $took s")"
  >   sed 's/^/  /' err
  > done <<'ROWS'
  > stuck4 4 get --timeout 0.5 VCORE Brightness
  > stuck4 4 get --timeout 5 Brightness
  > stuck4 4 list --timeout 0.5 --json Voltage Backlight
  > stuck3 3 export --timeout 0.5 --format senml
  > stuckeapi eapi export --timeout 0.5 --format prometheus --output metrics.prom
  > stuck4 4 watch --timeout 0.5 --interval 0.1 --count 5 Voltage
  > stuck4 4 watch --timeout 0.5 --interval 0.1 --count 5 Backlight
  > hanginit 4 get --timeout 0.5 VCORE
  > slow 4 get --timeout 0.1 VCORE Brightness
  > slow 4 get --timeout 5 VCORE
  > slow 4 watch --interval 0.05 --count 3 VCORE
  > ROWS
  stuck4 get --timeout 0.5 VCORE Brightness: exit 1, 2 lines, 2 unread
    voractl: cannot read Hardware Monitor/Voltage/VCORE: the board library did not answer in time, nor the 1 after it
  stuck4 get --timeout 5 Brightness: exit 0, 1 lines, 0 unread, JSON
  stuck4 list --timeout 0.5 --json Voltage Backlight: exit 1, 158 lines, 12 unread, JSON
    voractl: cannot read Hardware Monitor/Voltage/VCORE: the board library did not answer in time, nor the 11 after it
  stuck3 export --timeout 0.5 --format senml: exit 1, 16 lines, 0 unread, JSON
    voractl: cannot read Hardware Monitor/Voltage/VCORE: the board library did not answer in time, nor the 25 after it
  stuckeapi export --timeout 0.5 --format prometheus --output metrics.prom: exit 1, 0 lines, 0 unread
    voractl: cannot read Platform Information/Boot up times: the board library did not answer in time, nor the 34 after it
  stuck4 watch --timeout 0.5 --interval 0.1 --count 5 Voltage: exit 1, 1 lines, 1 unread
    voractl: cannot read Hardware Monitor/Voltage/VCORE: the board library did not answer in time, nor the 6 after it
    voractl: the board library did not answer within --timeout 0.5 s: no further sample can be taken
  stuck4 watch --timeout 0.5 --interval 0.1 --count 5 Backlight: exit 0, 5 lines, 0 unread
  hanginit get --timeout 0.5 VCORE: exit 1, 0 lines, 0 unread
    voractl: the module's initialise did not answer in 0.5 s (--timeout); it is left in the board library's call
  slow get --timeout 0.1 VCORE Brightness: exit 1, 2 lines, 2 unread
    voractl: cannot read Hardware Monitor/Voltage/VCORE: the board library did not answer in time, nor the 1 after it
  slow get --timeout 5 VCORE: exit 0, 1 lines, 0 unread
  slow watch --interval 0.05 --count 3 VCORE: exit 0, 3 lines, 0 unread
    voractl: reading the items took longer than --interval 0.05 s: samples come as fast as the board answers
  $ grep -c voradrv_ metrics.prom
  15

voractl serve answers each scrape within the timeout Prometheus sends,
whether or not the reading is done: without it, voradrv_up 0 and the age of
the last complete reading, and no board values. The page's data says its
sample is late, SIGHUP is taken, and SIGTERM ends the exporter within 5
seconds, the module left in its call. Each generation's largest board, its
first reading whole, its second hanging; scrapes asked with a 1-second
timeout must be answered within it, 20 at once too, beside 10 pages opening:

  $ serve() {
  >   : > serve.err
  >   voractl "$@" serve --listen 127.0.0.1:0 $serving 2> serve.err &
  >   server=$!
  >   for i in $(seq 200); do grep -q serving serve.err && break; sleep 0.05; done
  >   url=http://$(grep -o -m 1 '127.0.0.1:[0-9]*' serve.err)
  > }
  $ scrape() { curl -s -m 1 -H 'X-Prometheus-Scrape-Timeout-Seconds: 1' "$url/metrics"; }
  $ for generation in 4 3 eapi; do
  >   serving='--interval 0.5' serve --sim=hang$generation.json --sim-generation $generation --sim-reset --quiet
  >   curl -s $url/metrics | grep -E '^voradrv_(up|last_reading)' | tr '\n' ' '; echo
  >   scrape | grep -cE '^voradrv_(temperature|gpio|board)'
  >   scrape | grep -E '^voradrv_(up|last_reading|scrape_duration)' | sed 's/ [0-9.]*[1-9][0-9.]*$/ N/' | tr '\n' ' '; echo
  >   for i in $(seq 10); do curl -s -o /dev/null $url/api/v1/items & done
  >   for i in $(seq 20); do scrape > many$i & done; wait $(jobs -p | grep -v $server)
  >   cat many* | grep -c '^voradrv_up 0'; rm many*
  >   curl -s "$url/api/v1/samples" | grep -o '"waiting":[0-9]' | sed 's/[0-9]$/N/'
  >   curl -s "$url/api/v1/document" | grep -o '^{"Platform Information"'
  >   kill -HUP $server; sleep 0.2; scrape | grep '^voradrv_up'
  >   SECONDS=0; kill -TERM $server; wait $server; echo "exit $? within $((SECONDS <= 7)) x 7 s"
  >   grep -v -e serving -e 'board page' serve.err
  > done
  voradrv_last_reading_age_seconds 0.000 voradrv_up 1 
  0
  voradrv_last_reading_age_seconds N voradrv_up 0 voradrv_scrape_duration_seconds N 
  20
  "waiting":N
  {"Platform Information"
  voradrv_up 0
  exit 1 within 1 x 7 s
  voractl: SIGHUP: there is no --web-config to reread
  voractl: stopping
  voractl: the board library has not returned from a call, which cannot be interrupted: leaving without uninitialising the module
  voradrv_last_reading_age_seconds 0.000 voradrv_up 1 
  0
  voradrv_last_reading_age_seconds N voradrv_up 0 voradrv_scrape_duration_seconds N 
  20
  "waiting":N
  {"Platform Information"
  voradrv_up 0
  exit 1 within 1 x 7 s
  voractl: SIGHUP: there is no --web-config to reread
  voractl: stopping
  voractl: the board library has not returned from a call, which cannot be interrupted: leaving without uninitialising the module
  voradrv_last_reading_age_seconds 0.000 voradrv_up 1 
  0
  voradrv_last_reading_age_seconds N voradrv_up 0 voradrv_scrape_duration_seconds N 
  20
  "waiting":N
  {"Platform Information"
  voradrv_up 0
  exit 1 within 1 x 7 s
  voractl: SIGHUP: there is no --web-config to reread
  voractl: stopping
  voractl: the board library has not returned from a call, which cannot be interrupted: leaving without uninitialising the module

An initialise that never answers: the exporter serves voradrv_up 0 all the
same, and stops within the bound:

  $ serve --sim=hanginit.json --sim-reset --quiet
  $ scrape | grep '^voradrv_up'
  voradrv_up 0
  $ SECONDS=0; kill -TERM $server; wait $server; echo "exit $? within $((SECONDS <= 7)) x 7 s"
  exit 1 within 1 x 7 s
  $ grep -c 'initialise has not answered in 5 s' serve.err
  1

The board library's calls a scrape makes on each generation's largest
board: the first reads every item; later ones leave out the texts the board
cannot change while it runs (its name, revisions, serial number and
versions), read once (the third generation's module keeps them itself):

  $ for generation in 4 3 eapi; do
  >   serve --sim=largest$generation.json --sim-generation $generation --sim-reset --quiet --trace
  >   calls() { grep -vc '^voractl' serve.err; }
  >   before=$(calls); curl -s $url/metrics > /dev/null; first=$(calls)
  >   curl -s $url/metrics > /dev/null; echo "$generation: $((first - before)) then $(($(calls) - first))"
  >   kill $server; wait $server
  > done
  4: 361 then 346
  3: 282 then 282
  eapi: 48 then 35
