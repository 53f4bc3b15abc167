"""The report: the machine, then a section for each case."""

import datetime
import os
import platform
import re
import subprocess
from pathlib import Path


def whole(sections, options):
    head = [
        "# Measured",
        "",
        "Written by `scripts/bench`. Below each other are medians; a ratio is the median of the ratios of the pairs, and",
        "below 1 where `tavinstall` is faster. Its copy alone is timed, as its summary has it, with the audit where that is",
        "said; the other tools from their start to their end. Nobody waits for the disk: what was written is still in",
        "memory for the most part.",
        "",
        *(f"- {line}" for line in _machine(options)),
        "",
    ]
    return "\n".join(head) + "\n" + "\n".join(section.text() for section in sections)


def _machine(options):
    processors = re.findall(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    memory = int(re.search(r"MemTotal:\s+(\d+)", Path("/proc/meminfo").read_text())[1]) / 2**20
    yield f"{datetime.date.today()}, commit {_said('git', 'rev-parse', '--short', 'HEAD')}, {_build(options.build)}"
    yield f"{len(processors)} x {processors[0] if processors else platform.machine()}, {memory:.0f} GiB memory"
    yield f"Linux {platform.release()}; source on {_file_system(options.folder)}, destination a fresh ext4 on a loop device there"
    yield ", ".join(_said(tool, "--version").splitlines()[0] for tool in ("cp", "rsync"))
    yield f"load at the end: {os.getloadavg()[0]:.1f}"


def _said(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout.strip()


def _build(build):
    cache = (build / "CMakeCache.txt").read_text()
    compiler = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.MULTILINE)[1]
    kind = re.search(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache, re.MULTILINE)[1]
    return f"{kind} build by {_said(compiler, '--version').splitlines()[0]}"


def _file_system(folder):
    return _said("findmnt", "-n", "-o", "FSTYPE,SOURCE", "-T", folder)
