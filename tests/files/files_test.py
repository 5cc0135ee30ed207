#!/usr/bin/env python3
"""Runs one of the tables beside it, as root and again as an unprivileged
user, in a private mount namespace on a scratch tmpfs:

    files_test.py writers|readers BUILD_DIR SCRATCH_DIR

writers.txt: every writer against every kind of target; readers.txt: every
reader against every hostile input. Each cell is checked as that file says.
Needs root (other users' files, device nodes, mounts); exits 77 without it.
"""
import fcntl
import json
import os
import select
import socket
import stat
import subprocess
import sys
import threading
import time

NOBODY = 65534
OTHER = 1234  # the owner of another user's files
HERE = os.path.dirname(os.path.abspath(__file__))


def table(name):
    rows = [[cell.strip() for cell in line.split("|")]
            for line in open(os.path.join(HERE, name)) if line.strip() and not line.startswith("#")]
    return rows[0][1:], rows[1:]


def run(uid, command, env=None, stdout=subprocess.DEVNULL, timeout=60):
    """Runs `command` as `uid`; (exit status, standard error, peak memory in KiB)."""
    if uid != 0:
        command = ["setpriv", f"--reuid={uid}", f"--regid={uid}", "--clear-groups", *command]
    process = subprocess.Popen(command, env=dict(os.environ, **(env or {})), stdout=stdout,
                               stderr=subprocess.PIPE, stdin=subprocess.DEVNULL)
    timer = threading.Timer(timeout, process.kill)
    timer.start()
    error = process.stderr.read().decode(errors="replace")
    _, status, usage = os.wait4(process.pid, 0)
    timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, error, usage.ru_maxrss


def mount(*args):
    subprocess.run(["mount", *args], check=True)


def case_dir(scratch, uid, name):
    path = os.path.join(scratch, str(uid), name)
    os.makedirs(path)
    os.chown(path, uid, uid)
    return path


class Collector:
    """Reads what is written to a FIFO or sent to a socket at `path`."""

    def __init__(self, path, kind):
        self.data, self.done = b"", False
        if kind == "pipe":  # slow, small and non-blocking: the writer must wait and go on
            read, self.end = os.pipe()
            self.fds = [read]
            fcntl.fcntl(self.end, fcntl.F_SETPIPE_SZ, 4096)
            os.set_blocking(self.end, False)
        elif kind == "fifo":
            os.mkfifo(path, 0o666)
            os.chmod(path, 0o666)
            self.fds = [os.open(path, os.O_RDONLY | os.O_NONBLOCK)]
        else:
            self.listener = socket.socket(socket.AF_UNIX)
            self.listener.bind(path)
            os.chmod(path, 0o777)
            self.listener.listen(1)
            self.fds = [self.listener.fileno()]
        self.thread = threading.Thread(target=self.collect)
        self.thread.start()

    def collect(self):
        while True:
            busy = False
            for fd in select.select(self.fds, [], [], 0.05)[0]:
                if hasattr(self, "listener") and fd == self.listener.fileno():
                    self.fds.append(self.listener.accept()[0].detach())
                    busy = True
                    continue
                chunk = os.read(fd, 1024)
                self.data += chunk
                busy = busy or bool(chunk)
                if not chunk and fd != self.fds[0]:
                    self.fds.remove(fd)
            if not busy and self.done:
                return
            time.sleep(0 if busy else 0.01)

    def finish(self):
        self.done = True
        self.thread.join()
        return self.data.decode(errors="replace")


def snapshot(path):
    """What a path is and holds, to tell whether a writer touched it."""
    try:
        s = os.lstat(path)
    except FileNotFoundError:
        return None
    text = open(path, "rb").read() if stat.S_ISREG(s.st_mode) else None
    return stat.S_IFMT(s.st_mode), stat.S_IMODE(s.st_mode), s.st_uid, text


def writers(build, scratch, uid):
    voractl = f"{build}/tools/voractl/voractl"
    commands = {
        "export": lambda t: ([voractl, "--sim", "--quiet", "export", "--format", "prometheus", "--output", t], {}),
        "record": lambda t: ([voractl, "--sim", "--quiet", "record", "--output", t], {}),
        "state": lambda t: ([voractl, "--sim", "set", "DO1/Level=0"], {"VORA_SIM_STATE": t}),
        "standin": lambda t: ([f"{build}/sim/run-simulated", "--", f"{build}/examples/voradrv-host"],
                              {"VORA_RECORD": t}),
    }

    def written(writer, text):
        if target == "pipe":  # all of it, in order, through every partial write
            return text == reference if writer == "export" else bool(json.loads(text)["calls"])
        if writer != "state":
            return ("voradrv_" if writer == "export" else '"voradrv-recording"') in text
        pins = json.loads(text)["gpio"]
        return any(p["pin"] == 3 and p["level"] == 0 for p in pins)

    # The state that a writer changes: the simulated board with DO1 high.
    seed = os.path.join(case_dir(scratch, uid, "seed"), "state.json")
    run(0, [voractl, "--sim", "set", "DO1/Level=1"], {"VORA_SIM_STATE": seed})
    reference = subprocess.run(commands["export"]("-")[0], stdout=subprocess.PIPE, text=True).stdout
    failures = []
    writers_, rows = table("writers.txt")
    for row in rows:
        target, outcomes = row[0], dict(zip(writers_, row[1:]))
        for writer, outcome in outcomes.items():
            if outcome == "-":
                continue
            d = case_dir(scratch, uid, f"{writer}-{target}")
            old = open(seed).read() if writer == "state" else "old\n"
            path, watched, stdout, collector = os.path.join(d, "t"), [], subprocess.DEVNULL, None
            if target == "full":
                mount("-t", "tmpfs", "-o", f"size=128k,uid={uid}", "tmpfs", d)
            if target in ("odd", "full", "read-only", "stdout", "dash"):
                open(path, "w").write(old)
                os.chmod(path, 0o646)
                os.chown(path, OTHER, OTHER)
            elif target == "link":
                open(os.path.join(d, "real"), "w").write(old)
                os.chmod(os.path.join(d, "real"), 0o666)
                os.symlink("real", path)
                watched = [os.path.join(d, "real")]
            elif target == "dangling":
                os.mkdir(os.path.join(d, "sub"), 0o777)
                os.chmod(os.path.join(d, "sub"), 0o777)
                os.symlink("sub/new", path)
                watched = [os.path.join(d, "sub/new")]
            elif target == "planted":
                shared, victim = os.path.join(d, "shared"), os.path.join(d, "victim")
                os.mkdir(shared)
                os.chmod(shared, 0o1777)
                open(victim, "w").write(old)
                os.chmod(victim, 0o666)
                path = os.path.join(shared, "t")
                os.symlink(victim, path)
                os.lchown(path, OTHER, OTHER)
                watched = [victim]
            elif target in ("fifo", "socket", "pipe"):
                collector = Collector(path, target)
            elif target in ("device", "full-device", "block"):
                kind = stat.S_IFBLK if target == "block" else stat.S_IFCHR
                os.mknod(path, kind | 0o666, os.makedev(*{"device": (1, 3), "full-device": (1, 7)}.get(target, (7, 250))))
                os.chmod(path, 0o666)
            elif target == "directory":
                os.mkdir(path)
                os.chmod(path, 0o777)
            if target == "full":
                filler = os.open(os.path.join(d, "filler"), os.O_WRONLY | os.O_CREAT)
                try:
                    while os.write(filler, b"\0" * 4096):
                        pass
                except OSError:
                    os.close(filler)
            if target == "read-only":
                mount("--bind", d, d)
                mount("-o", "remount,bind,ro", d)
            argument = {"stdout": "/dev/stdout", "dash": "-", "pipe": "-", "slash": path + "/"}.get(target, path)
            if target in ("stdout", "dash"):
                stdout = open(path, "a")
            elif target == "pipe":
                stdout = collector.end
            before = [snapshot(p) for p in [path, *watched]]
            command, env = commands[writer](argument)
            status, error, _ = run(uid, command, env, stdout)
            if target == "pipe":
                os.close(collector.end)
            received = collector.finish() if collector else ""
            after = snapshot(path)
            kind, _, text = outcome.partition(":")
            owner = OTHER if uid == 0 else uid
            checks = {
                "new": lambda: after[0] == stat.S_IFREG and written(writer, after[3].decode())
                and after[1:3] == (0o644, uid),
                "replaced": lambda: after[3] != before[0][3] and written(writer, after[3].decode())
                and after[1:3] == (0o646, owner),
                "target": lambda: after[0] == stat.S_IFLNK and written(writer, open(watched[0]).read()),
                "appended": lambda: after[3].decode().startswith(old)
                and written(writer, after[3].decode()[len(old):]),
                "in-place": lambda: target == "pipe" and written(writer, received) or after[0] == before[0][0]
                and (target not in ("fifo", "socket") or written(writer, received)),
                "refused": lambda: all(t in error for t in text.split(";")) and [snapshot(p) for p in [path, *watched]] == before
                and (status == 1 or writer == "standin"),
            }
            dirs = {d, os.path.dirname(path), *(os.path.dirname(w) for w in watched)}
            left = [n for p in dirs for n in os.listdir(p) if n.startswith(".")]
            try:
                held = (after is not None or kind == "refused" or target == "pipe") and checks[kind]()
            except (ValueError, KeyError, TypeError):  # not what the writer should have written
                held = False
            ok = held and (kind == "refused" or status == 0 or writer == "standin") and not left
            if not ok:
                failures.append(f"{writer} {target} as uid {uid}: expected {outcome}, got exit {status}, "
                                f"{error.strip()!r}, {after and after[:3]}, left {left}")
    return failures


def readers(build, scratch, uid):
    voractl = f"{build}/tools/voractl/voractl"
    commands = {
        "profile": lambda i: ([voractl, f"--sim={i}", "--quiet", "list"], {}),
        "recording": lambda i: ([voractl, f"--sim={i}", "--quiet", "list"], {}),
        "state": lambda i: ([voractl, "--sim", "get", "Board name"], {"VORA_SIM_STATE": i}),
        "webconfig": lambda i: ([voractl, "--sim", "serve", "--listen", "127.0.0.1:0", "--web-config", i], {}),
    }
    header = ('{"format": "voradrv-recording", "version": 1, "library": {"generation": "4"}, '
              '"calls": [')
    call = '{"function": "VoraLibInitialize", "in": {}, "out": {}},'

    def content(name, reader):
        """The input as pieces, so that no large text is ever held here."""
        recording, yaml = reader == "recording", reader == "webconfig"
        text = header[:-10] + '"x": "' if recording else "a: " if yaml else '{"description": "'
        return {
            "empty": [""],
            "not-json": ["hello\n"],
            "deep": ["[" * 4000 + "]" * 4000],
            "too-large": [text] + ["x" * (1 << 20)] * (17 if recording else 2) + ['"}'],
            "wrong-types": [header + '{"function": "VoraLibInitialize", "in": {}, "status": "0", "out": {}}]}' if recording
                            else "basic_auth_users: [1]\n" if yaml else '{"board": {"name": 5}}'],
            "invalid-utf8": [text, "\xff", '"}'],
            "control": [text, "\x1b[31m", '"}'],
            "calls": [header] + [call * 1000] * 101 + ["]}"],
            "million": [header] + [call * 1000] * 1000 + ["]}"],
            "sequence": [header.replace('"4"', '"3"') + '{"function": "VoraDllGetVersion", "in": {}, "answers": ['] +
                        ['{"out": {}},' * 1000] * 1000 + ['{"out": {}}]}]}'],
            "duplicate": [header.replace('"version": 1,', '"version": 1, "version": 1,') + "]}" if recording
                          else 'a: 1\na: 2\n' if yaml else '{"board": {"name": "A", "name": "B"}}'],
        }[name]
    failures = []
    readers_, rows = table("readers.txt")
    for row in rows:
        name, expected = row[0], dict(zip(readers_, row[1:]))
        for reader, text in expected.items():
            if text == "-":
                continue
            d = case_dir(scratch, uid, f"{reader}-{name}")
            path = os.path.join(d, "input")
            if name in ("zero", "io-error"):
                path = "/dev/zero" if name == "zero" else "/proc/self/mem"
            elif name == "fifo":
                os.mkfifo(path, 0o666)
            elif name == "directory":
                os.mkdir(path)
            elif name == "planted":  # by another user, in a sticky directory anyone may write
                os.chmod(d, 0o1777)
                os.symlink("/etc/hostname", path)
                os.lchown(path, OTHER, OTHER)
            elif name == "sparse":
                open(path, "wb").truncate(1 << 30)
            else:
                with open(path, "wb") as f:
                    for piece in content(name, reader):
                        f.write(piece.encode("latin-1"))
            if name not in ("zero", "io-error", "planted"):
                os.chown(path, uid, uid)
            command, env = commands[reader](path)
            status, error, memory = run(uid, command, env, timeout=20)
            if status != 1 or text not in error or memory > 256 << 10:
                failures.append(f"{reader} {name} as uid {uid}: expected {text!r}, got exit {status}, "
                                f"{error.strip()!r}, {memory} KiB")
    return failures


def main():
    which, build, scratch = sys.argv[1:4]
    if os.geteuid() != 0:
        print("skipped: the tables need root to make other users' files, devices and mounts")
        return 77
    if "VTEST_PRIVATE_MOUNTS" not in os.environ:
        os.environ["VTEST_PRIVATE_MOUNTS"] = "1"
        os.execvp("unshare", ["unshare", "--mount", "--propagation", "private", sys.executable, *sys.argv])
    os.makedirs(scratch, exist_ok=True)
    mount("-t", "tmpfs", "-o", "size=512m,mode=0755", "tmpfs", scratch)
    os.umask(0o022)
    failures = []
    for uid in (0, NOBODY):
        runtime = case_dir(scratch, uid, "runtime")
        os.chmod(runtime, 0o700)
        os.environ["XDG_RUNTIME_DIR"] = runtime
        failures += {"writers": writers, "readers": readers}[which](build, scratch, uid)
    print("\n".join(failures) or f"every {which[:-1]} held, as root and as uid {NOBODY}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
