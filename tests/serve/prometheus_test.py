#!/usr/bin/env python3
"""A real Prometheus server scrapes `voractl --sim serve` on every generation.

  prometheus_test.py VORACTL

For each simulated board: start the exporter on a free loopback port, start
Debian's prometheus with a scrape configuration pointing at it, wait for a
successful scrape, then ask the server's HTTP API for a temperature and a
GPIO level and compare them with what `voractl get` reads. Every process is
stopped and every scratch file removed, whatever happens.
"""
import json, os, re, shutil, signal, socket, subprocess, sys, tempfile, time, urllib.parse, urllib.request

VORACTL = sys.argv[1]
DEADLINE = 30  # seconds for a server to answer


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def wait_for(what, check):
    end = time.time() + DEADLINE
    while time.time() < end:
        result = check()
        if result is not None:
            return result
        time.sleep(0.2)
    sys.exit(f"FAIL: {what} within {DEADLINE} s")


def query(port, expression):
    url = f"http://127.0.0.1:{port}/api/v1/query?" + urllib.parse.urlencode({"query": expression})
    try:
        with urllib.request.urlopen(url, timeout=5) as answer:
            result = json.load(answer)["data"]["result"]
    except OSError:
        return None
    return float(result[0]["value"][1]) if result else None


def voractl(generation, *args):
    out = subprocess.run([VORACTL, "--sim", "--sim-generation", generation, "--quiet", *args],
                         check=True, capture_output=True, text=True).stdout
    return json.loads(out)


def check(generation, scratch):
    items = voractl(generation, "list", "--json")
    temperature = next(i for i in items if i["group"] == "Temperature")
    level = next(i for i in items if i["block"] == "GPIO" and i["name"] == "Level")
    pin = level["group"]
    exporter_port, server_port = free_port(), free_port()
    config = os.path.join(scratch, f"prometheus-{generation}.yml")
    with open(config, "w") as f:
        f.write("global:\n  scrape_interval: 1s\n  scrape_timeout: 1s\n"
                "scrape_configs:\n  - job_name: voradrv\n    static_configs:\n"
                f"      - targets: ['127.0.0.1:{exporter_port}']\n")
    processes = []
    try:
        processes.append(subprocess.Popen(
            [VORACTL, "--sim", "--sim-generation", generation, "--quiet", "serve",
             "--listen", f"127.0.0.1:{exporter_port}"], stderr=subprocess.DEVNULL))
        processes.append(subprocess.Popen(
            ["prometheus", f"--config.file={config}",
             f"--storage.tsdb.path={os.path.join(scratch, 'data-' + generation)}",
             f"--web.listen-address=127.0.0.1:{server_port}"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        wait_for(f"generation {generation}: a successful scrape",
                 lambda: query(server_port, 'up{job="voradrv"} == 1 and on() voradrv_up == 1'))
        served = {
            "temperature": query(server_port, f'voradrv_temperature_celsius{{sensor="{temperature["name"]}"}}'),
            "level": query(server_port, f'voradrv_gpio_level{{pin="{pin}"}}'),
        }
        read = {
            "temperature": voractl(generation, "get", "--json", str(temperature["id"]))["value"],
            "level": 1 if voractl(generation, "get", "--json", str(level["id"]))["value"] else 0,
        }
        if served != read:
            sys.exit(f"FAIL: generation {generation}: Prometheus holds {served}, voractl reads {read}")
        print(f"generation {generation}: Prometheus and voractl agree: "
              f"Temperature/{temperature['name']} {read['temperature']}, {pin}/Level {read['level']}")
    finally:
        for process in processes:
            process.send_signal(signal.SIGTERM)
        for process in processes:
            try:
                process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
                sys.exit("FAIL: a process did not stop on SIGTERM")
        if processes[0].returncode != 0:
            sys.exit(f"FAIL: voractl serve exited {processes[0].returncode} on SIGTERM")


def main():
    if shutil.which("prometheus") is None:
        print("SKIP: Debian's prometheus is not installed")
        return 77
    scratch = tempfile.mkdtemp(prefix="voradrv-prometheus-")
    try:
        for generation in ("4", "3", "eapi"):
            check(generation, scratch)
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    return 0


sys.exit(main())
