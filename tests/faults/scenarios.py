"""The commands that faults come into, on homes that are prepared once, and what is looked at after each fault."""

import functools
import json
import pathlib
import re
import shutil
import subprocess
import threading
from typing import NamedTuple

from faults.judge import DATABASE, PLACES, Home, Origin, read_home
from support.hubtest import BUILD, DRIVE, PLAZ, PRODUCT_DATA, WINDOWS, commit, edit, make_env, make_hub, run

PROGRAM = WINDOWS or [PLAZ]
STEPPER = pathlib.Path(WINDOWS[-1]).with_name("stepper.exe") if WINDOWS else BUILD / "bin/stepper"
ENDS = ("kill", "kill-all", "interrupt")
ERRORS = ("ENOSPC", "EIO", "EACCES", "EROFS", "EMFILE")
NOTE = "plaz_change.json"
NO_FAULT = "nothing"
HOLDS = ("hold", "lock", "hold-once")
KINDS = ("kill", *ERRORS, *HOLDS) if WINDOWS else (*ENDS, *ERRORS, "full")
SCOPES = ("alone",) if WINDOWS else ("alone", "children")
ALREADY_DONE = ("is not installed", "taken back already")
FINDINGS = ("neither old nor new", "leftovers", "not completed", "exit 0 too early", "bad end", "lost")


AREA = "2024.2/plaz/ced_store/scripts"
OWN = {  # what a user has made of files below: changed, emptied, removed and added them
    "pin-report/changelog.txt": b"Mine.\n",
    "pin-report/logo.svg": b"",
    "pin-report/pin_report.tcl": None,
    "pin-report/mine/notes.txt": b"Added.\n",
    "text-tables/changelog.txt": b"Mine, too.\n",
    "text-tables/logo.svg": None,
}
CHANGED, EMPTIED, MISSING, ADDED, CHANGED_BELOW, MISSING_BELOW = OWN


class Scenario(NamedTuple):
    name: str
    before: tuple  # the commands that prepare the home: before newer commits are published, and after
    after: tuple
    command: str
    next_task: str = "uninstall resistances"  # another one that changes something, without the network
    stays: tuple = None  # of what the user has made of files; None where that is nothing
    writes: bool = True  # else it finds something wrong, and ends with 1
    weight: int = 1  # of its points in a spread

    def get_own(self, names=OWN):
        return {} if self.stays is None else {f"@/{AREA}/{name}": OWN[name] for name in names}


INSTALLED = ("install pin-report resistances",)
SCENARIOS = (
    Scenario("install", ("install resistances",), (), "install aurora"),
    Scenario("uninstall", ("install aurora resistances legacy-carrier",), (), "uninstall aurora"),
    Scenario("update", INSTALLED, ("refresh tclscripts",), "update pin-report"),
    Scenario("update-many", ("install aurora@1.1 resistances",), (), "update aurora"),
    Scenario("update-again", ("install hikari resistances",), ("refresh boards",), "update hikari"),
    Scenario("update-moved", ("install csv-kit resistances",), ("refresh tclscripts",), "update csv-kit"),
    Scenario("refresh", ("refresh tclscripts", "install pin-report resistances"), (), "refresh tclscripts", weight=3),
    Scenario("refresh-hub", ("refresh --hub", "install hikari resistances"), (), "refresh --hub", weight=3),
    Scenario(
        "relocate",
        ("refresh tclscripts", "install resistances legacy-carrier"),
        (),
        "relocate tclscripts {home}/moved",
        "uninstall legacy-carrier",
    ),
    Scenario("verify", INSTALLED, (), "verify pin-report", stays=(*OWN,), writes=False),
    Scenario("repair", INSTALLED, (), "repair pin-report", stays=(ADDED, CHANGED_BELOW, MISSING_BELOW)),
    Scenario("restore", INSTALLED, (), "install pin-report", stays=(CHANGED, ADDED, CHANGED_BELOW)),
    Scenario("reinstall", INSTALLED, (), "install --reinstall pin-report", stays=(CHANGED_BELOW,)),
    Scenario("uninstall-own", INSTALLED, (), "uninstall pin-report", stays=(CHANGED_BELOW, MISSING_BELOW)),
    Scenario("undo", (*INSTALLED, "uninstall pin-report"), (), "undo 2"),
    Scenario("hold", ("install aurora resistances",), (), "hold aurora"),
    Scenario("uninstall-held", ("install aurora resistances", "hold aurora"), (), "uninstall aurora"),
    Scenario("undo-held", ("install aurora resistances", "hold aurora", "uninstall aurora"), (), "undo 3"),
    Scenario("undo-update", ("refresh tclscripts", *INSTALLED), ("refresh tclscripts", "update pin-report"), "undo 2"),
    Scenario("update-own", INSTALLED, ("refresh tclscripts",), "update pin-report", stays=(CHANGED_BELOW,)),
)


# What disks refuse: whether commands do without, what they say of it, once, and what the doctor says.
DISKS = {
    "flock=ENOLCK": (True, "WARNING: [17-2240]", "no lock can be had"),
    "flock=ENOSYS": (True, "WARNING: [17-2240]", "no lock can be had"),
    "fsync=EINVAL": (True, "", "cannot be told to keep"),
    "fsync=ENOSYS": (True, "", "cannot be told to keep"),
    "fsync=EIO": (False, "", ""),
    "renameat2=EINVAL": (True, "", "0 with a warning"),
}


class Point(NamedTuple):
    scenario: str
    kind: str
    scope: str  # whose calls are counted
    at: int
    refused: str = ""  # by the disk, whatever else happens

    def __str__(self):
        refused = f" --refuse {self.refused}" * bool(self.refused)
        return f"--scenario {self.scenario} --do {self.kind} --{self.scope} --at {self.at}{refused}"


def publish(repositories, env):
    """Commits newer items to the stores, with other files and other dependencies, and newer metadata to the hub."""

    def publish_item(repository, folder, name, revision, needs, new_folder=None):
        def change_item(work):
            directory = work / folder / name
            if new_folder:
                (work / new_folder).mkdir()
                directory = directory.rename(work / new_folder / name)

            def change(document):
                infra = document["config"]["items"][0]["infra"]
                infra["revision"] = revision
                infra["dependencies"] = [{"store": s, "item": i, "revision": ""} for s, i in needs]

            edit(directory / "item.json", change)
            (directory / "changelog.txt").write_text("Newer.\n")
            (directory / "logo.svg").unlink()
            (directory / "more").mkdir()
            (directory / "more/new.txt").write_text("New.\n")

        new = commit(repositories / f"{repository}.git", change_item, env)

        def change_catalog(work):
            def change(document):
                item = next(i for i in document["catalog"]["items"] if i["name"] == name)
                item.update(latest_revision=revision, commit_id=new)
                item["root"] = item["config"]["root"] = f"{new_folder or folder}/{name}"
                item["revisions"] = [r for r in item["revisions"] if r["revision"] != revision]
                item["revisions"].append({"revision": revision, "commit_id": new, "history": "Newer."})

            def change_metadata(document):
                for release in document["catalog"]["supported_products"][0]["supported_releases"]:
                    release["catalog_revision"] += "1"

            edit(next(work.glob("*_catalog.json")), change)
            edit(next(work.glob("*_store.json")), change_metadata)

        commit(repositories / f"{repository}.git", change_catalog, env)

    scripts = "tclscripts"
    publish_item("tcl-store", "scripts", "pin-report", "1.1", ((scripts, "text-tables"), (scripts, "clocking")))
    publish_item("tcl-store", "scripts", "clocking", "1.0", ((scripts, "pin-report"),))
    publish_item("tcl-store", "scripts", "csv-kit", "1.2", ((scripts, "string-kit"),), "scripts/tables")
    publish_item("boards-store", "boards", "hikari", "1.0", (("boards", "connectors-common"), ("boards", "io-panel")))

    def change_hub(document):
        document["plaz"]["qstores"][0]["display_name"] = "Newer boards"

    commit(repositories / "hub.git", lambda work: edit(work / "plaz.json", change_hub), env)


def copy_home(source, target, drive=""):
    """Copies a home, with the places that it records, which are on a drive then."""
    shutil.copytree(source, target, symlinks=True)
    for file in (*target.glob(f"*/plaz/*/.plaz/{DATABASE}"), *target.glob(f"*/plaz/{PLACES}")):
        file.write_text(file.read_text("utf-8").replace(str(source), f"{drive}{target}"), "utf-8")


def save_home(home, saved):
    """Copies a home that is to come back to its place, with the directory that an interrupted change names."""
    shutil.copytree(home, saved, symlinks=True)
    for note in saved.glob(f"*/plaz/{NOTE}"):
        try:
            named = json.loads(note.read_text("utf-8"))["plaz"]["identity"]
        except ValueError:  # it was not on the disk yet
            continue
        for directory in (path for path in home.rglob("*") if named and str(path.lstat().st_ino) == named):
            copied = str((saved / directory.relative_to(home)).stat().st_ino)
            edit(note, lambda document: document["plaz"].update(identity=copied))


class Stage:
    """A hub with the prepared homes of scenarios, below a directory."""

    def __init__(self, directory, scenarios):
        self.dir = directory
        directory.mkdir(exist_ok=True)
        self.hub = make_hub(directory / "hub")
        self.origin = Origin(self.hub / "repos")
        self.scenarios = {scenario.name: scenario for scenario in scenarios}
        self.ends = {}  # of each scenario: old and new home, and both after the next task
        for scenario in scenarios:
            self.run_all(directory / scenario.name, scenario.before)
        publish(self.hub / "repos", make_env(self.hub))
        for scenario in scenarios:
            home = directory / scenario.name
            self.run_all(home, scenario.after)
            for name, text in OWN.items() if scenario.get_own() else ():
                place = home / AREA / name
                place.parent.mkdir(exist_ok=True)
                place.unlink() if text is None else place.write_bytes(text)
            self.ends[scenario.name] = (*self.end(home, OWN), *self.end(home, scenario.stays or (), scenario.command))
            self.check_ends(scenario)

    def env(self, home, drive=""):
        return make_env(home, self.hub / "data", PRODUCT_DATA, drive=drive)

    def run_all(self, home, commands, status=0):
        home.mkdir(exist_ok=True)
        for command in commands:
            result = run(PLAZ, *command.format(home=home).split(), env=self.env(home))
            if result.returncode != status:
                raise AssertionError(f"{command} ends with {result.returncode}: {result.stdout}{result.stderr}")

    def end(self, prepared, own, *commands):
        """@return the home that a copy becomes by a command, and by the next task after it"""
        home, scenario = self.dir / "end", self.scenarios[prepared.name]
        copy_home(prepared, home)
        self.run_all(home, commands, int(not scenario.writes))
        end = Home(home, self.origin, scenario.get_own(own))
        self.run_all(home, [scenario.next_task])
        after_next = Home(home, self.origin, scenario.get_own(own))
        shutil.rmtree(home)
        return end, after_next

    def check_ends(self, scenario):
        """What no fault disturbs has to be right: nothing could be said of the rest otherwise."""
        if not scenario.writes and (calls := self.find_calls(scenario.name, "children", "write")):
            raise AssertionError(f"{scenario.name} changes something: {calls}")
        for home in self.ends[scenario.name]:
            wrong = [*home.judge_items(home, home), *home.find_leftovers(home, home)]
            wrong += home.judge_own(scenario.get_own())
            wrong += home.describe_counts({record[:3]: record.count for record in home.get_in_force()})
            if wrong:
                raise AssertionError(f"{scenario.name}, undisturbed: {wrong}")

    def run_program(self, home, program, *words, **env):
        """Runs the program that is to be looked at."""
        words = (str(word).format(home=f"{DRIVE}{home}") for word in words)
        return run(*program, *words, env={**self.env(home, DRIVE), **env}, cwd=home.parent)

    def step(self, home, point, counted):
        """Runs a scenario's command under the stepper. @return the process, and the calls that were counted"""
        name, fault, scope, at, refused = point
        report = home.with_name("calls")
        order = f"{fault} {counted} {at} {DRIVE}{report}"
        options = ["--do", fault] * (fault != NO_FAULT) + ["--refuse", refused] * bool(refused)
        options += ["--kind", counted, f"--{scope}", "--at", str(at), "--report", report, "--", PLAZ]
        stepper = [*WINDOWS[:-1], STEPPER] if WINDOWS else [STEPPER, *options]
        words = ("--quiet", "--no-progress", *self.scenarios[name].command.split())
        return self.run_program(home, stepper, *words, STEPPER=order), report.read_text().splitlines()

    @functools.cache
    def find_calls(self, name, scope, kind, refused=""):
        """@return what is called at each point that a scenario has"""
        home = self.dir / "count" / "home"
        copy_home(self.dir / name, home, DRIVE)
        calls = self.step(home, Point(name, "kill", scope, 0, refused), kind)[1]
        shutil.rmtree(home.parent)
        return calls

    def find_exchanges(self, name, refused=""):
        """@return at which of the program's calls directories change places"""
        calls = enumerate(self.find_calls(name, "alone", "write", refused), 1)
        return [at for at, call in calls if re.search(r" rename(at2)? .*/\.incoming(\.old)?( ->|$)", call)]

    def run_point(self, point):
        """@return the call that the fault came into (none where the run ended before), and what was found, by kind"""
        slot = self.dir / f"slot-{threading.get_ident()}"
        shutil.rmtree(slot, ignore_errors=True)
        home = slot / "home"
        copy_home(self.dir / point.scenario, home, DRIVE)
        try:
            result, calls = self.step(home, point, get_counted(point.kind))
            if len(calls) < point.at:
                return None, []
            return (calls or ["no call"])[-1].replace(str(home), "@"), [*self.judge(point, home, result)]
        except (subprocess.TimeoutExpired, ValueError, AssertionError) as failure:
            return "?", [("bad end", repr(failure))]
        finally:
            shutil.rmtree(slot)

    def judge(self, point, home, result):
        scenario, (old, old_next, new, new_next) = self.scenarios[point.scenario], self.ends[point.scenario]
        neither, leftovers, unfinished, early, bad, lost = FINDINGS
        fault = f"after exit {result.returncode}"
        found = read_home(home, self.origin)
        lacking = [*found.describe_difference(new, old)]
        yield from (
            (lost, f"{fault}: {text}") for text in found.judge_own(old.own, result.stderr, not result.returncode)
        )
        if result.returncode == 0:
            yield from ((early, text) for text in (*lacking, *["nothing is wrong"] * (not scenario.writes)))
        elif point.kind not in ENDS and not any(
            word in result.stderr.lower() for word in ("error", "critical warning")
        ):
            yield bad, f"exit {result.returncode} without a word: {result.stderr[-300:]!r}"
        elif point.kind == "hold-once":
            yield bad, f"exit {result.returncode}, though it passes: {result.stderr[-300:]!r}"
        if result.returncode > 130 and point.kind not in ("kill", "kill-all"):
            yield bad, f"exit {result.returncode}"
        if point.kind == NO_FAULT and point.refused in DISKS:
            yield from ((bad, text) for text in self.judge_refusal(point.refused, home, result))

        saved = home.with_name("saved")
        save_home(home, saved)
        status, error, shown = self.run_plaz(home, "items --installed --all-revisions")
        started = Home(home, self.origin)
        if status:
            yield neither, f"{fault}, the next start fails: {error}"
        for text in (*started.judge_items(old, new), *started.judge_files(old, new), *started.judge_shown(shown)):
            yield neither, f"{fault}, at the next start: {text}"
        status, error, _ = self.run_plaz(home, scenario.next_task)
        later = Home(home, self.origin)
        if status:
            yield neither, f'{fault}, "{scenario.next_task}" fails: {error}'
        counts = {record[:3]: record.count for record in later.get_in_force()}
        judged = (later.judge_items(old_next, new_next), later.judge_files(old_next, new_next))
        for text in (*judged[0], *judged[1], *later.describe_counts(counts)):
            yield neither, f"{fault}, after the next task: {text}"
        yield from ((lost, f"{fault}, after the next task: {text}") for text in later.judge_own(old.own))
        for text in later.find_leftovers(old_next, new_next):
            yield leftovers, f"{fault}, after the next task: {text}"

        shutil.rmtree(home)
        saved.rename(home)
        status, error, _ = self.run_plaz(home, scenario.command)
        again = Home(home, self.origin)
        yield from ((lost, f"{fault}, after the same again: {text}") for text in again.judge_own(old.own))
        if status and lacking and not any(text in error for text in ALREADY_DONE):  # a start may have finished it
            yield unfinished, f"{fault}, the same again fails: {error}"
        for text in again.describe_difference(new, old):
            yield unfinished, f"{fault}, after the same again (exit {status}): {text}"
        if lacking:  # so it had something to do, and has used the working copies
            for text in (*again.find_leftovers(new, old), *(f"{path} is left over" for path in again.garbage)):
                yield leftovers, f"{fault}, after the same again: {text}"

    def judge_refusal(self, refused, home, result):
        goes_on, told, seen = DISKS[refused]
        asked = run(STEPPER, "--refuse", refused, "--", PLAZ, "doctor", env=self.env(home), cwd=home.parent).stdout
        if (result.returncode == 0) != goes_on or (told and result.stderr.count(told) != 1) or seen not in asked:
            yield f"exit {result.returncode}: {result.stderr!r}; the doctor says {asked!r}"

    def run_plaz(self, home, command):
        """@return exit status, error and list of items"""
        result = self.run_program(home, PROGRAM, "--json", *command.split())
        document = json.loads(result.stdout or "{}")
        return result.returncode, document.get("error", result.stderr[-300:]), document.get("items", [])


def get_counted(kind):
    return "open" if kind in ("EMFILE", *HOLDS) else "write"
