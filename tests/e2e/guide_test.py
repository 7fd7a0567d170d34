"""Catches: a sample of the guides that does not run as it is printed, or prints something else (any more).

Each guide is gone through from its beginning to its end, in one shell, by somebody with an empty home who has nothing
but the installed tree, which was moved after it was installed. In a guide's fenced samples

    ```python find.py    is a file of that name
    ```sh                are lines for the shell, each of which is to succeed
    ```console           are lines for the shell behind "$ ", and what each prints below it

"..." stands for anything there, on a line of its own for any lines; columns may be wider or narrower. What fails prints
an error first. What is indented is shown only: it needs a server, a terminal or a display, or shows what lies where.

PLAZ_BARE names the root of another system, in which all of this is done (scripts/test-bare).
"""

import os
import pathlib
import re
import tempfile
import unittest

from support.hubtest import BUILD, TREE, is_sanitized, read_cache, run, succeed

BARE = os.environ.get("PLAZ_BARE", "")
ENTER = ["unshare", "--pid", "--fork", f"--mount-proc={BARE}/proc", "chroot", BARE] if BARE else []

SAMPLE = re.compile(r"^```(\w*)(?: (\S+))?\n(.*?)^```$", re.M | re.S)
MARK = "---- sample"


def pattern_of(printed):
    lines = (re.escape(re.sub(" +", " ", line)).replace(r"\ ", r"\s+") for line in printed.splitlines())
    return "".join("(?:.*\n)*" if line == r"\.\.\." else line.replace(r"\.\.\.", ".*") + r"\s*\n" for line in lines)


def list_commands(language, text):
    """@return the commands of a sample, with what each prints, or None where it is to succeed"""
    if language == "sh":
        return [(f"set -e\n{text}set +e\n", None)]
    return re.findall(r"^\$ (.*\n)((?:(?!\$ ).*\n)*)", text, re.M)


class GuideTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory(prefix="plaz-test-", dir=BARE and f"{BARE}/tmp" or None)
        cls.addClassCleanup(scratch.cleanup)
        cls.dir = pathlib.Path(scratch.name)
        succeed(read_cache()["CMAKE_COMMAND"], "--install", BUILD, "--prefix", cls.dir / "first")
        (cls.dir / "first").rename(cls.dir / "moved here")

    def follow(self, *guides):
        home = pathlib.Path(tempfile.mkdtemp(dir=self.dir))
        place = "/" / home.relative_to(BARE or "/")  # as those see it who are in the bare system
        guide = "\n".join((TREE / name).read_text("utf-8") for name in guides)
        commands = []
        for language, file, text in SAMPLE.findall(
            guide.replace("PREFIX=/opt/plaz", f"PREFIX='{place.parent}/moved here'")
        ):
            if file:
                (home / file).parent.mkdir(parents=True, exist_ok=True)
                (home / file).write_text(text, "utf-8")
            else:
                self.assertIn(language, ("sh", "console"), text)
                commands += list_commands(language, text)
        self.assertTrue(commands)
        script = home / "script.sh"
        script.write_text("exec 2>&1\n" + "".join(f"{command}echo '{MARK}' $?\n" for command, _ in commands), "utf-8")
        begin = ("env", "-i", "-C", place, f"HOME={place}", "PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8")
        found = re.split(rf"{MARK} (\d+)\n", run(*ENTER, *begin, "sh", "script.sh", timeout=280).stdout)
        self.assertEqual(len(found), 2 * len(commands) + 1, found[-1])
        for (command, printed), shown, status in zip(commands, found[::2], found[1::2]):
            with self.subTest(command):
                self.assertEqual(status != "0", (printed or "").startswith("ERROR"), shown)
                if printed is not None:
                    self.assertRegex(shown, rf"\A{pattern_of(printed)}\Z")

    def test_readme(self):
        self.follow("README.md")

    def test_user_guide(self):
        self.follow("docs/user-guide.md", "docs/when-something-goes-wrong.md")

    def test_store_authors_guide(self):
        self.follow("docs/store-authors-guide.md")

    if not is_sanitized():  # no other program works with our libraries then, as it is printed

        def test_scripting_guide(self):
            self.follow("docs/scripting-guide.md")

        def test_embedding_guide(self):
            self.follow("docs/embedding-guide.md")
