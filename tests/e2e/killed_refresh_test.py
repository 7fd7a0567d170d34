"""Kills refreshes at many points, and looks at what is in force then and whether the next one recovers."""

import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import time

from support.hubtest import PLAZ, HubTest

POINTS = 20


def tree_of(pid):
    """The process and all that it has started, directly or not."""
    children = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return [pid, *(process for child in children for process in tree_of(int(child)))]


class KilledRefreshTest(HubTest):
    def get_items(self):
        """What the catalog says of the items, and what each says of itself."""
        document = self.run_json("items --store tclscripts")
        self.assertEqual(document["messages"], [])
        items = document["items"]
        return [(i["name"], i["company"]) for i in items], {(i["name"], i["display"]) for i in items}

    def kill(self, command, delay, with_children):
        with subprocess.Popen([PLAZ, "--quiet", *command.split()], cwd=self.dir, env=self.env) as process:
            time.sleep(delay)
            os.kill(process.pid, signal.SIGSTOP)
            for pid in tree_of(process.pid) if with_children else [process.pid]:
                with contextlib.suppress(ProcessLookupError):  # a git may have ended meanwhile
                    os.kill(pid, signal.SIGKILL)

    def test_old_catalog_stays_and_next_refresh_recovers(self):
        """Catches: half a catalog or none, a working copy or a surviving git that gets in the next refresh's way."""
        before = self.dir / "before"
        self.run_plaz("refresh")
        old = self.get_items()
        self.publish("tcl-store", "new", bulk=8)
        self.home.rename(before)
        for command in ("refresh tclscripts", "refresh --hub"):
            shutil.copytree(before, self.home)
            begin = time.monotonic()
            self.run_plaz(command)
            duration = time.monotonic() - begin
            new, seen = self.get_items(), []
            for point in range(POINTS):
                with self.subTest(command, point=point):
                    shutil.rmtree(self.home)
                    shutil.copytree(before, self.home)
                    self.kill(command, duration * (point + 0.5) / POINTS, with_children=point % 2)
                    seen.append(self.get_items())
                    self.assertIn(seen[-1][0], (old[0], new[0]))
                    self.assertLessEqual(seen[-1][1], old[1] | new[1])
                    self.assertEqual(self.run_json(command)["messages"], [])
                    self.assertEqual((self.get_items(), list(self.home.rglob(".staging"))), (new, []))
            self.assertIn(old, seen)
            shutil.rmtree(self.home)
