voractl serve keeps the module loaded and reads the board on every scrape.
It listens on loopback; port 0 takes any free one, and the address is on
standard error:

  $ serve() {
  >   : > serve.err
  >   voractl "$@" serve --listen 127.0.0.1:0 2> serve.err &
  >   server=$!
  >   for i in $(seq 100); do grep -q serving serve.err && break; sleep 0.05; done
  >   url=http://$(grep -o -m 1 '127.0.0.1:[0-9]*' serve.err)
  > }
  $ stop() { kill -TERM $server; wait $server; echo "exit $?"; }
  $ fetch() { curl -s -o /dev/null -w '%{http_code} %{content_type}\n' "$@"; }

  $ serve --sim
  $ sed 's/:[0-9][0-9]*\//:PORT\//' serve.err
  voractl: serving the board's metrics on http://127.0.0.1:PORT/metrics
  voractl: the board page is http://127.0.0.1:PORT/

/metrics holds the families of "export --format prometheus", the values as
voractl shows them, and the exporter's own; promtool accepts it:

  $ curl -s $url/metrics > metrics
  $ grep -E '^voradrv_(up|unreadable_items|temperature_celsius\{sensor="CPU"\}|gpio_level\{pin="DO1"\})' metrics
  voradrv_temperature_celsius{sensor="CPU"} 48.5
  voradrv_gpio_level{pin="DO1"} 1
  voradrv_unreadable_items 0
  voradrv_up 1
  $ grep -c '^voradrv_scrape_duration_seconds 0\.[0-9]*$' metrics
  1
  $ promtool check metrics < metrics

The board page's JSON: the capability document as the module built it, and
the records "voractl list --json" prints, with each value's "text" and
"limits" as voractl shows them; every answer, refusals of bad requests
included, forbids content from anywhere else:

  $ diff <(curl -s $url/api/v1/items | python3 -c 'import json, sys; print(json.dumps([{k: v for k, v in r.items() if k not in ("text", "limits")} for r in json.load(sys.stdin)], indent=1, sort_keys=True))') \
  >      <(voractl --sim --quiet list --json | python3 -m json.tool --sort-keys --indent 1)
  $ diff <(curl -s $url/api/v1/document | python3 -m json.tool --sort-keys) \
  >      <(voractl --sim --quiet caps | python3 -m json.tool --sort-keys)
  $ curl -s "$url/api/v1/samples?since=0" | python3 -c 'import json, sys; s = json.load(sys.stdin); print(s["interval"], len(s["samples"]) >= 1)'
  2 True
  $ long=$(head -c 20000 /dev/zero | tr '\0' x)
  $ for request in / /page.js /api/v1/items /metrics /nothing '/metrics -X POST' \
  >     '/metrics -X GET -d body' "/metrics -H X-Long:$long" "/metrics?$long"; do
  >   curl -s -D - -o /dev/null $url$request | grep -i '^content-security-policy' | tr -d '\r'
  > done | sort | uniq -c | sed 's/^ *//'
  9 Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'

Every scrape reads the board again, and sees what another process wrote:

  $ voractl --sim set DO1/Level=0
  $ curl -s $url/metrics | tee metrics | grep 'gpio_level{pin="DO1"}'
  voradrv_gpio_level{pin="DO1"} 0

OpenMetrics when the scraper asks for it, as Prometheus does; gzip when it
accepts it:

  $ curl -s -H 'Accept: application/openmetrics-text;version=1.0.0,text/plain;q=0.5' $url/metrics > open
  $ grep -E '^# (TYPE|HELP) voradrv_boots|^voradrv_boots|^# EOF' open
  # HELP voradrv_boots Times the board has started (Boot up times).
  # TYPE voradrv_boots counter
  voradrv_boots_total 1342
  # EOF
  $ tail -1 open
  # EOF
  $ fetch -H 'Accept: application/openmetrics-text;version=1.0.0' $url/metrics
  200 application/openmetrics-text; version=1.0.0; charset=utf-8
  $ curl -s -H 'Accept-Encoding: gzip' -D headers $url/metrics | gzip -dc | grep -v duration > unpacked
  $ grep -v duration metrics | cmp - unpacked
  $ grep -i '^content-encoding' headers | tr -d '\r'
  Content-Encoding: gzip
  $ curl -s -H 'Accept-Encoding: gzip;q=0, identity' -D - -o /dev/null $url/metrics | grep -ci '^content-encoding'
  0
  [1]
  $ fetch -H 'Accept: application/openmetrics-text;q=0, text/plain' $url/metrics
  200 text/plain; version=0.0.4; charset=utf-8

Beside the board page (serve.browser opens it), the metrics and the page's
JSON, anything is refused, and nothing over HTTP writes to the board:

  $ fetch $url/nothing
  404 text/plain; charset=utf-8
  $ fetch -X POST -d 'DO1/Level=1' $url/metrics
  405 text/plain; charset=utf-8
  $ fetch -X PUT $url/
  405 text/plain; charset=utf-8
  $ curl -s -X DELETE -D - -o /dev/null $url/metrics | grep -i '^allow' | tr -d '\r'
  Allow: GET, HEAD
  $ fetch -X GET -d 'body' $url/metrics
  400 text/plain; charset=utf-8
  $ fetch "$url/api/v1/samples?since=latest"
  400 text/plain; charset=utf-8
  $ fetch -I $url/metrics
  200 text/plain; version=0.0.4; charset=utf-8
  $ fetch -H "X-Long: $(head -c 20000 /dev/zero | tr '\0' x)" $url/metrics
  431 text/plain; charset=utf-8
  $ fetch "$url/metrics?$(head -c 20000 /dev/zero | tr '\0' x)"
  414 text/plain; charset=utf-8
  $ voractl --sim get DO1/Level
  low

SIGTERM stops it: connections closed, the module shut down (the board
library's uninitialise is the last call), no process left behind:

  $ stop
  exit 0
  $ tail -1 serve.err
  voractl: stopping
  $ mkdir tmp
  $ TMPDIR=$PWD/tmp serve --sim --trace
  $ curl -s $url/metrics > /dev/null
  $ kill -INT $server; wait $server; echo "exit $?"
  exit 0
  $ ls -A tmp | wc -l
  0
  $ grep -v '^voractl' serve.err | tail -1 | sed 's/ <.*//'
  VoraLibUninitialize() = 0x0
  $ kill -0 $server 2> /dev/null || echo gone
  gone
  $ curl -s $url/metrics || echo "nothing listens"
  nothing listens

A board library that starts failing is down, with what it still answers
published and the rest counted. This board's second voltage fails after two
reads (initialise makes the first):

  $ cat > failing.json <<'JSON'
  > {"board": {"name": "VB-1"}, "sensors": {"voltage": [{"index": 0, "value": 1}, {"index": 1, "value": 2}]},
  >  "faults": [{"function": "VoraBoardGetValue", "arg": "0x21001", "status": "0x1234", "after": 2}]}
  > JSON
  $ serve --sim=failing.json --quiet
  $ curl -s $url/metrics | grep -E '^voradrv_(up|unreadable|voltage_volts)'
  voradrv_voltage_volts{sensor="VCORE"} 1
  voradrv_voltage_volts{sensor="VCORE2"} 2
  voradrv_unreadable_items 0
  voradrv_up 1
  $ curl -s $url/metrics | grep -E '^voradrv_(up|unreadable|voltage_volts)'
  voradrv_voltage_volts{sensor="VCORE"} 1
  voradrv_unreadable_items 1
  voradrv_up 0
  $ stop
  exit 0

A module that does not come up leaves the exporter serving voradrv_up 0
with the status and time of the failure, and trying again, a little later
each time; once up, it publishes its items, and the failure stays told:

  $ cat > late.json <<'JSON'
  > {"board": {"name": "VB-1"}, "faults": [{"function": "VoraLibInitialize", "status": "0xFFFFF0FF", "times": 1}]}
  > JSON
  $ serve --sim=late.json --quiet
  $ curl -s $url/metrics | grep -E '^voradrv_(up|last_initialize|published|build)'
  voradrv_build_info{version="1.0.0"} 1
  voradrv_last_initialize_error_timestamp_seconds{error="error (0xFFFFF0FF)"} 1*.* (glob)
  voradrv_up 0
  $ for i in $(seq 50); do curl -s $url/metrics | grep -q '^voradrv_up 1' && break; sleep 0.1; done; echo "tries $((i < 50))"
  tries 1
  $ curl -s $url/metrics | grep -cE '^voradrv_(published_items|last_initialize_error)'
  2
  $ stop
  exit 0
  $ sed 's/(.*)/(STATUS)/' serve.err
  voractl: the module did not come up (STATUS); serving voradrv_up 0 and trying again
  voractl: serving the board's metrics on http://127.0.0.1:*/metrics (glob)
  voractl: the board page is http://127.0.0.1:*/ (glob)
  voractl: the module came up
  voractl: stopping

Wrong addresses are usage errors:

  $ voractl --sim serve --listen 127.0.0.1
  voractl: --listen needs ADDRESS:PORT, not "127.0.0.1"
  [2]
  $ voractl --sim serve --listen 127.0.0.1:70000
  voractl: --listen: the port must be a number from 0 to 65535, not "70000"
  [2]
  $ voractl --sim serve --listen example.org:80
  voractl: --listen: "example.org" is not an IPv4 address, a bracketed IPv6 address or localhost
  [2]
  $ voractl --sim serve --listen 127.0.0.1:0 extra
  voractl: serve takes no arguments
  [2]
