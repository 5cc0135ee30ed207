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
  headers, a body on GET, a TLS handshake on the plain port, a client that
  sends nothing (cut after the exporter's timeout), and slowloris clients
  that drip their headers while others scrape;
- SIGTERM: exit status 0, no child process left.
Every request goes to 127.0.0.1 only; every loop is bounded in time.
"""
import http.client, os, re, signal, socket, subprocess, sys, threading, time

VORACTL = sys.argv[1]
SECONDS = float(sys.argv[2]) if len(sys.argv) > 2 else 10.0
CLIENTS = 16
failures = []


def fail(message):
    failures.append(message)
    print("FAIL:", message)


TRACE = os.path.join(os.environ.get("XDG_RUNTIME_DIR") or "/tmp", f"load-trace-{os.getpid()}")


def start():
    """The exporter, tracing its board library calls into TRACE."""
    trace = open(TRACE, "w")
    process = subprocess.Popen([VORACTL, "--sim", "--quiet", "--trace", "serve", "--listen",
                                "127.0.0.1:0"], stderr=trace)
    for _ in range(200):
        found = re.search(r"^voractl: serving .*?:(\d+)/metrics", open(TRACE).read(), re.M)
        if found:
            return process, int(found.group(1))
        time.sleep(0.05)
    sys.exit("FAIL: the exporter did not start")


def board_readings():
    """How often the board library was asked for the board name: once at
    initialise, then once a reading."""
    return open(TRACE).read().count("VoraBoardGetStringA(id=0x1,") - 1


def scrape(port, timeout=10):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=timeout)
    try:
        connection.request("GET", "/metrics")
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

    started = time.time()
    answer = raw(port, b"", wait=20)
    print(f"hostile: a client that sends nothing: {answer.decode()} after {time.time() - started:.0f} s")
    if answer != b"<closed>" or time.time() - started > 15:
        fail("an idle client was not cut within 15 s")

    # Slowloris: 8 clients drip a header each half second; scrapes still answer.
    stop = threading.Event()

    def drip():
        try:
            with socket.create_connection(("127.0.0.1", port), timeout=5) as s:
                s.sendall(b"GET /metrics HTTP/1.1\r\nHost: a\r\n")
                while not stop.wait(0.5):
                    s.sendall(b"X-Slow: y\r\n")
        except OSError:
            pass

    slow = [threading.Thread(target=drip) for _ in range(8)]
    for thread in slow:
        thread.start()
    time.sleep(1)
    ok = all(scrape(port, timeout=5)[1] for _ in range(20))
    stop.set()
    for thread in slow:
        thread.join()
    print(f"hostile: 8 slowloris clients: 20 scrapes meanwhile {'answered' if ok else 'NOT answered'}")
    if not ok:
        fail("scrapes were not answered while slowloris clients held connections")


def main():
    process, port = start()
    try:
        load(port, process.pid)
        hostile(port)
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
    print(f"load and hostile requests: {len(failures)} failures")
    return 1 if failures else 0


sys.exit(main())
