"""Does the same work by the program, by Tcl commands, which user interfaces send, and by the Python module."""

import re
import sys

from support.hubtest import BUILD, PLAZ, PRODUCT_DATA, HubTest, make_env, run

# A failing step among them: what others need is not removed.
STEPS = ["refresh boards", "install pin-report", "install aurora", "uninstall string-kit", "update aurora"]
STEPS += ["verify aurora", "repair aurora", "hold aurora", "unhold aurora", "uninstall aurora"]
PYTHON = """
import logging, sys, plaz

class Handler(logging.Handler):
    def emit(self, record):
        print(f"[{record.message_id}] {record.getMessage()}", file=sys.stderr)

logging.getLogger("plaz").addHandler(Handler())
logging.getLogger("plaz").setLevel(logging.DEBUG)
step, name = sys.argv[1:]
try:
    plaz.store(name).refresh() if step == "refresh" else getattr(plaz.item(name), step)()
except plaz.Error as error:
    for message in error.messages:
        print(f"[{message.id}] {message.text}", file=sys.stderr)
    sys.exit(1)
"""


def command_of(way, step, name):
    """@return the command, and what it reads"""
    if way == "tcl":
        script = "refresh_catalog [plaz::get_qstores {}]" if step == "refresh" else f"{step} [plaz::get_qitems {{}}]"
        return [PLAZ, "--no-progress", "shell"], "plaz::" + script.format(name)
    programs = {"program": [PLAZ, "--no-progress"], "python": [sys.executable, "-c", PYTHON]}
    return [*programs[way], step, name], ""


def read_tree(area):
    """Every file with its content, git's own and the history left out, for they hold times, and the lock, which holds
    who took it."""
    varying = {".index", "plaz.lock", "plaz_history.json"}
    files = [file for file in area.rglob("*") if file.is_file() and not varying & set(file.parts)]
    return {str(file.relative_to(area)): file.read_bytes().replace(str(area).encode(), b"AREA") for file in files}


class OneRoadTest(HubTest):
    def go(self, way):
        """@return what each step left: its status, its messages and the files on disk"""
        area = self.dir / way
        area.mkdir()
        env = make_env(area, self.data, PRODUCT_DATA, PYTHONPATH=str(BUILD / "python"))
        for step in STEPS:
            if step == "repair aurora":
                next(area.rglob("aurora/2.0/board.xml")).unlink()
            command, text = command_of(way, *step.split())
            result = run(*command, env=env, input=text)
            told = result.stderr.replace(str(area), "AREA")
            yield result.returncode, re.findall(r"\[\d+-\d+\] .*", told), read_tree(area)

    def test_all_front_ends_take_it(self):
        """Catches: a front end that ends otherwise, sends other messages or leaves other files than the others."""
        program = list(self.go("program"))
        self.assertEqual([status for status, _, _ in program], [0, 0, 0, 1, 0, 0, 0, 0, 0, 0])
        self.assertTrue(any(b'"aurora"' in content for content in program[2][2].values()), "nothing was recorded")
        self.assertEqual(program[6][2].keys(), program[5][2].keys(), "the file that was missing")
        for way in ("tcl", "python"):
            for step, ours, theirs in zip(STEPS, self.go(way), program):
                with self.subTest(f"{way}: {step}"):
                    self.assertEqual(ours[:2], theirs[:2])
                    names = ours[2].keys() | theirs[2].keys()
                    self.assertEqual([name for name in names if ours[2].get(name) != theirs[2].get(name)], [])
