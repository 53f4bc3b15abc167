"""The page against plain copying tools. See scripts/bench, which starts this."""

import argparse
import shutil
import sys
import tempfile
from pathlib import Path

import cases
import report
from arena import Arena
from tools import Failure


def main():
    options = _options()
    chosen = [case for case in cases.ALL if not options.cases or case.name in options.cases]
    if options.list:
        for case in cases.ALL:
            print(f"{case.name:<20}{case.title}")
        return 0
    work = Path(tempfile.mkdtemp(prefix="tavinstall-bench.", dir=options.folder))
    sections = []
    try:
        with Arena(work) as arena:
            for case in chosen:
                print(f"\n{case.title}", flush=True)
                sections.append(case.run(arena, options))
    except Failure as failure:
        print(f"bench: {failure}", file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(work, ignore_errors=True)
    if options.output:
        Path(options.output).write_text(report.whole(sections, options))
        print(f"\nwritten to {options.output}")
    return 0


def _options():
    parser = argparse.ArgumentParser(
        prog="scripts/bench", description="Times the page against plain copying tools, each run on a fresh file system."
    )
    parser.add_argument("cases", nargs="*", metavar="CASE", help="only these; --list shows all")
    parser.add_argument("--list", action="store_true", help="list the cases and do nothing")
    parser.add_argument("--pairs", type=int, default=7, help="runs of each tool (default: 7)")
    parser.add_argument("--output", help="write a report to this file; without cases: bench/results.md")
    parser.add_argument("--folder", default="/var/tmp", help="where the data goes; up to 10 GB (default: /var/tmp)")
    parser.add_argument("--build", type=Path, required=True, help=argparse.SUPPRESS)
    options = parser.parse_args()
    unknown = set(options.cases) - {case.name for case in cases.ALL}
    if unknown:
        parser.error(f"no case named {', '.join(sorted(unknown))}; there are: {' '.join(c.name for c in cases.ALL)}")
    if options.pairs < 1:
        parser.error("--pairs must be at least 1")
    if not options.cases and not options.output:
        options.output = "bench/results.md"
    return options


if __name__ == "__main__":
    sys.exit(main())
