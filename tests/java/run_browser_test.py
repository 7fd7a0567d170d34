"""Runs the tests of the catalog browser: real windows on a display and a sample hub of their own.

    run_browser_test.py JAVA PLAZ_JAR TESTS_JAR LIBRARY_DIR MAKE_SAMPLE_HUB PRODUCT_DATA

The virtual machine is started twice on the same user's directory: the second one finds what the first one left.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import junit

JAVA, PLAZ_JAR, TESTS_JAR, LIBRARIES, MAKE_SAMPLE_HUB, PRODUCT_DATA = (
    pathlib.Path(arg).absolute() for arg in sys.argv[1:7])


def make_hub(scratch):
    """The sample hub, with an item as a spiteful catalog would describe it, and a git that hangs while there is a file
    "hang"."""
    sample = scratch / "sample"
    env = junit.make_hub(MAKE_SAMPLE_HUB, sample, PRODUCT_DATA)
    (description,) = sample.glob("data/plaz/storesdata/*/.plaz/.catalog/scripts/resistances/item.json")
    text = json.loads(description.read_text("utf-8"))
    infra = text["config"]["items"][0]["infra"]
    infra.update(display="<html><b>bold", description="<html><img src='http://127.0.0.1:1/'>", author="<html>A",
                 website="file:///etc/passwd")
    description.write_text(json.dumps(text), "utf-8")
    top = scratch / "tps/win64/git-2.45.0"
    script = (f"#!/bin/sh\nif [ -e {scratch}/hang ]; then echo $$ > {scratch}/pid.new; mv {scratch}/pid.new "
              f"{scratch}/pid; exec sleep 100; fi\nexec {shutil.which('git')} \"$@\"\n")
    for file, content in (("cmd/git.exe", script),
                          ("mingw64/etc/ssl/certs/ca-bundle.crt", "-----BEGIN CERTIFICATE-----\n")):
        (top / file).parent.mkdir(parents=True)
        (top / file).write_text(content)
        (top / file).chmod(0o755)
    env["GDA_TPS_DIR"] = str(scratch / "tps")
    return env


def run(scratch, env, tag):
    classes = [f"--select-class=ui.frmwork.plaz.browser.{name}Test" for name in ("Browser", "BrowserParts")]
    command = junit.command(JAVA, [f"-Dscratch={scratch}"], [TESTS_JAR, PLAZ_JAR], LIBRARIES, "--include-tag", tag,
                            *classes)
    result = subprocess.run(command, env=env, cwd=scratch)
    if result.returncode:
        sys.exit(result.returncode)


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-browser-") as directory:
        scratch = pathlib.Path(directory)
        env = make_hub(scratch)
        subprocess.run([LIBRARIES.parent / "bin/plaz", "--quiet", "install", "boards::io-panel@1.0"], env=env,
                       check=True)
        read, write = os.pipe()
        with subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1400x900x24", "-nolisten", "tcp"],
                              pass_fds=[write], stderr=subprocess.DEVNULL) as server:
            os.close(write)
            try:
                with open(read, encoding="ascii") as display:
                    env["DISPLAY"] = ":" + display.readline().strip()
                for tag in ("first", "again"):
                    run(scratch, env, tag)
            finally:
                server.terminate()


main()
