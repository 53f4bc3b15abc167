"""What is measured. A case makes its data, runs, prints, and gives a section of the report."""

import os
import re
import shutil
import statistics
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

import profile_copy
import trees
from tools import CopyTool, Failure, Page

CP = ("cp -R", "cp", "-R")
CP_PLAIN = ("cp --reflink=never -R", "cp", "--reflink=never", "-R")
RSYNC = ("rsync -a", "rsync", "-a")


@dataclass(frozen=True)
class Section:
    title: str
    columns: tuple[str, ...]
    rows: list[tuple[str, ...]]
    note: str = ""

    def text(self):
        """As a table of a Markdown file."""
        lines = [self.columns, tuple("---" if i == 0 else "---:" for i in range(len(self.columns))), *self.rows]
        table = "\n".join("| " + " | ".join(line) + " |" for line in lines)
        return f"## {self.title}\n\n{table}\n" + (f"\n{self.note}\n" if self.note else "")


def _print_rows(section):
    widths = [max(len(row[i]) for row in [section.columns, *section.rows]) for i in range(len(section.columns))]
    for row in [section.columns, *section.rows]:
        print("  " + "  ".join(text.ljust(width) for text, width in zip(row, widths)), flush=True)


def _median(runs, what):
    values = [getattr(run, what) for run in runs]
    return None if None in values else statistics.median(values)


def _shown(value, form="{:.2f}"):
    return "" if value is None else form.format(value)


def _load():
    return os.getloadavg()[0]


@dataclass(frozen=True)
class Comparison:
    """The page and other tools in turn, pair by pair."""

    name: str
    title: str
    tree: trees.Tree
    others: tuple[tuple, ...] = (CP, CP_PLAIN, RSYNC)
    faces: tuple[str, ...] = ()
    goals: dict = field(default_factory=dict)  # the greatest ratio, by tool
    is_cold: bool = False
    is_over_existing: bool = False
    counts_audit: bool = False  # the comparison of source and destination after the copy is timed, too

    def run(self, arena, options):
        load = _load()
        arena.lay_source(self.tree)
        page = Page(options.build, counts_audit=self.counts_audit)
        others = [CopyTool(*other) for other in self.others] + [Page(options.build, face) for face in self.faces]
        self._run_once(arena, page)
        if difference := trees.difference(arena.source, arena.destination):
            raise Failure(difference)
        pairs = {other.name: [] for other in others}
        for number in range(options.pairs):
            for other in others:
                # Whoever comes second finds the machine as the first has left it, so they change places.
                order = (page, other) if number % 2 == 0 else (other, page)
                runs = {tool.name: self._run_once(arena, tool) for tool in order}
                pairs[other.name].append((runs[page.name], runs[other.name]))
        section = self._section(page, pairs, load)
        _print_rows(section)
        return section

    def _run_once(self, arena, tool):
        arena.renew()
        if self.is_over_existing:
            CopyTool(*CP).run(arena)
            os.sync()
        if self.is_cold:
            trees.drop_caches()
        return tool.run(arena)

    def _section(self, page, pairs, load):
        own = [first for runs in pairs.values() for first, _ in runs]
        rows = [self._row(page.name, own, "", "", "")]
        for name, runs in pairs.items():
            ratios = [first.seconds / second.seconds for first, second in runs]
            goal = self.goals.get(name)
            middle = statistics.median(ratios)
            kept = "" if goal is None else f"{goal:.2f} {'reached' if middle <= goal else 'missed'}"
            spread = f"{min(ratios):.2f} to {max(ratios):.2f}"
            rows.append(self._row(name, [second for _, second in runs], f"{middle:.2f}", spread, kept))
        columns = ("", "seconds", "processor seconds", "peak MB", "tavinstall / it", "of the pairs", "goal")
        runs = len(next(iter(pairs.values())))
        note = f"Medians of {runs} pairs; load before: {load:.1f}."
        return Section(self.title, columns, rows, note)

    def _row(self, name, runs, ratio, spread, goal):
        return (name, _shown(_median(runs, "seconds"), "{:.3f}"), _shown(_median(runs, "processor_seconds")),
                _shown(_median(runs, "peak_megabytes"), "{:.1f}"), ratio, spread, goal)  # fmt: skip


@dataclass(frozen=True)
class Growth:
    """The page on more and more, and how a plain tool takes the same."""

    name: str
    title: str
    sizes: tuple[tuple[str, trees.Tree], ...]

    def run(self, arena, options):
        load = _load()
        page, plain = Page(options.build), CopyTool(*CP)
        rounds = min(options.pairs, 5)
        runs = {(tool.name, label): [] for tool in (page, plain) for label, _ in self.sizes}
        for number in range(rounds):
            for label, tree in self.sizes:
                arena.lay_source(tree)
                for tool in (page, plain) if number % 2 == 0 else (plain, page):
                    arena.renew()
                    runs[tool.name, label].append(tool.run(arena))
        rows = []
        for label, _ in self.sizes:
            own, others = runs[page.name, label], runs[plain.name, label]
            rows.append((label, f"{_median(own, 'seconds'):.3f}", self._growth(runs, page, label),
                         f"{_median(own, 'peak_megabytes'):.1f}", f"{_median(others, 'seconds'):.3f}",
                         self._growth(runs, plain, label)))  # fmt: skip
        note = f"Medians of {rounds} runs each; load before: {load:.1f}."
        columns = ("", "seconds", "times the first", "peak MB", f"seconds, {plain.name}", "times the first")
        section = Section(self.title, columns, rows, note)
        _print_rows(section)
        return section

    def _growth(self, runs, tool, label):
        """The median of each round's own ratio."""
        first, _ = self.sizes[0]
        pairs = zip(runs[tool.name, label], runs[tool.name, first])
        return f"{statistics.median(run.seconds / least.seconds for run, least in pairs):.1f}"


@dataclass(frozen=True)
class SystemCalls:
    """What the page asks of the system for a file and for a megabyte, beyond what a smaller install takes."""

    name: str
    title: str

    def run(self, arena, options):
        per_file = self._growth(arena, options, trees.small_files(100), trees.small_files(1100), 1000)
        per_megabyte = self._growth(arena, options, trees.one_file(0), trees.one_file(100 * 2**20), 100)
        calls = sorted(set(per_file) | set(per_megabyte), key=lambda call: -per_file.get(call, 0))
        rows = [(call, f"{per_file.get(call, 0):.2f}", f"{per_megabyte.get(call, 0):.2f}") for call in calls
                if max(per_file.get(call, 0), per_megabyte.get(call, 0)) >= 0.05]  # fmt: skip
        rows.append(("all", f"{sum(per_file.values()):.1f}", f"{sum(per_megabyte.values()):.1f}"))
        note = "Files of 2 KiB; a megabyte of a file of 100 MiB. Of all threads, counted by strace."
        section = Section(self.title, ("call", "a file", "a megabyte"), rows, note)
        _print_rows(section)
        return section

    def _growth(self, arena, options, smaller, larger, steps):
        before = self._count(arena, options, smaller)
        after = self._count(arena, options, larger)
        return {call: (after[call] - before.get(call, 0)) / steps for call in after}

    def _count(self, arena, options, tree):
        arena.lay_source(tree)
        arena.renew()
        counts = arena.mount / "calls"
        Page(options.build, wrapper=("strace", "-f", "-c", "-o", str(counts))).run(arena)
        rows = re.findall(r"^\s*[\d.]+\s+[\d.]+\s+\d+\s+(\d+)\s+(?:\d+\s+)?(\w+)$", counts.read_text(), re.MULTILINE)
        return {call: int(count) for count, call in rows if call != "total"}


@dataclass(frozen=True)
class Pieces:
    """Single operations, by the benchmark program."""

    name: str
    title: str

    def run(self, arena, options):
        program = options.build / "bin/page_benchmarks"
        out = subprocess.run([program, "--benchmark_format=csv"], check=True, capture_output=True, text=True).stdout
        found = [line.split(",") for line in out.splitlines() if line.startswith('"')]
        rows = [(fields[0].strip('"'), f"{float(fields[2]) / 1000:.2f}", f"{float(fields[3]) / 1000:.2f}") for fields in found]
        section = Section(self.title, ("", "microseconds", "of this thread's processor"), rows)
        _print_rows(section)
        return section


@dataclass(frozen=True)
class Profile:
    """Where the time goes; draws docs/performance.svg."""

    name: str
    title: str
    samples: tuple[tuple[str, trees.Tree], ...]

    def run(self, arena, options):
        if not shutil.which("perf"):
            raise Failure("the profile needs perf, in the package linux-perf or linux-tools-generic")
        bars = []
        for label, tree in self.samples:
            arena.lay_source(tree)
            arena.renew()
            shares = profile_copy.record(lambda wrapper: Page(options.build, wrapper=wrapper), arena)
            bars.append((label, shares))
        Path("docs/performance.svg").write_text(profile_copy.picture(bars))
        rows = [(kind, *(f"{shares[kind]:.0%}" for _, shares in bars)) for kind in bars[0][1]]
        note = "Of the processor time of all threads, sampled by perf."
        section = Section(self.title, ("", *(label for label, _ in bars)), rows, note)
        _print_rows(section)
        return section


ALL = (
    Comparison("many", "50,000 files of 2 KiB", trees.MANY, goals={"cp -R": 0.70, "rsync -a": 0.70}),
    Comparison("audited", "The same, copied and audited", trees.MANY, others=(CP, RSYNC), counts_audit=True),
    Comparison("big", "4 files of 512 MiB", trees.BIG, goals={"cp -R": 1.15, "rsync -a": 0.40}),
    Comparison("mixed", "Like a library: 4,000 files, 2 GB", trees.MIXED, goals={"cp -R": 0.95, "rsync -a": 0.45}),
    Comparison("mixed-cold", "The same, nothing in memory", trees.MIXED, is_cold=True,
               goals={"cp -R": 0.95, "rsync -a": 0.75}),
    Comparison("small-cold", "10,000 files of 2 KiB, nothing in memory", trees.small_files(10_000), is_cold=True,
               goals={"cp -R": 0.80, "rsync -a": 1.0}),
    Comparison("over", "Like a library, over the same files", trees.MIXED, is_over_existing=True,
               goals={"cp -R": 0.90, "rsync -a": 0.90}),
    Comparison("faces", "Faces: 50,000 files of 2 KiB", trees.MANY, others=(), faces=("json", "terminal")),
    Growth("growth-files", "Growth with the number of files of 2 KiB",
           tuple((f"{count:,} files", trees.small_files(count)) for count in (1_000, 10_000, 100_000))),
    Growth("growth-bytes", "Growth with the size of a file",
           tuple((f"{count} GiB", trees.one_file(count * 2**30)) for count in (1, 4))),
    SystemCalls("calls", "System calls"),
    Profile("profile", "Where the time goes",
            (("50,000 files of 2 KiB", trees.MANY), ("like a library: 4,000 files, 2 GB", trees.MIXED))),
    Pieces("pieces", "Single operations"),
)  # fmt: skip
