"""Runs the tests of the Java binding with JUnit, each class in a virtual machine of its own on a sample hub.

Catches, besides what these tests catch: native code that uses the virtual machine wrongly.
"""

import contextlib
import os
import re
import shutil
import subprocess

from support.hubtest import BUILD, HubTest, edit, read_cache, run, succeed

JAVA = read_cache()["Java_JAVA_EXECUTABLE"]
JUNIT = """junit-jupiter-api junit-jupiter-engine junit-jupiter-params junit-platform-commons junit-platform-engine
    junit-platform-launcher junit-platform-console junit-platform-reporting opentest4j opentest4j-reporting-events
    opentest4j-reporting-schema apiguardian-api picocli univocity-parsers""".split()
JARS = [BUILD / "tests/java/plaz-tests.jar", BUILD / "share/java/plaz.jar"]
JARS += [f"/usr/share/java/{name}.jar" for name in JUNIT]
LAUNCHER = """org.junit.platform.console.ConsoleLauncher --disable-banner --disable-ansi-colors --details=tree
    --details-theme=ascii --fail-if-no-tests""".split()
# The heap takes all its memory at the start: what the process grows by later is native memory.
CHECKED = "-Xcheck:jni -Xms128m -Xmx128m -XX:+AlwaysPreTouch".split()
SPITEFUL = {
    "display": "<html><b>bold",
    "description": "<html><img src='http://127.0.0.1:1/'>",
    "author": "<html>A",
    "website": "file:///etc/passwd",
}


@contextlib.contextmanager
def run_display():
    """A display of its own. @return its name"""
    read, write = os.pipe()
    command = ["Xvfb", "-displayfd", str(write), "-screen", "0", "1400x900x24", "-nolisten", "tcp"]
    with subprocess.Popen(command, pass_fds=[write], stderr=subprocess.DEVNULL) as server:
        os.close(write)
        try:
            with open(read, encoding="ascii") as display:
                yield ":" + display.readline().strip()
        finally:
            server.terminate()


class JavaTest(HubTest):
    def run_tests(self, classes, options=(), selection=()):
        machine = [JAVA, "-ea", f"-Djava.library.path={BUILD}/lib", f"-Dplaz.home={BUILD}", f"-Dscratch={self.dir}"]
        machine += [*options, "-cp", os.pathsep.join(map(str, JARS)), *LAUNCHER, *selection]
        selected = [f"--select-class=ui.frmwork.plaz.{name}" for name in classes]
        told = {"encoding": "utf-8", "stdout": subprocess.PIPE, "stderr": subprocess.STDOUT}
        with subprocess.Popen([*machine, *selected], cwd=self.dir, env=self.env, **told) as process:
            for line in process.stdout:
                print(line, end="", flush=True)
                if re.search("in native method|WARNING: JNI |handler modified", line):
                    process.kill()
                    self.fail(line)
        self.assertEqual(process.returncode, 0)

    def test_binding(self):
        self.run_tests(["BindingTest"], CHECKED)

    def test_hub(self):
        self.home.mkdir(exist_ok=True)
        (self.home / "preferences.json").write_text('{"preferences": {"plaz.http_proxy": ["http://proxy.invalid"]}}')
        # The real one never ends where a sanitizer's runtime is loaded into it, as into all that is started here.
        self.lay_program("bin/wget", "exit 1")
        self.env["PATH"] = f"{self.dir / 'bin'}:{os.environ['PATH']}"
        self.run_tests(["HubTest"], CHECKED)

    def test_hub_thread(self):
        """Catches: a class of the browser beside those of the hub's thread that reaches for the hub."""
        hub = r"ui\.frmwork\.plaz\.(\w+|host\.PlazHost\$Listener)"
        report = succeed("jdeps", *"--multi-release base -verbose:class -filter:none -e".split(), hub, JARS[1])
        users = re.findall(r"^ +ui\.frmwork\.plaz\.browser\.(\w+)", report, re.M)
        self.assertEqual({*users}, {"HubThread", "Operation", "SnapshotReader"})

    def test_start(self):
        """Catches: a start that opens a window, or takes for an option what is none."""
        for argument, status, part in (
            ("--version", 0, "plaz-browser "),
            ("--help", 0, "Usage"),
            ("--bad", 2, "--bad"),
        ):
            result = run(BUILD / "bin/plaz-browser", "-Xmx64m", argument, env={**self.env, "JAVA": JAVA})
            self.assertEqual((result.returncode, part in result.stdout + result.stderr), (status, True), argument)

    def test_browser(self):
        """On a display. The second virtual machine finds what the first one left."""
        (description,) = self.data.glob("plaz/storesdata/*/.plaz/.catalog/scripts/resistances/item.json")
        edit(description, lambda document: document["config"]["items"][0]["infra"].update(SPITEFUL))
        hang = f"if [ -e {self.dir}/hang ]; then cd {self.dir}; echo $$ >pid.new; mv pid.new pid; exec sleep 100; fi"
        self.lay_git(f'{hang}\nexec {shutil.which("git")} "$@"')
        self.run_plaz("install boards::io-panel@1.0")
        with run_display() as self.env["DISPLAY"]:
            for tests in ("--exclude-tag=again", "--include-tag=again"):
                self.run_tests(["browser.BrowserTest", "browser.BrowserPartsTest"], selection=[tests])
