"""Cuts the power: what a disk holds after commands have run on it, or have been stopped on the way, is judged as at the
next start of the machine. What was never flushed is not on that disk; where flushing only pretends, something is lost.

Needs a loop device, and the right to mount it; says so, and ends with 77, where there is none.
"""

import pathlib
import shutil
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from faults.scenarios import NO_FAULT, SCENARIOS, Point, Stage, copy_home  # noqa: E402
from support.hubtest import succeed  # noqa: E402

COMMANDS = ("install", "uninstall", "update-again", "refresh", "relocate")
FLUSHED = 3  # calls later the names of an exchange are on the disk, and nothing else yet


class Disk:
    """A disk that writes nothing by itself in the time that a command takes."""

    def __init__(self, directory):
        self.image, self.place = directory / "image", directory / "disk"
        self.place.mkdir()

    def make(self):
        self.image.unlink(missing_ok=True)
        succeed("truncate", "--size", "96M", self.image)
        succeed("mkfs.ext4", "-q", self.image)
        self.mount()

    def mount(self):
        succeed("mount", "-t", "ext4", "-o", "loop,commit=600,noauto_da_alloc", self.image, self.place)

    def unmount(self):
        while self.place.is_mount():
            succeed("umount", self.place)

    def cut_power(self):
        """What is in the image now is all that the disk got. It comes back as another device, over the old one."""
        left = self.image.with_name("left")
        shutil.copyfile(self.image, left)
        left.rename(self.image)
        self.mount()


def find_lost(stage, disk, point):
    """@return what is found after a command on a disk that loses its power, as Stage.judge says it"""
    home = disk.place / "home"
    disk.make()
    try:
        copy_home(stage.dir / point.scenario, home)
        succeed("sync", "--file-system", home)
        result, _ = stage.step(home, point, "write")
        disk.cut_power()
        return [f"{point}: {kind}: {text}" for kind, text in stage.judge(point, home, result)]
    finally:
        disk.unmount()


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-power-") as name:
        disk = Disk(pathlib.Path(name).resolve())
        try:
            disk.make()
        except (AssertionError, OSError) as obstacle:
            print(f"Skipped: no disk to cut the power of can be had here (as root, with /dev/loop*): {obstacle}")
            return 77
        disk.unmount()
        stage = Stage(disk.place.with_name("hub"), [s for s in SCENARIOS if s.name in COMMANDS])
        lost = []
        for command in COMMANDS:
            middle = len(stage.find_calls(command, "children", "write")) // 2
            lost += find_lost(stage, disk, Point(command, "kill-all", "children", middle))
            lost += find_lost(
                stage, disk, Point(command, "kill-all", "alone", stage.find_exchanges(command)[0] + FLUSHED)
            )
            lost += find_lost(stage, disk, Point(command, NO_FAULT, "children", 0))
        if not find_lost(stage, disk, Point("install", NO_FAULT, "children", 0, "fsync=pretend")):
            lost.append("nothing where flushing only pretends: this test cannot find anything")
        for text in lost:
            print(text)
        return bool(lost)


if __name__ == "__main__":
    sys.exit(main())
