"""What is timed: the page, with one of its faces, and the plain copying tools."""

import json
import os
import select
import subprocess
import termios
import time
from dataclasses import dataclass
from pathlib import Path

_JSON_COMMANDS = b'{"do":"enter"}\n{"do":"wait"}\n{"do":"forward"}\n{"do":"quit"}\n'


@dataclass(frozen=True)
class Run:
    seconds: float
    processor_seconds: float | None = None  # of all threads, in the program and in the system for it
    peak_megabytes: float | None = None


class Failure(Exception):
    pass


def _spawn_measured(arena, command, environment, **streams):
    """Starts a command so that what it used comes out. Not as a child of this program: a new process counts
    its parent's memory as its own until it runs something else."""
    measured = ["/usr/bin/time", "-q", "-f", "%U %S %M", "-o", str(arena.mount / "used"), *command]
    return subprocess.Popen(measured, env=environment, cwd="/", **streams)


def _run_used(arena, seconds):
    user, system, kilobytes = (arena.mount / "used").read_text().split()[-3:]
    return Run(seconds, float(user) + float(system), int(kilobytes) / 1024)


class CopyTool:
    def __init__(self, name, *command):
        self.name = name
        self.command = command

    def run(self, arena):
        places = (f"{arena.source}/{self._all}", f"{arena.destination}/")
        start = time.perf_counter()
        process = _spawn_measured(arena, [*self.command, *places], os.environ, stdin=subprocess.DEVNULL)
        status = process.wait()
        seconds = time.perf_counter() - start
        if status != 0:
            raise Failure(f"{self.name} ended with {status}")
        return _run_used(arena, seconds)

    @property
    def _all(self):
        return "" if self.name.startswith("rsync") else "."


class Page:
    """The page in `tavinstall run`. The copy is timed, and the audit where that is wanted, as the program's summary
    has them."""

    def __init__(self, build, face="quiet", wrapper=(), counts_audit=False):
        self.counts_audit = counts_audit
        self.name = "tavinstall" if face == "quiet" else f"tavinstall --ui {face}"
        self.face = face
        self.command = [*wrapper, str(build / "bin/tavinstall"), "run",
                        "--bundle", str(build / "InstallDataPane.bundle")]  # fmt: skip

    def run(self, arena):
        command = [*self.command, "--ui", self.face, "--trusted", "--package", str(arena.package),
                   "--summary", str(arena.summary)]  # fmt: skip
        environment = {**os.environ, "HOME": str(arena.home), "TERM": "xterm-256color", "LC_ALL": "C.UTF-8"}
        if self.face == "terminal":
            self._run_in_terminal(arena, command, environment)
        else:
            self._run_with_pipes(arena, command, environment)
        summary = json.loads(arena.summary.read_text())
        if summary["sheets"] or not summary["ready"]:
            raise Failure(f"{self.name} reported: {summary['sheets']}")
        seconds = sum(copy["seconds"] for copy in summary["copies"])
        seconds += summary["checkingSeconds"] if self.counts_audit else 0
        return Run(seconds) if self.face == "terminal" else _run_used(arena, seconds)

    def _run_with_pipes(self, arena, command, environment):
        is_json = self.face == "json"
        process = _spawn_measured(
            arena, command, environment,
            stdin=subprocess.PIPE if is_json else subprocess.DEVNULL,
            stdout=subprocess.PIPE if is_json else subprocess.DEVNULL,
        )  # fmt: skip
        if is_json:
            process.stdin.write(_JSON_COMMANDS)
            process.stdin.flush()
            while os.read(process.stdout.fileno(), 65536):
                pass
        if process.wait() != 0:
            raise Failure(f"{self.name} ended with {process.returncode}")

    def _run_in_terminal(self, arena, command, environment):
        """Presses Continue and reads what is drawn. When all is installed the terminal goes away: the install
        does not depend on it, and writes its summary."""
        terminal, inside = os.openpty()
        termios.tcsetwinsize(inside, (24, 80))
        process = subprocess.Popen(command, env=environment, cwd="/", start_new_session=True,
                                   stdin=inside, stdout=inside, stderr=inside)  # fmt: skip
        os.close(inside)
        while not arena.log.exists():
            os.write(terminal, b"\r")
            _show(terminal)
        while b"Installation complete" not in _end_of(arena.log):
            _show(terminal)
        engine = Path("/proc", _said("pgrep", "-P", str(process.pid)))
        os.close(terminal)
        process.wait()
        while engine.exists():
            time.sleep(0.05)


def _said(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def _show(terminal):
    """Takes what is drawn within a fifth of a second."""
    end = time.monotonic() + 0.2
    while (left := end - time.monotonic()) > 0:
        if select.select([terminal], [], [], left)[0]:
            os.read(terminal, 65536)


def _end_of(path):
    with open(path, "rb") as file:
        file.seek(max(0, path.stat().st_size - 1000))
        return file.read()
