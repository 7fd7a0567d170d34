"""Catches: a front end that takes another way than the others. The same work done by the program, by Tcl commands, by
the Python module and by the facade of user interfaces leaves the same files and databases and sends the same messages.

    one_road_test.py PLAZ FACADE_DRIVER MAKE_SAMPLE_HUB PRODUCT_DATA, with the Python module on PYTHONPATH
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

PLAZ, DRIVER, MAKE_SAMPLE_HUB, PRODUCT_DATA = (pathlib.Path(arg).resolve() for arg in sys.argv[1:5])

# A failing step among them: what others need is not removed.
STEPS = [("refresh", "boards"), ("install", "pin-report"), ("install", "aurora"), ("uninstall", "string-kit"),
         ("update", "aurora"), ("uninstall", "aurora")]

TCL = {"refresh": "plaz::refresh_catalog [plaz::get_qstores {}]", "install": "plaz::install [plaz::get_qitems {}]",
       "uninstall": "plaz::uninstall [plaz::get_qitems {}]", "update": "plaz::update [plaz::get_qitems {}]"}

PYTHON = """
import logging, sys, plaz

class Handler(logging.Handler):
    LABELS = {}
    def emit(self, record):
        print(f"[{record.message_id}] {record.getMessage()}", file=sys.stderr)

logging.getLogger("plaz").addHandler(Handler())
logging.getLogger("plaz").setLevel(logging.DEBUG)
try:
    plaz.store(NAME).refresh() if STEP == "refresh" else getattr(plaz.item(NAME), STEP)()
except plaz.Error as error:
    for message in error.messages:
        print(f"[{message.id}] {message.text}", file=sys.stderr)
    sys.exit(1)
"""


def run(way, step, name, env):
    code = PYTHON.replace("NAME", repr(name)).replace("STEP", repr(step))
    command, text = {
        "program": ([PLAZ, "--no-progress", step, name], ""),
        "tcl": ([PLAZ, "--no-progress", "shell"], TCL[step].format(name)),
        "python": ([sys.executable, "-c", code], ""),
        "facade": ([DRIVER, step, name], "")}[way]
    result = subprocess.run(command, env=env, input=text, encoding="utf-8", stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, timeout=120)
    return result.returncode, re.findall(r"\[\d+-\d+\] .*", result.stderr), result.stderr


def read_tree(area):
    """Every file with its content, git's own left out, for it holds times."""
    return {str(file.relative_to(area)): file.read_bytes().replace(str(area).encode(), b"AREA")
            for file in area.rglob("*") if file.is_file() and ".index" not in file.parts}


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-road-") as scratch:
        sample = pathlib.Path(scratch) / "sample"
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, sample, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
        base = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_"))}
        base.update(GDA_DATA_DIR=f"{sample / 'data'}{os.pathsep}{PRODUCT_DATA}",
                    LC_ALL="C.UTF-8")
        traces = {}
        for way in ("program", "tcl", "python", "facade"):
            area = pathlib.Path(scratch) / way
            area.mkdir()
            trace = traces[way] = []
            for step, name in STEPS:
                status, messages, errors = run(way, step, name, {**base, "HOME": str(area), "GDA_APPDATA_DIR": str(area)})
                trace.append((step, name, status, [message.replace(str(area), "AREA") for message in messages],
                              read_tree(area)))
                if way == "program" and (status == 0) != (name != "string-kit"):
                    sys.exit(f"program: {step} {name} ends with {status}: {errors}")
        for way, trace in traces.items():
            for ours, theirs in zip(trace, traces["program"]):
                for what, one, other in zip(("step", "name", "status", "messages"), ours, theirs):
                    if one != other:
                        sys.exit(f"{way}: {ours[:2]}: {what} differ:\n{one}\n{other}")
                differing = {name for name in ours[4].keys() | theirs[4].keys() if ours[4].get(name) != theirs[4].get(name)}
                if differing:
                    sys.exit(f"{way}: {ours[:2]}: files differ: {sorted(differing)}")
        if not any(b'"aurora"' in content or b"pin-report" in content for content in traces["program"][2][4].values()):
            sys.exit("nothing was recorded")


main()
