"""Where the time of a copy goes, by sampling, as a picture."""

import subprocess
from html import escape

# In this order; the first whose function is among a sample's callers has it.
_KINDS = (
    ("handing over to the main thread", "#4c78a8",
     ("eventfd_write", "eventfd_read", "__x64_sys_poll", "__x64_sys_futex", "__x64_sys_sched_yield")),
    ("reading ahead, listing", "#9ecae9",
     ("__x64_sys_readahead", "ksys_readahead", "__x64_sys_preadv2", "do_preadv", "__x64_sys_getdents64")),
    ("making the file", "#f58518",
     ("ext4_create", "ext4_truncate", "__x64_sys_fallocate", "ext4_fallocate", "__x64_sys_mkdir")),
    ("opening and closing", "#ffbf79", ("__x64_sys_openat", "__x64_sys_close", "__fput", "fput")),
    ("reading", "#54a24b", ("ksys_read", "vfs_read")),
    ("writing", "#e45756", ("ksys_write", "vfs_write")),
    ("comparing the sizes", "#b279a2", ("__x64_sys_newfstatat", "__do_sys_newfstatat")),
)  # fmt: skip
_REST = ("the rest of the system", "#bab0ac")
_OWN = ("the program's own code", "#79706e")
_COLOURS = {name: colour for name, colour, _ in _KINDS} | dict((_REST, _OWN))


def record(page_of, arena):
    """Runs the page under perf and gives the share of each kind, of all threads' processor time."""
    data = arena.mount / "perf.data"
    page_of(("perf", "record", "-q", "-F", "2000", "-g", "-o", str(data))).run(arena)
    text = subprocess.run(["perf", "script", "-i", data, "-F", "ip,sym"], check=True, capture_output=True, text=True)
    counts = dict.fromkeys(_COLOURS, 0)
    for sample in text.stdout.split("\n\n"):
        functions = {line.split(maxsplit=1)[-1].strip() for line in sample.splitlines() if line.strip()}
        if functions:
            counts[_kind(functions)] += 1
    total = sum(counts.values())
    return {kind: count / total for kind, count in counts.items()}


def _kind(functions):
    for name, _, callers in _KINDS:
        if not functions.isdisjoint(callers):
            return name
    return _REST[0] if "do_syscall_64" in functions or "asm_exc_page_fault" in functions else _OWN[0]


def _ink(ground):
    """Black on light colours, white on dark ones, by how bright they look."""
    red, green, blue = bytes.fromhex(ground[1:])
    return "#000" if 0.3 * red + 0.59 * green + 0.11 * blue > 150 else "#fff"


def picture(bars):
    """A drawing with a bar for each (title, shares)."""
    left, wide, high, gap = 20, 760, 34, 66
    top = 20
    parts = []
    for title, shares in bars:
        parts.append(f'<text x="{left}" y="{top + 12}" font-weight="bold">{escape(title)}</text>')
        x = left
        for kind, share in shares.items():
            width = share * wide
            parts.append(
                f'<rect x="{x:.1f}" y="{top + 20}" width="{width:.1f}" height="{high}" fill="{_COLOURS[kind]}">'
                f"<title>{escape(kind)}: {share:.0%}</title></rect>"
            )
            if share >= 0.04:
                parts.append(
                    f'<text x="{x + width / 2:.1f}" y="{top + 42}" text-anchor="middle" fill="{_ink(_COLOURS[kind])}">'
                    f"{share:.0%}</text>"
                )
            x += width
        top += 20 + gap
    for number, (kind, colour) in enumerate(_COLOURS.items()):
        x, y = left + number % 3 * 260, top + number // 3 * 24
        parts.append(f'<rect x="{x}" y="{y}" width="14" height="14" fill="{colour}"/>')
        parts.append(f'<text x="{x + 20}" y="{y + 12}">{escape(kind)}</text>')
    height = top + (len(_COLOURS) + 2) // 3 * 24 + 10
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="800" height="{height}" viewBox="0 0 800 {height}" '
        'font-family="sans-serif" font-size="13">\n'
        f'<rect width="800" height="{height}" fill="#fff"/>\n' + "\n".join(parts) + "\n</svg>\n"
    )
