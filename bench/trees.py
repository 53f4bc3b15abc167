"""The source trees of the benchmark: what is in each, and how it is laid on the disk."""

import os
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Files:
    """Equal files in numbered folders below `place`."""

    place: str
    folders: int
    each: int  # files in a folder
    size: int  # bytes


@dataclass(frozen=True)
class Tree:
    contents: tuple[Files, ...]

    @property
    def files(self):
        return sum(part.folders * part.each for part in self.contents)

    @property
    def folders(self):
        return sum(part.folders + 1 for part in self.contents)

    @property
    def bytes(self):
        return sum(part.folders * part.each * part.size for part in self.contents)


def small_files(count, size=2048):
    return Tree((Files("Settings Library", count // 100, 100, size),))


def one_file(size):
    return Tree((Files("Soundsources", 1, 1, size),))


BIG = Tree((Files("Soundsources", 1, 4, 512 * 2**20),))
MANY = small_files(50_000)
# As sample libraries are: most bytes in a few large sound sources, most files small patches.
MIXED = Tree(
    (
        Files("Soundsources", 2, 10, 50_000_000),
        Files("User Audio", 19, 20, 2_000_000),
        Files("Settings Library", 90, 40, 66_000),
    )
)

_PATTERN = os.urandom(8 * 2**20)  # nothing that could be compressed or left out as a hole


def _write_file(path, size, start):
    with open(path, "wb", buffering=0) as file:
        while size > 0:
            piece = memoryview(_PATTERN)[start : start + min(size, len(_PATTERN) - start)]
            file.write(piece)
            size -= len(piece)
            start = 0


def make_tree(tree, root: Path):
    """Lays `tree` below `root`, every file with bytes of its own, and waits until it is on the disk."""
    root.mkdir(parents=True)
    number = 0
    for part in tree.contents:
        for folder in range(part.folders):
            place = root / part.place / f"{folder:04d}"
            place.mkdir(parents=True)
            for name in range(part.each):
                _write_file(place / f"{name:03d}.db", part.size, number * 4099 % (len(_PATTERN) // 2))
                number += 1
    os.sync()


def read_tree(root: Path):
    """Reads every file once, so that the caches are warm."""
    room = bytearray(2**20)
    for folder, _, names in os.walk(root):
        for name in names:
            with open(os.path.join(folder, name), "rb", buffering=0) as file:
                while file.readinto(room):
                    pass


def drop_caches():
    os.sync()
    Path("/proc/sys/vm/drop_caches").write_text("3")


def difference(first: Path, second: Path):
    """The first difference between two trees, or an empty text. Hidden names are left out, as the page does."""
    names = [sorted(n for n in os.listdir(folder) if not n.startswith(".")) for folder in (first, second)]
    if names[0] != names[1]:
        return f"{first} and {second} hold different names"
    for name in names[0]:
        one, other = first / name, second / name
        if one.is_dir():
            found = difference(one, other)
            if found:
                return found
        elif not _same_bytes(one, other):
            return f"{one} and {other} differ"
    return ""


def _same_bytes(first, second):
    with open(first, "rb") as one, open(second, "rb") as other:
        while True:
            pieces = one.read(2**20), other.read(2**20)
            if pieces[0] != pieces[1]:
                return False
            if not pieces[0]:
                return True
