"""Runs JUnit tests in a virtual machine, on a sample hub of their own.

    run_tests.py JAVA PLAZ_JAR TESTS_JAR LIBRARY_DIR MAKE_SAMPLE_HUB PRODUCT_DATA TESTS

TESTS is Binding, Hub or Browser: real windows on a display. For these the virtual machine is started twice on the same
user's directory: the second one finds what the first one left. Fails as well when the virtual machine finds that native
code uses it wrongly.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

JAVA, PLAZ_JAR, TESTS_JAR, LIBRARIES, MAKE_SAMPLE_HUB, PRODUCT_DATA = (
    pathlib.Path(arg).absolute() for arg in sys.argv[1:7]
)
TESTS = sys.argv[7]
JUNIT = [
    f"/usr/share/java/{jar}.jar"
    for jar in (
        "junit-jupiter-api",
        "junit-jupiter-engine",
        "junit-jupiter-params",
        "junit-platform-commons",
        "junit-platform-engine",
        "junit-platform-launcher",
        "junit-platform-console",
        "junit-platform-reporting",
        "opentest4j",
        "opentest4j-reporting-events",
        "opentest4j-reporting-schema",
        "apiguardian-api",
        "picocli",
        "univocity-parsers",
    )
]
COMPLAINT = re.compile(r"in native method|WARNING: JNI ")


def make_hub(scratch):
    """Makes a sample hub. Returns the environment of the programs that use it."""
    sample = scratch / "sample"
    subprocess.run(
        [sys.executable, MAKE_SAMPLE_HUB, sample, "--product-data", PRODUCT_DATA], check=True, stdout=subprocess.DEVNULL
    )
    env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_", "JAVA_"))}
    env.update(
        GDA_DATA_DIR=f"{sample / 'data'}{os.pathsep}{PRODUCT_DATA}",
        GDA_APPDATA_DIR=str(sample / "home"),
        HOME=str(sample / "home"),
        LC_ALL="C.UTF-8",
    )
    return env


def run(scratch, env, options, *selection):
    command = [
        JAVA,
        "-ea",
        f"-Djava.library.path={LIBRARIES}",
        f"-Dscratch={scratch}",
        *options,
        "-cp",
        os.pathsep.join(map(str, [TESTS_JAR, PLAZ_JAR, *JUNIT])),
        "org.junit.platform.console.ConsoleLauncher",
        "--disable-banner",
        "--disable-ansi-colors",
        "--details=tree",
        "--details-theme=ascii",
        "--fail-if-no-tests",
        *selection,
    ]
    with subprocess.Popen(
        command, env=env, cwd=scratch, encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.STDOUT
    ) as machine:
        complaints = []
        for line in machine.stdout:
            print(line, end="", flush=True)
            complaints += [line] if COMPLAINT.search(line) else []
    if complaints:
        sys.exit(f"native code uses the virtual machine wrongly: {complaints[0]}")
    if machine.returncode:
        sys.exit(machine.returncode)


def describe_spitefully(sample):
    """An item as a spiteful catalog would describe it."""
    (description,) = sample.glob("data/plaz/storesdata/*/.plaz/.catalog/scripts/resistances/item.json")
    text = json.loads(description.read_text("utf-8"))
    infra = text["config"]["items"][0]["infra"]
    infra.update(
        display="<html><b>bold",
        description="<html><img src='http://127.0.0.1:1/'>",
        author="<html>A",
        website="file:///etc/passwd",
    )
    description.write_text(json.dumps(text), "utf-8")


def lay_hanging_git(scratch):
    """A git that hangs while there is a file "hang"."""
    script = (
        f"#!/bin/sh\nif [ -e {scratch}/hang ]; then echo $$ > {scratch}/pid.new; mv {scratch}/pid.new "
        f"{scratch}/pid; exec sleep 100; fi\nexec {shutil.which('git')} \"$@\"\n"
    )
    for name, content in (
        ("cmd/git.exe", script),
        ("mingw64/etc/ssl/certs/ca-bundle.crt", "-----BEGIN CERTIFICATE-----\n"),
    ):
        file = scratch / "tps/win64/git-2.45.0" / name
        file.parent.mkdir(parents=True)
        file.write_text(content)
        file.chmod(0o755)


def run_browser(scratch, env):
    describe_spitefully(scratch / "sample")
    lay_hanging_git(scratch)
    env["GDA_TPS_DIR"] = str(scratch / "tps")
    subprocess.run([LIBRARIES.parent / "bin/plaz", "--quiet", "install", "boards::io-panel@1.0"], env=env, check=True)
    read, write = os.pipe()
    with subprocess.Popen(
        ["Xvfb", "-displayfd", str(write), "-screen", "0", "1400x900x24", "-nolisten", "tcp"],
        pass_fds=[write],
        stderr=subprocess.DEVNULL,
    ) as server:
        os.close(write)
        try:
            with open(read, encoding="ascii") as display:
                env["DISPLAY"] = ":" + display.readline().strip()
            for tests in ("--exclude-tag=again", "--include-tag=again"):
                run(
                    scratch,
                    env,
                    [],
                    tests,
                    "--select-class=ui.frmwork.plaz.browser.BrowserTest",
                    "--select-class=ui.frmwork.plaz.browser.BrowserPartsTest",
                )
        finally:
            server.terminate()


def main():
    with tempfile.TemporaryDirectory(prefix="plaz-java-") as directory:
        scratch = pathlib.Path(directory)
        env = make_hub(scratch)
        if TESTS == "Browser":
            run_browser(scratch, env)
        else:
            # The heap takes all its memory at the start: what the process grows by later is native memory. The machine
            # does not watch signal handlers, for it would catch Tcl's first moment; the tests look at them at the end.
            run(
                scratch,
                env,
                ["-Xcheck:jni", "-XX:+AllowUserSignalHandlers", "-Xms128m", "-Xmx128m", "-XX:+AlwaysPreTouch"],
                f"--select-class=ui.frmwork.plaz.{TESTS}Test",
            )


main()
