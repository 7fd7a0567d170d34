"""Holds random histories of a user's hub against a model of what should be installed. From the repository's top:

    python3 tests/plaz/tasks/model --histories 2000 --seed 1      the seeds 1 to 2000

A history that goes wrong is shown up to where it does, and ends the run with status 1.
"""

import argparse
import concurrent.futures as futures
import json
import logging
import multiprocessing
import os
import pathlib
import random
import signal
import subprocess
import sys
import time

if pathlib.Path("/dev/shm").is_dir():
    os.environ.setdefault("TMPDIR", "/dev/shm")  # where what is flushed costs little
sys.path.append(str(pathlib.Path(__file__).resolve().parents[3]))
from hubs import GONE, Publisher, make_history  # noqa: E402 (beside this file)
from rules import ONE, SEVERAL, Fact, Model  # noqa: E402
from support.hubtest import BUILD, PLAZ, HubTest, run  # noqa: E402 (below "tests")

sys.path.insert(0, str(BUILD / "python"))
METADATA = ("/item.json", "/about.json")
AREAS = {SEVERAL: "2024.2/plaz/board_store", ONE: "2024.2/plaz/ced_store"}
KEPT = "2024.2/plaz/plaz_kept"
DONE, FAILED, CANCELLED = 0, 1, 130
PLANNED = ("install", "uninstall", "update", "update_all")


def write_words(action, arguments):
    if len(arguments) == 3:
        store, name, revision = arguments
        return [action, f"{store}::{name}" + (revision and f"@{revision}")]
    return ["update", "--all"] if action == "update_all" else [action, *arguments]


def work(env, words, steps):
    """Runs a command by the Python module, which keeps the hub for as long as this process lasts.

    @param steps  of progress to let pass before it is cancelled, 0 for all
    @return the status, and what is shown then
    """
    os.environ.clear()
    os.environ.update(env)
    import plaz

    logging.disable()
    action, *words = words
    more = {"progress": lambda *_, left=iter(range(steps)): next(left, None) is not None} if steps else {}
    if action not in ("hold", "unhold"):
        more.update({"hub": "--hub" in words} if action == "refresh" else {"quiet": True})
    try:
        getattr(plaz, action)([word for word in words if word != "--hub"] or None, **more)
        status = DONE
    except plaz.Error as error:
        status = CANCELLED if isinstance(error, plaz.Cancelled) else FAILED
    items = plaz.items(installed=True, all_revisions=True)
    return status, {(i.store, i.name, i.revision): (i.installation_mode, i.reference_count, i.held) for i in items}


class History(HubTest):
    """A user's hub beside its model. problems: in what they differ after the last step."""

    def __init__(self):
        self.setUp()
        self.publisher = Publisher(self.repositories)
        self.model, self.changes, self.problems, self.worker = Model(self.publisher), [], [], None

    def take(self, steps):
        """@return the problems of the first step that has any, and how many steps were taken"""
        try:
            for position, step in enumerate(steps):
                if not self.do(*step):
                    return self.problems, position + 1
        except futures.process.BrokenProcessPool:
            return ["the process died"], position + 1
        finally:
            self.end_worker()
        return [], len(steps)

    def do(self, how, amount, action, *arguments):
        """@return whether the history can go on"""
        if how == "publish":  # together with its neighbours
            self.changes.append((arguments[0], action, *arguments[1:]))
            return True
        if how == "user":
            self.edit(amount, *arguments)
            return True
        for store in {change[0] for change in self.changes}:
            self.publisher.publish(store, [change[1:] for change in self.changes if change[0] == store])
        self.changes = []
        is_program = how in ("program", "interrupt") or action in ("update_all", "repair")
        if how == "restart" or is_program:
            self.end_worker()
        before = Model(**vars(self.model))
        went_well = getattr(self.model, action)(*arguments)
        self.model.collect()
        if self.model.count() is None:
            return False
        run = self.run_program if is_program else self.run_module
        is_planned = not amount and action in PLANNED
        plan = self.plan(write_words(action, arguments), before) if is_planned else None
        status, shown = run(write_words(action, arguments), amount)
        if amount and status == CANCELLED:
            facts = self.compare_cancelled(before, action)
            self.compare_held(*(Model(self.publisher, (), facts, held=one.held) for one in (before, self.model)))
            if action != "refresh":  # it goes on from there
                self.model = before
                before.take_over(facts)
                getattr(before, action)(*arguments)
                before.collect()
            _, shown = run(write_words(action, arguments), 0)
        elif status != (DONE if went_well else FAILED):
            self.problems.append(f"ends with {status} in spite of {'success' if went_well else 'failure'}")
        facts, counts = self.read_databases()
        if plan is not None and GONE not in plan.values():  # whether that can be fetched shows when it is
            expected = {item: fact.commit for item, fact in facts.items()} | self.read_held()
            self.compare("planned", plan, {"exit": status} | expected)
        self.compare("recorded", facts, self.model.installed)
        self.compare_held(self.model)
        self.compare("counted", counts, expected := self.model.count())
        self.compare_files(facts, self.model)
        self.compare_own()
        if shown is not None:
            held = self.model.held
            modes = {item: (fact.mode, expected[item], item in held) for item, fact in self.model.installed.items()}
            self.compare("shown", shown, modes)
        if how in ("program", "restart") and not (before.own or self.model.own or self.problems):
            self.go_back_and_forth(before)
        return not self.problems

    def plan(self, words, before):
        """@return the exit status of a command, the commits of what would be installed then, and what would be held, by
        its plan"""
        files, records = self.read_files(), self.read_records()
        result = run(PLAZ, "--json", *words, "--dry-run", env=self.env)
        self.compare("written by a plan", self.read_files() | self.read_records(), files | records)
        planned = {item: fact.commit for item, fact in before.installed.items()}
        restored, held = set(), set(before.held)
        for step in json.loads(result.stdout).get("steps", []):
            item = (step["store"], step["name"], step["revision"])
            if step["step"] == "restore":
                self.problems += [f"planned: {item} restored twice"] if item in restored else []
                restored.add(item)
            elif step["step"] == "remove":
                planned.pop(item, None)
            elif step["step"] in ("hold", "unhold"):
                held ^= {item}
            elif step["step"] in ("install", "update", "take over"):
                planned.pop((*item[:2], step.get("previous_revision")), None)
                planned[item] = step["commit_id"]
        return {"exit": result.returncode} | planned | {(*item, "held"): True for item in held & planned.keys()}

    def go_back_and_forth(self, before):
        """Takes the last step back, where it has changed anything, and then that."""
        self.end_worker()
        if (before.installed, before.held) == (self.model.installed, self.model.held):
            return
        for now, expected in ((self.model, before), (before, self.model)):
            number = json.loads(run(PLAZ, "--json", "history", "--limit", "1", env=self.env).stdout)["history"][0][
                "number"
            ]
            plan = self.plan(["undo", str(number)], now)
            undo = run(PLAZ, "--json", "undo", str(number), env=self.env)
            facts = self.read_databases()[0]
            undone = {item: fact.commit for item, fact in facts.items()} | self.read_held()
            self.compare("planned to be undone", plan, {"exit": undo.returncode} | undone)
            self.compare("undone", facts, expected.installed)
            self.compare_held(expected)
            if undo.returncode != DONE:
                self.problems.append(f"undo ends with {undo.returncode}: {json.loads(undo.stdout)['error']}")

    def run_module(self, words, steps):
        if not self.worker:
            self.worker = futures.ProcessPoolExecutor(1, multiprocessing.get_context("fork"))
        return self.worker.submit(work, self.env, words, steps).result()

    def end_worker(self):
        if self.worker:
            self.worker.shutdown()
        self.worker = None

    def run_program(self, words, delay):
        """@param delay  seconds until Ctrl-C, 0 for none"""
        silent = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        with subprocess.Popen([PLAZ, "--quiet", *words], env=self.env, **silent) as process:
            if delay:
                time.sleep(delay)
                process.send_signal(signal.SIGINT)
        return CANCELLED if process.returncode == -signal.SIGINT else process.returncode, None

    def read_databases(self):
        """@return what is recorded of the items, and their counts"""
        facts, counts = {}, {}
        for store, area in AREAS.items():
            file = self.home / area / ".plaz/plaz_local_db.json"
            stores = json.loads(file.read_text())["plaz"]["qstores"] if file.exists() else []
            for entry in (entry for found in stores for entry in found["items"]):
                folder = pathlib.Path(entry["local_directory"]).relative_to(self.home / area)
                item = (store, entry["name"], entry["revision"])
                facts[item] = Fact(entry["commit_id"], entry["installation_mode"], str(folder))
                counts[item] = entry["reference_count"]
        return facts, counts

    def read_records(self):
        patterns = ("plaz_*.json", "*/.plaz/plaz_local_db.json")
        files = [file for pattern in patterns for file in (self.home / "2024.2/plaz").glob(pattern)]
        return {str(file.relative_to(self.home)): file.read_bytes() for file in files}

    def read_held(self):
        file = self.home / "2024.2/plaz/plaz_held.json"
        items = json.loads(file.read_text())["plaz"]["items"] if file.exists() else []
        return {(item["store"], item["name"], item["revision"], "held"): True for item in items}

    def compare_held(self, *models):
        """By one of the models, of what is installed by the first one."""
        held = [{(*item, "held"): True for item in model.held & models[0].installed.keys()} for model in models]
        found = self.read_held()
        self.compare("held", found, found if found in held else held[0])

    def compare(self, what, found, expected):
        differing = [key for key in sorted({*found, *expected}, key=str) if found.get(key) != expected.get(key)]
        self.problems += [f"{what}: {key} {found.get(key)} instead of {expected.get(key)}" for key in differing]

    def edit(self, number, name, text):
        if item := self.model.edit(number, name, text):
            file = self.home / AREAS[item[0]] / self.model.installed[item].folder / name
            file.unlink(missing_ok=True) if text is None else file.write_text(text)

    def read_files(self):
        tops = [self.home / top for top in (KEPT, *(f"{area}/items" for area in AREAS.values()))]
        files = [file for top in tops for file in top.glob("**/*") if file.is_file()]
        return {str(file.relative_to(self.home)): file.read_text() for file in files}

    def compare_files(self, facts, *models):
        """Each item's files are those of its commit, with what the user has made of them by one of the models. At rest,
        where there is one model, there are no others, but for descriptions."""
        found, expected = {n: text for n, text in self.read_files().items() if not n.startswith(KEPT)}, {}
        for item, fact in facts.items():
            start = f"{AREAS[item[0]]}/{fact.folder}"
            wholes = [self.publisher.files[fact.commit] | model.own.get(item, {}) for model in models]
            wholes = [{f"{start}/{name}": text for name, text in whole.items()} for whole in wholes]
            expected |= next((whole for whole in wholes if all(found.get(n) == whole[n] for n in whole)), wholes[-1])
        extra = [name for name in found.keys() - expected.keys() if len(models) > 1 or name.endswith(METADATA)]
        self.compare("file", {name: found[name] for name in found.keys() - extra}, expected)

    def compare_own(self):
        """What is put aside, but for descriptions by another name, and what is told of the files of each item."""
        files = [(n, text) for n, text in self.read_files().items() if n.startswith(KEPT)]
        kept = {(n.split("/", 5)[5], text) for n, text in files if not n.endswith(METADATA)}
        self.compare("kept", dict.fromkeys(kept, "there"), dict.fromkeys(self.model.kept, "there"))
        lists, expected = ("changed", "missing", "additional"), {}
        for item in self.model.installed:
            files, own = self.model.get_files(item), self.model.own.get(item, {})
            kinds = {name: lists[2 if name not in files else own[name] is None] for name in sorted(own)}
            expected[item] = [[name for name in kinds if kinds[name] == kind] for kind in lists]
        expected["exit",] = int(any(changed or missing for changed, missing, _ in expected.values()))
        result = run(PLAZ, "--json", "verify", env=self.env)
        items = json.loads(result.stdout)["items"]
        told = {(i["store"], i["name"], i["revision"]): [i[kind] for kind in lists] for i in items}
        told["exit",] = result.returncode
        self.compare("verified", told, expected)

    def compare_cancelled(self, before, action):
        """What is recorded lies between before and after, and is whole."""
        facts, counts = self.read_databases()
        old, new = set(before.installed), set(self.model.installed)
        strange = (facts.keys() - old - new) | ((old & new) - facts.keys())
        self.problems += [f"cancelled: with or without {item}" for item in strange]
        if action != "refresh":  # where it is not known which catalogs are in force
            self.compare("cancelled: counted", counts, Model(self.publisher, before.catalogs, facts).count())
        restored = Model(**vars(before))
        for item in before.installed:
            restored.restore(item)
        self.compare_files(facts, before, restored, self.model)
        own = {text for own in before.own.values() for text in own.values() if text}
        self.problems += [f"cancelled: lost {text}" for text in own - {*self.read_files().values()}]
        return facts


def show(how, amount, action, *arguments):
    words = " ".join(map(str, write_words(action, arguments[:3])))
    needs = ", ".join(write_words("", key)[1] for key in arguments[3]) if action == "put" else ""
    print(f"  {how} {amount or ''}: {words}" + (needs and f" which needs {needs}"))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--histories", type=int, default=50)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    for seed in range(options.seed, options.seed + options.histories):
        steps = make_history(random.Random(seed), 14)
        problems, taken = History().take(steps)
        if problems:
            print(f"seed {seed}:", *problems, sep="\n  ", flush=True)
            print("after these steps, some cancelled after steps of progress, or interrupted after seconds:")
            for step in steps[:taken]:
                show(*step)
            sys.exit(1)


if __name__ == "__main__":
    main()
