"""Catches: an example of the user guide that does not work, or prints something else (any more).

In the guide "..." stands for anything, on a line of its own for any lines. Columns may be wider or narrower.
"""

import os
import re

from support.hubtest import PLAZ, PRODUCT_DATA, TREE, HubTest, run

GUIDE = dict(part.split("\n", 1) for part in (TREE / "docs/user-guide.md").read_text("utf-8").split("\n## "))


def pattern_of(printed):
    lines = (re.escape(re.sub(" +", " ", line)).replace(r"\ ", r"\s+") for line in printed.splitlines())
    return "".join("(?:.*\n)*" if line == r"\.\.\." else line.replace(r"\.\.\.", ".*") + r"\s*\n" for line in lines)


class GuideTest(HubTest):
    def setUp(self):
        super().setUp()
        self.env["GDA_DATA_DIR"] = str(PRODUCT_DATA)
        self.run_plaz("hub set sample")

    def test_commands(self):
        self.env["PATH"] = f"{PLAZ.parent}{os.pathsep}{self.env['PATH']}"
        text = "".join(GUIDE[section] for section in ("See what there is", "Name an item", "Install"))
        examples = re.findall(r"^    \$ (plaz .*)\n((?:    .*\n)+)", text, re.M)
        self.assertGreater(len(examples), 4)
        for command, printed in examples:
            with self.subTest(command):
                found = run("sh", "-c", f"exec 2>&1; {command}", env=self.env).stdout
                self.assertRegex(found, rf"\A{pattern_of(re.sub('^    ', '', printed, flags=re.M))}\Z")

    def test_tcl_script(self):
        ((script, printed),) = re.findall(r"```tcl\n(.*?)```\n\n```\n(.*?)```", GUIDE["In Tcl"], re.S)
        (self.dir / "script.tcl").write_text(script, "utf-8")
        self.assertEqual(self.run_plaz("shell script.tcl").stdout, printed)
