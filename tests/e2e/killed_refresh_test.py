"""Kills refreshes at many points, and looks at what is in force then and whether the next one recovers.

    killed_refresh_test.py PLAZ MAKE_SAMPLE_HUB PRODUCT_DATA [unittest arguments]
"""

import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PLAZ, MAKE_SAMPLE_HUB, PRODUCT_DATA = (pathlib.Path(arg).resolve() for arg in sys.argv[1:4])
POINTS = 20


def tree_of(pid):
    """The process and all that it has started, directly or not."""
    children = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return [pid, *(process for child in children for process in tree_of(int(child)))]


class KilledRefreshTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="plaz-killed-")
        self.addCleanup(scratch.cleanup)
        self.dir = pathlib.Path(scratch.name)
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, self.dir, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_"))}
        self.env.update(HOME=f"{self.dir}/home", GDA_APPDATA_DIR=f"{self.dir}/home", LC_ALL="C.UTF-8",
                        GDA_DATA_DIR=f"{self.dir}/data{os.pathsep}{PRODUCT_DATA}")

    def run_plaz(self, *args):
        result = subprocess.run([PLAZ, "--json", *args], cwd=self.dir, env=self.env, encoding="utf-8", timeout=60,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual((result.returncode, json.loads(result.stdout)["messages"]), (0, []), result.stderr)
        return json.loads(result.stdout)

    def get_items(self):
        """What the catalog says of the items, and what each says of itself."""
        items = self.run_plaz("items", "--store", "tclscripts")["items"]
        return [(i["name"], i["company"]) for i in items], {(i["name"], i["display"]) for i in items}

    def publish(self):
        """Changes the catalog and each item's own file, and adds enough to make the fetch last."""
        work = self.dir / "work"
        work.mkdir()
        git = ["git", "-c", "user.name=A", "-c", "user.email=a@example.org", f"--git-dir={self.dir}/repos/tcl-store.git"]
        for args in (["reset", "--quiet", "--hard"], ["add", "--all"], ["commit", "--quiet", "--message", "New"]):
            subprocess.run([*git, f"--work-tree={work}", *args], check=True, env=self.env)
            for file in (work / "scripts_catalog.json", *work.glob("scripts/*/item.json")):
                file.write_text(re.sub('"(company|display)": ".*"', r'"\1": "new"', file.read_text("utf-8")), "utf-8")
                file.with_name("changelog.txt").write_text(os.urandom(200000).hex())

    # Faults: a killed refresh leaves no catalog, half of one or a working copy that blocks the next refresh; git, which
    # outlives the program, gets in the next one's way.
    def test_old_catalog_stays_and_next_refresh_recovers(self):
        home, before = self.dir / "home", self.dir / "before"
        self.run_plaz("refresh")
        old = self.get_items()
        self.publish()
        home.rename(before)
        for command in (["refresh", "tclscripts"], ["refresh", "--hub"]):
            shutil.copytree(before, home)
            begin = time.monotonic()
            self.run_plaz(*command)
            duration = time.monotonic() - begin
            new, seen = self.get_items(), []
            for point in range(POINTS):
                shutil.rmtree(home)
                shutil.copytree(before, home)
                with subprocess.Popen([PLAZ, "--quiet", *command], cwd=self.dir, env=self.env) as process:
                    time.sleep(duration * (point + 0.5) / POINTS)
                    os.kill(process.pid, signal.SIGSTOP)
                    for pid in tree_of(process.pid) if point % 2 else [process.pid]:
                        with contextlib.suppress(ProcessLookupError):  # a git may have ended meanwhile
                            os.kill(pid, signal.SIGKILL)
                seen.append(self.get_items())
                self.run_plaz(*command)
                self.assertEqual((self.get_items(), list(home.rglob(".staging"))), (new, []), f"{command} {point}")
            self.assertIn(old, seen)
            self.assertTrue(all(catalog in (old[0], new[0]) and items <= old[1] | new[1] for catalog, items in seen), seen)
            shutil.rmtree(home)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
