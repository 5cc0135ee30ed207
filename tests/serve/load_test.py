#!/usr/bin/env python3
"""voractl serve under load and under hostile requests.

  load_test.py VORACTL [SECONDS]

Starts `voractl --sim serve` on a free loopback port, then:
- 16 clients scrape /metrics for SECONDS (default 10); every answer must be
  200 and whole (its length as announced, ending with the exporter's last
  family), scrapes that arrive together must share readings of the board
  (fewer readings than scrapes, from the exporter's trace of its library
  calls), and the exporter's resident memory must not grow from the first
  second of load to the end;
- hostile requests, each of which must get a 4xx answer or a closed
  connection, with a normal scrape answered after each: a 1 MiB URL, 10,000
  headers, a body on GET, a TLS handshake on the plain port;
- a crowd of 200 clients that drip their headers, 200 that drip a body and
  900 that send nothing (more than the exporter's connections), each coming
  back when cut, while a scraper asks once a second: every scrape answered
  within a second, and every client of the crowd cut or answered;
- SIGTERM while the crowd is there: exit status 0, no child process left;
- basic auth with a cost-12 bcrypt hash: scrapes with the right password
  cost no bcrypt run each (the exporter's CPU time tells), an unknown user
  costs what a known one with a wrong password does, 60 clients trying
  wrong passwords neither delay a scrape past a second nor take more than
  a core, and their failed logins are logged a line in 10 seconds at most.
Every request goes to 127.0.0.1 only; every loop is bounded in time.
"""
import base64, http.client, os, re, selectors, signal, socket, subprocess, sys, tempfile, threading, time

VORACTL = sys.argv[1]
SECONDS = float(sys.argv[2]) if len(sys.argv) > 2 else 10.0
CLIENTS = 16
failures = []


def fail(message):
    failures.append(message)
    print("FAIL:", message)


TRACE = os.path.join(os.environ.get("XDG_RUNTIME_DIR") or "/tmp", f"load-trace-{os.getpid()}")


def start(log=TRACE, options=("--trace",), web=()):
    """The exporter, tracing its board library calls into TRACE."""
    trace = open(log, "w")
    process = subprocess.Popen([VORACTL, "--sim", "--quiet", *options, "serve", "--listen",
                                "127.0.0.1:0", *web], stderr=trace)
    for _ in range(200):
        found = re.search(r"^voractl: serving .*?:(\d+)/metrics", open(log).read(), re.M)
        if found:
            return process, int(found.group(1))
        time.sleep(0.05)
    sys.exit("FAIL: the exporter did not start")


def board_readings():
    """How often the board library was asked for the board name: once at
    initialise, then once a reading."""
    return open(TRACE).read().count("VoraBoardGetStringA(id=0x1,") - 1


def scrape(port, timeout=10, headers={}):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=timeout)
    try:
        connection.request("GET", "/metrics", headers=headers)
        answer = connection.getresponse()
        body = answer.read()
        whole = (answer.status == 200 and len(body) == int(answer.getheader("Content-Length", -1))
                 and body.rstrip().split(b"\n")[-1].startswith(b"voradrv_scrape_duration_seconds "))
        return answer.status, whole
    finally:
        connection.close()


def resident_kib(pid):
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    return 0


def raw(port, data, wait=12.0):
    """Sends raw bytes; returns what came back before the server closed or `wait` ran out."""
    with socket.create_connection(("127.0.0.1", port), timeout=wait) as s:
        try:
            s.sendall(data)
        except OSError:
            return b"<closed while sending>"
        received = b""
        try:
            while True:
                chunk = s.recv(65536)
                if not chunk:
                    return received or b"<closed>"
                received += chunk
        except socket.timeout:
            return received or b"<no answer>"
        except OSError:
            return received or b"<closed>"


def load(port, pid):
    counts = {"answers": 0, "bad": 0}
    lock = threading.Lock()
    end = time.time() + SECONDS

    def client():
        while time.time() < end:
            try:
                status, whole = scrape(port)
            except OSError as e:
                status, whole = str(e), False
            with lock:
                counts["answers"] += 1
                if not whole:
                    counts["bad"] += 1
                    if counts["bad"] <= 3:
                        fail(f"a scrape under load answered {status}, not whole")

    threads = [threading.Thread(target=client) for _ in range(CLIENTS)]
    for thread in threads:
        thread.start()
    time.sleep(min(1.0, SECONDS / 4))
    before = resident_kib(pid)
    for thread in threads:
        thread.join()
    after = resident_kib(pid)
    print(f"load: {CLIENTS} clients, {counts['answers']} scrapes in {SECONDS:g} s, "
          f"{counts['bad']} not whole; resident {before} KiB after the first second, {after} KiB at the end")
    if counts["answers"] < CLIENTS:
        fail("too few scrapes answered under load")
    readings = board_readings()
    print(f"load: {counts['answers']} scrapes answered from {readings} readings of the board")
    if not 1 <= readings < counts["answers"]:
        fail("concurrent scrapes did not share readings of the board")
    if os.environ.get("VTEST_SANITIZED") == "1":
        print("load: resident memory not held (AddressSanitizer keeps freed memory in quarantine)")
    elif after > before + 1024:
        fail(f"resident memory grew by {after - before} KiB under load")


def hostile(port):
    cases = {
        "a 1 MiB URL": b"GET /metrics?" + b"x" * (1 << 20) + b" HTTP/1.1\r\nHost: a\r\n\r\n",
        "10,000 headers": b"GET /metrics HTTP/1.1\r\nHost: a\r\n" +
                          b"".join(b"X-%d: y\r\n" % i for i in range(10000)) + b"\r\n",
        "a body on GET": b"GET /metrics HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n"
                         b"Connection: close\r\n\r\nhello",
        "a TLS handshake": bytes.fromhex("16030100a5010000a10303") + os.urandom(32) + b"\x00" * 120,
        "a header line without a colon": b"GET /metrics HTTP/1.1\r\nHost a\r\nBroken\r\n\r\n",
    }
    for name, data in cases.items():
        answer = raw(port, data)
        first = answer.split(b"\r\n", 1)[0]
        # Refused: a 4xx answer or a closed connection; a server that holds
        # the connection without answering has not refused it.
        refused = answer in (b"<closed>", b"<closed while sending>") or first[9:10] == b"4"
        print(f"hostile: {name}: {first[:40].decode(errors='replace') or answer.decode()}")
        if not refused:
            fail(f"{name} got {first!r}")
        if scrape(port)[1] is not True:
            fail(f"no normal scrape after {name}")



# Clients that hold a connection as long as the exporter lets them: how
# many, what each sends on connecting, and what it sends then every PERIOD
# seconds. Together more than the exporter's 1,024 connections.
CROWD = {
    "drip headers": (200, b"GET /metrics HTTP/1.1\r\nHost: a\r\n", b"X-Slow: y\r\n", 2.0),
    "drip a body": (200, b"GET /metrics HTTP/1.1\r\nHost: a\r\nContent-Length: 1000\r\n\r\n", b"x", 5.0),
    "send nothing": (900, b"", b"", 1e9),
}


def crowd(port, stop, cuts):
    """The clients of CROWD; one that is cut (or answered, or refused) comes
    back a second later. Counts the cuts of each kind."""
    selector, back = selectors.DefaultSelector(), []

    def join(kind):
        _, first, _, period = CROWD[kind]
        try:
            s = socket.create_connection(("127.0.0.1", port), timeout=2)
            s.sendall(first)
            s.setblocking(False)
            selector.register(s, selectors.EVENT_READ, [kind, time.time() + period])
        except OSError:
            cuts[kind] += 1
            back.append((time.time() + 1, kind))

    for kind, (size, *_) in CROWD.items():
        for _ in range(size):
            join(kind)
    while not stop.is_set():
        for key, _ in selector.select(timeout=0.1):  # an answer or the end: either way it is over
            selector.unregister(key.fileobj)
            key.fileobj.close()
            cuts[key.data[0]] += 1
            back.append((time.time() + 1, key.data[0]))
        now = time.time()
        for key in list(selector.get_map().values()):
            kind, due = key.data
            if now >= due:
                key.data[1] = now + CROWD[kind][3]
                try:
                    key.fileobj.send(CROWD[kind][2])
                except OSError:
                    pass  # seen on the next select
        while back and back[0][0] <= now:
            join(back.pop(0)[1])
    for key in list(selector.get_map().values()):
        key.fileobj.close()


def crowded(port, process, scrapes=15):
    """Scrapes once a second while the crowd holds connections, then stops
    the exporter with SIGTERM while it is still there."""
    stop, cuts = threading.Event(), {kind: 0 for kind in CROWD}
    thread = threading.Thread(target=crowd, args=(port, stop, cuts))
    thread.start()
    time.sleep(2)
    late = []
    for i in range(scrapes):
        started = time.time()
        try:
            whole = scrape(port, timeout=1)[1]
        except OSError:
            whole = False
        took = time.time() - started
        if not whole or took > 1:
            late.append(f"{took:.2f} s")
        time.sleep(max(0, 1 - took))
    print(f"crowd: {sum(c[0] for c in CROWD.values())} clients; {scrapes - len(late)} of {scrapes} scrapes answered "
          f"within a second; cut or answered: " + ", ".join(f"{k} {n}" for k, n in cuts.items()))
    if late:
        fail(f"scrapes not answered within a second beside the crowd: {late}")
    for kind, count in cuts.items():
        if count < CROWD[kind][0]:
            fail(f"only {count} of {CROWD[kind][0]} clients that {kind} were cut in {scrapes} s")
    process.send_signal(signal.SIGTERM)  # under load
    stop.set()
    thread.join()


USER, PASSWORD = "prometheus", "scrape-me"
HASH = "$2b$12$0MAwyrQ7Llxs4zKPYrI64OOGxUwLzUCO3b1jnBcfrEV5ejRwogZcy"  # cost 12: about 0.25 s


def credentials(user, password):
    return {"Authorization": "Basic " + base64.b64encode(f"{user}:{password}".encode()).decode()}


def cpu_seconds(pid):
    fields = open(f"/proc/{pid}/stat").read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def logins():
    scratch = tempfile.mkdtemp()
    config, log = os.path.join(scratch, "web.yml"), os.path.join(scratch, "err")
    with open(config, "w") as f:
        f.write(f"basic_auth_users:\n  {USER}: '{HASH}'\n")
    process, port = start(log, options=(), web=("--web-config", config))
    began, right = time.time(), credentials(USER, PASSWORD)
    try:
        def cost(requests):
            """The exporter's CPU seconds for these requests, one after the other."""
            before = cpu_seconds(process.pid)
            statuses = {scrape(port, headers=headers)[0] for headers in requests}
            return cpu_seconds(process.pid) - before, statuses

        cost([right])
        cached, statuses = cost([right] * 20)
        unknown, _ = cost([credentials(f"nobody{i}", PASSWORD) for i in range(4)])
        known, _ = cost([credentials(USER, f"wrong{i}") for i in range(4)])
        print(f"logins: 20 scrapes with the right password {cached:.2f} s of CPU {statuses}; 4 "
              f"unknown users {unknown:.2f} s, 4 wrong passwords {known:.2f} s")
        if statuses != {200} or cached > 1.0:
            fail("scrapes with the right password ran bcrypt each time")
        if not 0.5 < unknown / max(known, 0.01) < 2:
            fail("an unknown user does not cost what a known one does")

        # 60 clients try passwords while the scraper, logged in, asks once a second.
        stop, tries = threading.Event(), [0]

        def guess(n):
            while not stop.is_set():
                tries[0] += 1
                try:
                    scrape(port, timeout=30, headers=credentials(USER, f"guess{n}-{tries[0]}"))
                except OSError:
                    pass

        guessers = [threading.Thread(target=guess, args=(n,)) for n in range(60)]
        for thread in guessers:
            thread.start()
        started, cpu = time.time(), cpu_seconds(process.pid)
        late = []
        for _ in range(8):
            t = time.time()
            if scrape(port, timeout=1, headers=right)[0] != 200 or time.time() - t > 1:
                late.append(f"{time.time() - t:.2f} s")
            time.sleep(max(0, 1 - (time.time() - t)))
        cores = (cpu_seconds(process.pid) - cpu) / (time.time() - started)
        stop.set()
        for thread in guessers:
            thread.join()
        print(f"logins: 60 clients guessing, {tries[0]} guesses; {8 - len(late)} of 8 scrapes within "
              f"a second; the exporter used {cores:.2f} cores")
        if late:
            fail(f"scrapes not answered within a second beside 60 guessers: {late}")
        if cores > 1.3:
            fail("password checks took more than a core")
    finally:
        process.send_signal(signal.SIGTERM)
        if process.wait(timeout=15) != 0:
            fail(f"the exporter with basic auth exited {process.returncode} on SIGTERM")
    lines = [l for l in open(log) if "failed login" in l]
    print(f"logins: {len(lines)} log lines of failed logins in {time.time() - began:.0f} s: "
          f"{lines[-1].strip() if lines else ''}")
    if not 1 <= len(lines) <= (time.time() - began) / 10 + 2 or "not shown" not in lines[-1]:
        fail("failed logins are not logged, or not within the bound")
    subprocess.run(["rm", "-rf", scratch])


def main():
    process, port = start()
    try:
        load(port, process.pid)
        hostile(port)
        crowded(port, process)
    finally:
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(timeout=15)
        except subprocess.TimeoutExpired:
            process.kill()
            fail("SIGTERM did not stop the exporter")
    if process.returncode != 0:
        fail(f"the exporter exited {process.returncode} on SIGTERM")
    children = subprocess.run(["pgrep", "-P", str(process.pid)], capture_output=True, text=True).stdout
    if children.strip():
        fail(f"child processes left: {children.split()}")
    os.unlink(TRACE)
    logins()
    print(f"load, hostile requests and logins: {len(failures)} failures")
    return 1 if failures else 0


sys.exit(main())
