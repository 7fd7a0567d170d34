"""Neighbours that mean harm, by the names of cases: what a failure names (see HostileTest.meet), and what they have
laid where a store is kept of which an item is installed."""

import json
import os
import shutil

from hostile.world import Link

GIT = ".plaz/.index/.git"
ORIGIN, HOOK = '[remote "origin"]\n', "#!/bin/sh\nexec @TRAP\n"


class Fifo(str):
    """Nobody ever writes to it."""


def lay(world, things):
    """@param things  by their names in the store's area, or behind "~" in the user's: texts; links; for "+" more of a
    working copy's settings; None for what is moved outside, with a link that leads there; or changes of a JSON file"""
    for name, thing in things.items():
        place = world.area / name[1:] if name.startswith("~") else world.bad_area / name
        if name == "+":
            with open(world.bad_area / GIT / "config", "a", encoding="utf-8") as config:
                config.write(world.fill(thing))
            continue
        if callable(thing):
            content = json.loads(place.read_text())
            thing(world, content["plaz"])
            thing = json.dumps(content)
        if thing is None:
            thing = Link(move_out(place, world.outside / "taken"))
        elif place.is_dir() and not place.is_symlink():
            shutil.rmtree(place)
        place.unlink(missing_ok=True)
        place.parent.mkdir(parents=True, exist_ok=True)
        if isinstance(thing, Fifo):
            os.mkfifo(place)
        elif isinstance(thing, Link):
            place.symlink_to(world.fill(thing))
        else:
            place.write_text(world.fill(thing))
            place.chmod(0o755)


def move_out(place, target):
    if place.exists():
        shutil.move(place, target)
    else:
        target.write_text("x") if place.suffix == ".log" else target.mkdir()
    return target


def set_up(text, **files):
    """Settings of the working copy, and files beside them."""
    return (
        "?bad|stone",
        {"+": f"\n{text}\n", **{f"{GIT}/{name.replace('__', '/')}": text for name, text in files.items()}},
    )


def record(directory):
    """The item is recorded as being elsewhere."""

    def change(world, plaz):
        plaz["qstores"][0]["items"][0]["local_directory"] = world.fill(directory)

    return {".plaz/plaz_local_db.json": change, "items/ln": Link("@OUTSIDE")}


def note(told, directory="@AREA/items/stone", **more):
    """A change that never was is to be finished."""
    item = {"name": "stone", "revision": "1.0", "commit_id": "1" * 40, "local_directory": directory}
    change = {"store": "bad", "installed": False, "identity": "", "area": "@AREA", "files": [], **more}
    return (
        told,
        {"~plaz_change.json": json.dumps({"plaz": {**change, "item": {**item, "installation_mode": "user"}}})},
    )


def keep(directory, root):
    """The store is said to be kept elsewhere."""
    text = {
        "plaz": {
            "qstores": [{"name": "bad", "directory": directory, "root": root}],
            "default_folders": [{"name": "good", "directory": "ced_store"}],
        }
    }
    return ("!bad", {"~plaz_stores.json": json.dumps(text)})


LINKED = f"""
    .plaz/.index .plaz/.catalog .plaz/.trees .plaz/.incoming .plaz/plaz_local_db.json .staging items items/stone
    catalog.json store.json .done {GIT} {GIT}/objects {GIT}/refs {GIT}/config {GIT}/HEAD .plaz/.index/git_fork.log"""
HELD = f"catalog.json store.json .done .plaz/.catalog/items/stone/item.json {GIT}/config {GIT}/index ~plaz_change.json"
RECORDED = "/ .. @AREA @AREA/.. @HUB @GOOD @GOOD/items/pearl @OUTSIDE/stone @AREA/.plaz".split()
CASES = {
    "harmless": ("", {}),
    "vcs": set_up(ORIGIN + "vcs = ext\n[protocol]\nallow = always"),
    "refspec": set_up(ORIGIN + "fetch = +refs/heads/*:refs/../../../*"),
    "hooks": set_up("[core]\nhooksPath = @AREA", hooks__reference_transaction=HOOK, **{"hooks/post-checkout": HOOK}),
    "programs": set_up(
        "[core]\nsshCommand = @TRAP\naskPass = @TRAP\neditor = @TRAP\npager = @TRAP\n[alias]\nfetch = !@TRAP"
    ),
    "worktree": set_up("[core]\nworktree = @OUTSIDE"),
    "filter": set_up('[filter "x"]\nsmudge = @TRAP\nprocess = @TRAP', info__attributes="* filter=x\n"),
    "include": set_up("[include]\npath = @OUTSIDE/settings"),
    "insteadOf": set_up('[url "ext::@TRAP "]\ninsteadOf = file://\n[protocol]\nallow = always'),
    "cookies": set_up("[http]\ncookieFile = @OUTSIDE/cookies\nsaveCookies = true"),
    "promisor": set_up(
        '[extensions]\npartialClone = x\n[core]\nrepositoryformatversion = 1\n[remote "x"]\nurl = ext::@TRAP'
    ),
    "format": set_up("[core]\nrepositoryformatversion = 99"),
    "HEAD elsewhere": set_up("", HEAD="ref: ../../../../../outside/x\n"),
    **{f"link {name}": ("?bad|stone|plaz", {name: None}) for name in LINKED.split()},
    "link of the hidden": ("!plaz", {".plaz": None}),
    "link of the lock": ("!plaz.lock", {"~plaz.lock": None}),
    **{f"recorded at {where}": ("", record(where)) for where in RECORDED},
    "recorded behind a link": ("stone", record("@AREA/items/ln/stone")),
    "note of a directory": note("", "@OUTSIDE/stone"),
    "note of another's": note("", "@GOOD/items/pearl", area="@GOOD"),
    "note of a former place": note("stone", former="@OUTSIDE/stone", installed=True),
    "note of a place": note("", place="@OUTSIDE"),
    "note of files": note("", files=["../../outside/stone/item.json"], area="@OUTSIDE"),
    "kept in another": keep("@GOOD", "items"),
    "kept around all": keep("@HUB/..", "plaz"),
    **{f"fifo {name}": ("", {name: Fifo()}) for name in HELD.split()},
    "fifo of the head": ("?bad|stone", {f"{GIT}/HEAD": Fifo()}),
    "fifo of the item": ("stone|item.json", {"items/stone/item.json": Fifo()}),
    "fifo of the log": ("?bad", {".plaz/.index/git_fork.log": Fifo()}),
    "fifo of the record": ("!plaz_local_db.json", {".plaz/plaz_local_db.json": Fifo()}),
    "fifo of the places": ("!plaz_stores.json", {"~plaz_stores.json": Fifo()}),
    "fifo of the lock": ("", {"~plaz.lock": Fifo()}),
}
