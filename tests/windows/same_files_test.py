"""Does the same on both systems, in the same place, and compares; the catalogs have CRLF on Windows."""

import re

from support.hubtest import DRIVE, PLAZ, PRODUCT_DATA, WINDOWS, HubTest, make_env, run

RECORDS = ("plaz_local_db.json", "plaz_stores.json", "preferences.json")


class SameFilesTest(HubTest):
    def work(self, program, drive=""):
        """@return what the program prints, the names of what it leaves, and the bytes of what it records"""
        env = make_env(self.home, self.data, PRODUCT_DATA, drive=drive, HOME=str(self.dir))
        printed = []
        for words in (
            ["items", "--all-revisions"],
            ["refresh"],
            ["install", "aurora", "prüfadapter"],
            ["relocate", "tclscripts", f"{drive}{self.home}/moved ü"],
            ["uninstall", "prüfadapter"],
            ["items", "--json"],
            ["check"],
        ):
            result = run(*program, *words, env=env, input=b"", encoding=None)
            texts = (text.decode().replace("Z:/", "/") for text in (result.stdout, result.stderr))
            printed.append((words[0], result.returncode, *texts))
        left = {str(file.relative_to(self.home)): file for file in self.home.rglob("*") if "objects" not in file.parts}
        records = {name: file for name, file in left.items() if file.name in RECORDS}
        return printed, sorted(left), {name: file.read_bytes().replace(b"Z:/", b"/") for name, file in records.items()}

    def test_does_the_same(self):
        """Catches: files that the hub writes otherwise on Windows, or a catalog that it reads otherwise."""
        native = self.work([PLAZ])
        self.assertGreaterEqual(len(native[2]), 3)
        self.home.rename(self.dir / "native")
        for file in self.data.rglob("*.json"):
            file.write_bytes(re.sub(rb"\r?\n", b"\r\n", file.read_bytes()))
        for what, ours, theirs in zip(("prints", "leaves", "records"), native, self.work(WINDOWS, DRIVE)):
            self.check(what, theirs, ours)
