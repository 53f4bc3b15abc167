"""Where a run takes place: a file system of its own, made anew for each run.

Deleting and making many files on one file system slows every tool down more and more, and differently; so a
run never meets what an earlier one has left. Needs root, and a mount namespace that nobody else is in.
"""

import os
import shutil
import subprocess
from pathlib import Path

from trees import make_tree, read_tree

_JOURNAL_MEGABYTES = 256


def _run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


class Arena:
    """Below `folder`: a package with `source` beside it, and a fresh file system with home and /tmp."""

    def __init__(self, folder: Path):
        self.image = folder / "image"
        self.mount = folder / "mount"
        self.mount.mkdir()
        self.package = folder / "package" / "Tessaphon Installer.pkg"
        self.package.parent.mkdir()
        self.package.touch()
        self.source = self.package.parent / "Data" / "TANVO"
        self.home = self.mount / "home"
        self.destination = self.home / "Library/Application Support/Tavenhall/TANVO"
        self.log = self.home / "Library/Caches/Tavenhall/installationLog.txt"
        self.summary = self.mount / "summary.json"
        self._is_mounted = False

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.clear()

    def lay_source(self, tree):
        """Puts `tree` beside the package, in the place of what was there, and reads it once."""
        shutil.rmtree(self.source.parent, ignore_errors=True)
        make_tree(tree, self.source)
        read_tree(self.source)
        (self.package.parent / ".InstallationAttributes.dat").write_text(
            f"Mode = FullDownload\nRelativePath = Data\nTotalSizeMillionsBytes = {tree.bytes // 10**6}\n"
        )
        self.tree = tree

    def renew(self):
        """Makes the file system anew, with room for the source."""
        self.clear()
        tree = self.tree
        size = tree.bytes + tree.files * 4096 + tree.bytes // 10 + (2 * _JOURNAL_MEGABYTES + 256) * 2**20
        with open(self.image, "wb") as image:
            image.truncate(size)
        inodes = tree.files + tree.folders + 4096
        _run("mkfs.ext4", "-q", "-F", "-m", "0", "-N", str(inodes), "-J", f"size={_JOURNAL_MEGABYTES}",
             "-E", "lazy_itable_init=1,lazy_journal_init=1", str(self.image))  # fmt: skip
        # Without the thread that would lay out inode tables during the run.
        _run("mount", "-o", "loop,noinit_itable", str(self.image), str(self.mount))
        self._is_mounted = True
        self.destination.mkdir(parents=True)
        tmp = self.mount / "tmp"
        tmp.mkdir()
        _run("mount", "--bind", str(tmp), "/tmp")
        os.sync()

    def clear(self):
        if self._is_mounted:
            _run("umount", "/tmp")
            _run("umount", str(self.mount))
            self._is_mounted = False
        self.image.unlink(missing_ok=True)
