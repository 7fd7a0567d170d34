"""Catches: an example of the user guide that does not work, or prints something else (any more).

    guide_test.py PLAZ MAKE_SAMPLE_HUB PRODUCT_DATA GUIDE

In the guide "..." stands for anything, on a line of its own for any lines. Columns may be wider or narrower.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

PLAZ, MAKE_SAMPLE_HUB, PRODUCT_DATA, GUIDE = (pathlib.Path(arg).resolve() for arg in sys.argv[1:5])
SECTIONS = ("See what there is", "Name an item", "Install")


def examples():
    """Commands with what they print, as the guide has them."""
    for section in GUIDE.read_text("utf-8").split("\n## "):
        if section.partition("\n")[0] not in SECTIONS:
            continue
        for block in re.findall(r"(?:^    .*\n)+", section, re.M):
            command, _, printed = re.sub(r"^    ", "", block, flags=re.M).partition("\n")
            if command.startswith("$ plaz "):
                yield command[2:], printed


def pattern_of(printed):
    lines = ["(?:.*\n)*" if line == "..." else
             "[^\n]*".join(r"\s+".join(map(re.escape, part.split(" "))) for part in re.sub(" +", " ", line).split("..."))
             + "\\s*\n" for line in printed.splitlines()]
    return re.compile("".join(lines))


def main():
    checked = 0
    with tempfile.TemporaryDirectory(prefix="plaz-guide-") as scratch:
        sample = pathlib.Path(scratch) / "sample"
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, sample, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
        env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_"))}
        env.update(GDA_DATA_DIR=f"{sample / 'data'}{os.pathsep}{PRODUCT_DATA}", GDA_APPDATA_DIR=str(sample / "home"),
                   HOME=str(sample / "home"), LC_ALL="C.UTF-8", PATH=f"{PLAZ.parent}{os.pathsep}{os.environ['PATH']}")
        for command, expected in examples():
            result = subprocess.run(["sh", "-c", command], env=env, encoding="utf-8", stdout=subprocess.PIPE,
                                    stderr=subprocess.STDOUT)
            if not pattern_of(expected).fullmatch(result.stdout):
                sys.exit(f"{command} prints:\n{result.stdout}\nThe guide has:\n{expected}")
            checked += 1
    if checked < 5:
        sys.exit(f"the guide has {checked} examples")


main()
