"""What the tests share: the program, a sample hub, and an environment in which nothing of the user's counts.

By hand, from the folder "tests", on the build directory that PLAZ_BUILD names (else that of the release preset):

    python3 -m unittest e2e.shell_test [e2e.shell_test.ShellTest.METHOD]
"""

import functools
import json
import operator
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from support import json_output

TREE = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("PLAZ_BUILD", TREE / "build/release")).resolve()
PLAZ = BUILD / "bin/plaz"
PRODUCT_DATA = BUILD / "share/plaz/data"
# The program for Windows with what starts it, where a test looks at that, and the drive by which it finds our files.
WINDOWS = os.environ["PLAZ_WINDOWS"].split(";") if "PLAZ_WINDOWS" in os.environ else []
DRIVE = "Z:" if WINDOWS else ""
TEXT = {"encoding": "utf-8", "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
SCRATCH = tempfile.TemporaryDirectory(prefix="plaz-test-")  # gone at the end of the process

# What steers the hub, git or an interpreter, chooses a language or a proxy, or leads to files of the user's.
STEERING = re.compile("(GDA|ZENTOR|PLAZ|GIT|PIP|JAVA|XDG|LC|SSL)_|PYTHON|TCL|LANG|HOME|.*_proxy$", re.IGNORECASE)


def make_env(home, *data_roots, drive="", **more):
    """The environment of a user at @p home, with the hub that the data roots describe, all on a drive."""
    env = {name: value for name, value in os.environ.items() if not STEERING.match(name)}
    roots = (";" if drive else os.pathsep).join(f"{drive}{root}" for root in data_roots)
    places = {"HOME": str(home), "GDA_APPDATA_DIR": f"{drive}{home}", "GDA_DATA_DIR": roots}
    return {**env, **places, "LC_ALL": "C.UTF-8", **more}


def read_cache():
    """@return the variables that the build was configured with"""
    return dict(re.findall(r"^(\w+):\w+=(.*)$", (BUILD / "CMakeCache.txt").read_text(), re.M))


def is_sanitized():
    return read_cache().get("PLAZ_SANITIZE", "") not in ("", "OFF")


def run(*command, **options):
    """Runs a program, which may take two minutes. @return the process, with what it printed as text"""
    return subprocess.run(command, **{"input": "", "timeout": 120, **TEXT, **options})


def succeed(*command, **options):
    """Runs a program that is to succeed. @return what it prints"""
    result = run(*command, **options)
    if result.returncode:
        raise AssertionError(f"{command} ends with {result.returncode}:\n{result.stdout}{result.stderr}")
    return result.stdout


def make_hub(directory):
    """Makes a sample hub: "repos", "data" and "home". @return the directory"""
    succeed(sys.executable, TREE / "scripts/make-sample-hub", directory, "--product-data", PRODUCT_DATA)
    return directory


def wait_for(file):
    """Waits until a program has written a number to the file. @return the number"""
    deadline = time.monotonic() + 60
    while not (file.exists() and file.read_text()):
        if time.monotonic() > deadline:
            raise TimeoutError(file)
        time.sleep(0.01)
    return int(file.read_text())


def lay_tree(files):
    """Writes files, by their names, below a new folder. @return the folder"""
    tree = pathlib.Path(tempfile.mkdtemp(dir=SCRATCH.name))
    for name, text in files.items():
        (tree / name).parent.mkdir(parents=True, exist_ok=True)
        (tree / name).write_text(text, "utf-8")
    return tree


def edit(file, change):
    """Lets @p change work on a JSON file."""
    content = json.loads(file.read_text("utf-8"))
    change(content)
    file.write_text(json.dumps(content), "utf-8")


def hide(file):
    """Puts a directory in a file's place, so that it can be neither read nor replaced."""
    file.unlink()
    file.mkdir()


def commit(repository, change, env):
    """Commits what @p change makes of the repository's files. @return the commit's id"""
    work = pathlib.Path(tempfile.mkdtemp(dir=SCRATCH.name))
    author = ("-c", "user.name=A", "-c", "user.email=a@example.org")
    git = functools.partial(succeed, "git", f"--git-dir={repository}", f"--work-tree={work}", *author, env=env)
    git("reset", "--hard")
    change(work)
    git("add", "--all")
    git("commit", "--message", "New")
    return git("rev-parse", "HEAD").strip()


class HubTest(unittest.TestCase):
    """Each test has a hub and a user's home of its own, and an environment that leads there."""

    maxDiff = None

    def setUp(self):
        self.dir, whole = pathlib.Path(SCRATCH.name, "hub"), pathlib.Path(SCRATCH.name, "whole")
        if not whole.exists():
            make_hub(self.dir).rename(whole)  # and each test gets a copy in the place where it was made
            for repository in whole.glob("repos/*"):
                succeed("git", "-C", repository, "gc", "--quiet")
        succeed("rm", "-rf", self.dir)
        succeed("cp", "-r", whole, self.dir)
        self.data, self.home, self.repositories = (self.dir / name for name in ("data", "home", "repos"))
        self.env = make_env(self.home, self.data, PRODUCT_DATA)
        self.hub_file, self.config_file = self.data / "plaz/plaz.json", self.data / "plaz/plaz_config.json"
        self.catalog_file = self.data / "plaz/storesdata/tcl-store/scripts_catalog.json"

    def edit_stores(self, change, first=0):
        edit(self.hub_file, lambda hub: [store.update(change) for store in hub["plaz"]["qstores"][first:]])

    def run_plaz(self, command, status=0, **env):
        """Runs the program, which is to end with @p status."""
        result = run(PLAZ, *command.split(), cwd=self.dir, env={**self.env, **env})
        self.assertEqual(result.returncode, status, (command, result.stdout, result.stderr))
        return result

    def run_json(self, command, status=0, **env):
        """@return the document that the program prints"""
        document = json.loads(self.run_plaz(f"--json {command}", status, **env).stdout)
        self.assertEqual(json_output.find_faults(document), [], command)
        self.assertEqual((document["ok"], "error" in document), (status == 0, status != 0), command)
        return document

    def ask(self, command, members, status=0):
        """@return a text for each entry of a list in the document, with the members that "LIST: MEMBER..." names"""
        path, names = members.split(": ")
        entries = functools.reduce(operator.getitem, path.split(), self.run_json(command, status))
        return [" ".join(str(entry[name]) or "-" for name in names.split()) for entry in entries]

    def expect(self, command, members, *expected, status=0):
        self.check(f"{command}: {members}", self.ask(command, members, status), [*expected])

    def check(self, what, found, expected):
        with self.subTest(what):
            self.assertEqual(found, expected)

    def check_shown(self, text, *parts, never=()):
        for part in (*parts, *never):
            with self.subTest(shown=part):
                self.assertEqual(part in text, part not in never, text)

    def lay_program(self, name, script):
        """Puts a shell script among the test's files."""
        program = self.dir / name
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\n{script}\n")
        program.chmod(0o755)

    def lay_git(self, script, bundle="-----BEGIN CERTIFICATE-----"):
        """Third-party programs of the test's own, if any: a script in git's place, a bundle of certificates."""
        top = self.dir / "tps/win64/git-2.45.0"
        self.env["GDA_TPS_DIR"] = str(self.dir / "tps")
        self.bundle = top / "mingw64/etc/ssl/certs/ca-bundle.crt"
        self.bundle.parent.mkdir(parents=True, exist_ok=True)
        if bundle:
            self.bundle.write_text(bundle)
        program = top / "cmd/git.exe"
        if script and is_sanitized():  # it keeps the sanitizers' runtime from the script, as from git
            program.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(BUILD / "share/plaz" / program.relative_to(self.dir), program)
        if script:
            self.lay_program(f"{program}.sh" if is_sanitized() else program, script)

    def commit(self, repository, change):
        commit(self.repositories / f"{repository}.git", change, self.env)

    def publish(self, store, word, bulk=1):
        """Commits to a store's repository: companies and items are called @p word, @p bulk items grow by 100 KB."""

        def change(work):
            items = sorted(work.glob("*/*/item.json"))
            for file in (*work.glob("*_catalog.json"), *items):
                text = re.sub('"(company|display)": ".*"', rf'"\1": "{word}"', file.read_text("utf-8"))
                file.write_text(text, "utf-8")
            for file in items[:bulk]:
                file.with_name("changelog.txt").write_text(os.urandom(100000).hex())

        self.commit(store, change)
