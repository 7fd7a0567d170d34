"""Judges what commands do, print and leave, by one measure for every case."""

import base64
import hashlib
import json
import os
import re
import signal
import stat
import subprocess
import threading
from typing import NamedTuple

from hostile.world import DECOY, SECRETS, USER
from support.hubtest import PLAZ, is_sanitized

# Many times what a command needs. The sanitizer's own memory is not ours.
SECONDS, KILOBYTES = 60, 400_000 if not is_sanitized() else 4_000_000
# What a git of ours may start: parts of itself, and the helper that has its credentials from us.
STARTED = re.compile(r"(?:run|start)_command: (?:unset [\w ]*; )?(?:\w+=\S+ )*(.*)")
PROGRAMS = re.compile(
    "git (rev-list|(pack|unpack)-objects|(index|fetch)-pack|remote-https?|commit-graph verify|multi-pack-index verify) "
    r"""|git-remote-https? |'git-upload-pack |'f\(\) \{ test "\$1" """
)
# What turns a terminal's text, or is obeyed: all controls but the end of a line and the tabulator.
CONTROLS = re.compile("[\0-\x08\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")
# Of the hub's own, what is another each time or for each server.
CHANGING = (
    "/plaz.log",
    "/plaz.lock",
    "/preferences.json.lock",
    "/plaz_stores.json",
    "/plaz_history.json",
    "/plaz_authorities.pem",
    "/preferences.json",
)
FORMS = {form for s in SECRETS.values() for form in (s, base64.b64encode(f"{USER}:{s}".encode()).decode())}


class Result(NamedTuple):
    words: str
    status: int
    messages: list  # all but good news


class Judge:
    """Runs the program in a world, and keeps what is wrong with that as faults."""

    def __init__(self, world):
        self.world, self.faults = world, []

    def find(self, *what):
        self.faults.append(" ".join(str(each)[:1000] for each in what))

    def run(self, *words):
        """Runs a command, which is to come to an end of its own, in bounds, and to print nothing that it must not."""
        streams = [self.world.record / name for name in ("stdout", "stderr")]
        with open(streams[0], "wb") as out, open(streams[1], "wb") as err:
            options = {"cwd": self.world.cwd, "env": self.world.make_env(), "stdin": subprocess.DEVNULL}
            process = subprocess.Popen([PLAZ, *self.world.make_options(), *words], stdout=out, stderr=err, **options)
            timer = threading.Timer(SECONDS, process.send_signal, [signal.SIGKILL])
            timer.start()
            _, status, usage = os.wait4(process.pid, 0)  # with that of all programs that it has waited for
            timer.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        texts, line = [file.read_bytes().decode("utf-8", "replace") for file in streams], " ".join(words)[:60]
        if process.returncode not in (0, 1):
            self.find(line, "ends with", process.returncode)
        if usage.ru_maxrss > KILOBYTES:
            self.find(line, "takes", usage.ru_maxrss, "kB")
        for shown in texts:
            for found in {*CONTROLS.findall(shown), *(each for each in (DECOY, *FORMS) if each in shown)}:
                self.find(
                    line, "prints", repr(found), "in", repr([row for row in shown.split("\n") if found in row][0])
                )
        try:
            document = json.loads(texts[0][texts[0].index("{\n") :])  # behind the trace
            problems = [m for m in document["messages"] if m["severity"] != "INFO"]
            messages = [f"{m['id']} {m['text']}" for m in problems]
            if any(m in problems[:at] for at, m in enumerate(problems)):
                self.find(line, "says something twice:", problems)
        except (ValueError, KeyError) as error:
            messages = [f"{error!r}: {texts}"]
        return Result(line, process.returncode, messages)

    def judge_ends(self, results, told):
        """What fails is told: in few numbered messages, one of which names it. All else succeeds."""
        failed, name = [result for result in results if result.status], told.lstrip("?!")
        if bool(failed) != bool(name) and not told.startswith("?"):
            self.find("nothing fails" if name else f"what is harmless fails: {failed}")
        for words, _, messages in failed if name else ():
            if len(messages) > 5 or not re.search(rf"\b({name})\b", "\n".join(messages)):
                self.find(words, "tells", [text[:300] for text in messages[:9]])

    def judge_programs(self):
        """Nothing was started but git by us, and by git what it cannot do without; no command line holds a secret."""
        notes = {
            file.name: file.read_text("utf-8", "replace") for file in self.world.record.iterdir() if file.is_file()
        }
        if "marks" in notes:
            self.find("started:", notes["marks"])
        for started in STARTED.findall(notes.get("trace", "")):
            if not PROGRAMS.match(started):
                self.find("git starts", started)
        for form in (form for form in FORMS if form in notes.get("trace", "")):
            self.find("a command line holds", form)

    def judge_files(self, before, expected):
        """Outside of the user area is everything as it was, inside all but the bad store's own area as a harmless store
        leaves it. What has come or changed holds no secret, nor what stands outside."""
        found, is_inside = self.take_stock(), lambda path: path.startswith("home/")
        expected = {path: what for path, what in expected.items() if is_inside(path)}
        expected |= {path: what for path, what in before.items() if not is_inside(path)}
        for path in sorted({*found, *expected}):
            if found.get(path) != expected.get(path):
                self.find(path, "is", found.get(path), "not", expected.get(path))
        for file in self.world.dir.rglob("*"):
            about, path = file.lstat(), str(file.relative_to(self.world.dir))
            is_ours = path.startswith(("data/", "record/")) or (path in before and before[path] == found.get(path))
            if is_ours or not stat.S_ISREG(about.st_mode):
                continue
            content, may_hold = file.read_bytes(), path.endswith("/.git/config") and not about.st_mode & 0o077
            for form in (DECOY, *FORMS) if not may_hold else ():
                if form.encode() in content:
                    self.find(path, "holds", form)

    def judge_strangers(self):
        """Servers that nobody has meant were told no secret."""
        for heard in (stranger.heard for stranger in self.world.strangers):
            for form in (form for form in FORMS if form in heard):
                self.find("a stranger was told", form)

    def take_stock(self):
        """@return what lies in the world, by its paths, but for the bad store's own area, our notes and what changes"""
        stock = {}
        for folder, folders, names in os.walk(self.world.dir):
            for path in (os.path.join(folder, name) for name in (*folders, *names)):
                own = (f"{self.world.bad_area}/", f"{self.world.record}/")
                if not f"{path}/".startswith(own) and not path.endswith(CHANGING):
                    stock[path.removeprefix(f"{self.world.dir}/")] = self.describe(path)
        return stock

    @staticmethod
    def describe(path):
        """Kind, rights and content, but for what a working copy is told of proxies and certificates."""
        mode = os.lstat(path).st_mode
        if stat.S_ISLNK(mode):
            return f"link to {os.readlink(path)}"
        if not stat.S_ISREG(mode):
            return f"{mode:o}"
        with open(path, "rb") as file:
            lines = [line for line in file if not re.match(rb"\t(ssl.*|proxy) = |\[https?\]", line)]
        return f"{mode:o} {hashlib.sha1(b''.join(lines)).hexdigest()}"
