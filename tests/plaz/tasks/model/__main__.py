"""Holds random histories of the hub against a model of what should be installed. From the repository's top:

    python3 tests/plaz/tasks/model --histories 2000 --seed 1      the seeds 1 to 2000

A history that fails is shown by as few of its steps as do it still, and ends the run with status 1.
"""

import argparse
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

sys.path.append(str(pathlib.Path(__file__).resolve().parents[3]))
from hubs import Hub, make_history  # noqa: E402 (beside this file)
from rules import ONE, SEVERAL, Fact, Model  # noqa: E402
from support.hubtest import BUILD, PLAZ, PRODUCT_DATA, make_env  # noqa: E402 (below "tests")

AREAS = {SEVERAL: "2024.2/plaz/board_store", ONE: "2024.2/plaz/ced_store"}
DONE, FAILED, CANCELLED = 0, 1, 130


def refer(store, name, revision):
    return f"{store}::{name}" + (revision and f"@{revision}")


def work(pipe, env):
    """A process that holds the hub: does what comes through the pipe, and answers with how it ended."""
    os.environ.clear()
    os.environ.update(env)
    sys.path.insert(0, str(BUILD / "python"))
    import plaz

    logging.disable()

    def perform(action, arguments, calls):
        progress = calls and (lambda *_, left=iter(range(calls)): next(left, None) is not None)
        if action == "refresh":
            stores = [name for name in arguments if name != "--hub"]
            plaz.refresh(stores or None, hub="--hub" in arguments, progress=progress or None)
        else:
            getattr(plaz, action)(refer(*arguments), quiet=True, progress=progress or None)

    while True:
        status = DONE
        try:
            perform(*pipe.recv())
        except plaz.Cancelled:
            status = CANCELLED
        except plaz.Error:
            status = FAILED
        items = plaz.items(installed=True, all_revisions=True)
        key = {(item.store, item.name, item.revision): (item.installation_mode, item.reference_count) for item in items}
        pipe.send((status, key))


class Run:
    """One history on one hub. problems: what differs after the last step."""

    def __init__(self, directory):
        self.hub = Hub(directory / "hub")
        self.home = self.hub.directory / "home"
        self.env = make_env(self.home, self.hub.directory / "data", PRODUCT_DATA)
        self.model, self.worker, self.problems = Model(self.hub.contents), None, []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        if self.worker:
            self.worker.kill()
            self.worker.join()
        self.worker = None

    def ask(self, action, arguments, calls=0):
        if not self.worker:
            context = multiprocessing.get_context("fork")
            self.pipe, other = context.Pipe()
            self.worker = context.Process(target=work, args=(other, self.env))
            self.worker.start()
            other.close()
        self.pipe.send((action, arguments, calls))
        return self.pipe.recv()

    def call(self, action, arguments, delay=None):
        """Runs the program, with Ctrl-C after a delay in seconds."""
        words = ["update", "--all"] if action == "update_all" else [action]
        words += [refer(*arguments)] if len(arguments) == 3 else arguments
        process = subprocess.Popen([PLAZ, "--quiet", *words], env=self.env, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        if delay is not None:
            time.sleep(delay)
            process.send_signal(signal.SIGINT)
        return process.wait(60)

    def read(self):
        """@return what the databases record, and what they count"""
        facts, counts = {}, {}
        for store, area in AREAS.items():
            file = self.home / area / ".plaz/plaz_local_db.json"
            stores = json.loads(file.read_text())["plaz"]["qstores"] if file.exists() else []
            for entry in (entry for found in stores for entry in found["items"]):
                place = pathlib.Path(entry["local_directory"]).relative_to(self.home / area)
                item = (store, entry["name"], entry["revision"])
                facts[item] = Fact(entry["commit_id"], entry["installation_mode"], str(place))
                counts[item] = entry["reference_count"]
        return facts, counts

    def compare(self, what, found, expected):
        for key in sorted({*found, *expected}):
            if found.get(key) != expected.get(key):
                self.problems.append(f"{what} {key}: {found.get(key)}, expected {expected.get(key)}")

    def compare_files(self, facts, is_at_rest):
        """Each item's files are those of its commit, and of others there are but descriptions left."""
        for store, area in AREAS.items():
            found = {file.relative_to(self.home / area): file for file in (self.home / area / "items").glob("**/*.*")}
            found = {str(name): file.read_text() for name, file in found.items() if file.is_file()}
            expected = {
                f"{fact.folder}/{name}": text
                for item, fact in facts.items()
                if item[0] == store
                for name, text in self.hub.files[fact.commit].items()
            }
            left = {name for name in found.keys() - expected.keys() if not is_at_rest or name.endswith("/item.json")}
            self.compare(f"file of {store}", {name: found[name] for name in found.keys() - left}, expected)

    def compare_all(self):
        facts, counts = self.read()
        self.compare("recorded", facts, self.model.installed)
        self.compare("counted", counts, self.model.count())
        self.compare_files(facts, True)

    def do(self, how, action, *arguments):
        """@return whether the history can go on"""
        how, *detail = how if isinstance(how, tuple) else (how,)
        if action == "publish":
            self.hub.publish(*arguments)
            return True
        if how in ("restart", "program", "interrupt"):
            self.stop()
        before = self.model.copy()
        names = [name for name in arguments if name != "--hub"] if action == "refresh" else arguments
        went_well = getattr(self.model, action)(*([self.hub.catalogs] if action == "refresh" else []), *names)
        self.model.collect()
        if self.model.count() is None:
            return False
        if how in ("program", "interrupt"):
            status = self.call(action, arguments, *detail)
        else:
            status, shown = self.ask(action, arguments, *detail)
        if how in ("cancel", "interrupt") and status == CANCELLED:
            self.compare_cancelled(before, action)
            status = None
            self.call(action, arguments) if action == "update_all" else self.ask(action, arguments)
        if status not in (None, DONE if went_well else FAILED):
            self.problems.append(f"ends with {status}, expected {'success' if went_well else 'failure'}")
        self.compare_all()
        if how not in ("program", "interrupt"):
            status, shown = self.ask("refresh", ("no such store",))
            counts = self.model.count()
            modes = {item: (fact.mode, counts[item]) for item, fact in self.model.installed.items()}
            self.compare("shown", shown, modes)
        return not self.problems

    def compare_cancelled(self, before, action):
        """What is recorded lies between before and after, and is whole."""
        facts, counts = self.read()
        for item in facts.keys() - before.installed.keys() - self.model.installed.keys():
            self.problems.append(f"when cancelled, recorded {item}, which neither was nor should be")
        for item in (before.installed.keys() & self.model.installed.keys()) - facts.keys():
            self.problems.append(f"when cancelled, lost {item}")
        if action != "refresh":
            now = before.copy()
            now.installed = facts
            self.compare("when cancelled, counted", counts, now.count())
        self.compare_files(facts, False)


def find_problems(directory, steps):
    """@return what differs after the first step that goes wrong, and how many steps were made"""
    with Run(directory) as run:
        for position, step in enumerate(steps):
            try:
                if not run.do(*step):
                    return run.problems, position + 1
            except (EOFError, ValueError, KeyError) as error:
                return [*run.problems, f"ends by {error!r}"], position + 1
    return [], len(steps)


def shrink(steps, fails):
    """Leaves out steps, then what they publish, then dependencies, for as long as @p fails with the rest."""

    def thin(parts, rebuild, size):
        while size:
            for begin in range(len(parts) - size, -1, -size):
                rest = parts[:begin] + parts[begin + size :]
                if fails(rebuild(rest)):
                    parts = rest
            size //= 2
        return parts

    steps = thin(steps, lambda rest: rest, len(steps) // 2)
    for place, step in enumerate(steps):
        if step[1] != "publish":
            continue

        def publish(changes, place=place, step=step):
            return [*steps[:place], (*step[:3], *changes), *steps[place + 1 :]]

        changes = thin(list(step[3:]), publish, len(step[3:]) // 2 or 1)
        for number, change in enumerate(changes):
            if change[0] == "put":
                needs = thin(
                    list(change[3]),
                    lambda rest: publish([*changes[:number], (*change[:3], tuple(rest)), *changes[number + 1 :]]),
                    1,
                )
                changes[number] = (*change[:3], tuple(needs))
        steps = publish(changes)
    return thin(steps, lambda rest: rest, 1)


def show(steps):
    for how, action, *arguments in steps:
        if action == "publish":
            print(f"  publish in {arguments[0]}")
            for kind, name, *more in arguments[1:]:
                needs = ", ".join(refer(*key) for key in more[1]) if kind == "put" else ""
                print(f"    {kind} {name} {more[0] if more else ''}{needs and f' which needs {needs}'}")
        else:
            print(f"  {action} {refer(*arguments) if len(arguments) == 3 else ' '.join(arguments)}  ({how})")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--histories", type=int, default=50)
    parser.add_argument("--seed", type=int, default=1, help="of the first history; each further one has the next")
    parser.add_argument("--steps", type=int, default=12)
    parser.add_argument("--directory", type=pathlib.Path)
    options = parser.parse_args()
    import tempfile

    with tempfile.TemporaryDirectory(prefix="plaz-test-", dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as scratch:
        scratch = pathlib.Path(scratch)
        done = 0
        for seed in range(options.seed, options.seed + options.histories):
            steps = make_history(random.Random(seed), options.steps)
            problems, count = find_problems(scratch, steps)
            done += count
            if problems:
                print(f"seed {seed}:", *problems, sep="\n  ")
                steps = shrink(steps[:count], lambda rest: find_problems(scratch, rest)[0])
                print(f"history of {len(steps)} steps:")
                show(steps)
                print(*find_problems(scratch, steps)[0], sep="\n  ")
                sys.exit(1)
        print(done)


if __name__ == "__main__":
    main()
