"""What a hub of git repositories publishes, and random histories of that and of what its user does.

A step is (how, amount, action, argument, ...); it makes sense whatever the other steps of its history are.
"""

import json
import subprocess

from rules import ONE, SEVERAL, Entry

REVISIONS = ("1.0", "1.1", "2.0", "10.0")
CHANCES = dict(install=6, uninstall=4, update=3, update_all=1, publish=4, refresh=2, edit=8, repair=4, hold=4, unhold=1)
OWN = ("data.txt", "notes.txt", "own.txt")
EDITS = (("data.txt", None), ("data.txt", ""), ("own.txt", None), *((name, "mine") for name in OWN))
GONE = "0" * 39 + "1"  # a commit that no repository has
FILES = {SEVERAL: ("boards-store.git", "boards_catalog.json"), ONE: ("tcl-store.git", "scripts_catalog.json")}


class Publisher:
    """catalogs: what each store offers by now. contents, files: dependencies, and files, of each commit. names: what
    its item calls itself. metadata: the description's name by now, of each folder."""

    def __init__(self, repositories):
        self.repositories = repositories
        self.catalogs, self.contents, self.files, self.names = {SEVERAL: {}, ONE: {}}, {}, {}, {}
        self.metadata = {SEVERAL: {}, ONE: {}}

    def publish(self, store, changes):
        """Commits items, and then the catalog. A change is (kind, name, ...)."""
        repository, catalog_file = FILES[store]
        catalog = dict(self.catalogs[store])
        command = ["git", f"--git-dir={self.repositories / repository}", "fast-import", "--quiet"]
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, encoding="utf-8") as git:
            commit_files(git, {"begin": ""}, "from refs/heads/main^0\n")
            for kind, name, *more in changes:
                if kind == "put":  # a revision with its dependencies, as the latest one
                    is_taken = f"items/{name}" in [entry.folder for entry in catalog.values()]
                    new = ("", {}, f"items/{name}-new" if is_taken else f"items/{name}", "")
                    _, commits, folder, _ = catalog.get(name, new)
                    metadata = "about.json" if store == ONE and len(self.files) % 4 == 0 else "item.json"
                    self.metadata[store][folder] = metadata
                    files = make_files(metadata, name, *more, len(self.files))
                    commit = commit_files(
                        git, {f"{folder}/{file}": text for file, text in files.items()}, f"D {folder}\n"
                    )
                    self.files[commit], self.contents[commit], self.names[commit] = files, more[1], name
                    catalog[name] = Entry(more[0], {**commits, more[0]: commit}, folder, commit)
                elif entry := catalog.pop(name, None):  # or it is withdrawn
                    latest = entry.latest
                    if kind == "rename":  # with its folder
                        catalog[f"{name}-b"] = entry
                    elif kind == "drop":  # all revisions but the latest
                        catalog[name] = entry._replace(commits={latest: entry.commits[latest]})
                    elif kind == "lose":  # the latest one's commit
                        catalog[name] = entry._replace(commits={**entry.commits, latest: GONE})
            self.catalogs = {**self.catalogs, store: catalog}
            commit_files(git, {catalog_file: make_catalog(catalog, store == SEVERAL, self.metadata[store])})


def commit_files(git, files, first=""):
    """@param first  what goes before the files. @return the commit's id"""
    text = f"commit refs/heads/main\nmark :1\ncommitter A <a@example.org> 1000000000 +0000\ndata 0\n{first}"
    text += "".join(f"M 100644 inline {file}\ndata {len(text)}\n{text}\n" for file, text in files.items())
    git.stdin.write(f"{text}\nget-mark :1\n")
    git.stdin.flush()
    return git.stdout.readline().strip()


def make_files(metadata, name, revision, needs, number):
    needs = [{"store": store, "item": item, "revision": revision} for store, item, revision in needs]
    infra = {"name": name, "display": name, "company": "c", "revision": revision, "dependencies": needs}
    config = {"_major": "1", "_minor": "0", "items": [{"infra": {**infra, "is_active": True}}]}
    document = json.dumps({"_major": 1, "_minor": 0, "config": config})
    return {metadata: document, "data.txt": f"{number}\n", "notes.txt": "\n"}


def make_catalog(catalog, keeps_several, metadata):
    items = [
        {"name": name, "root": folder, "company": "c", "latest_revision": latest, "commit_id": commits[latest]}
        | {"config": {"root": folder, "metadata_file": metadata[folder]}}
        | {"revisions": [{"revision": revision, "commit_id": commit} for revision, commit in commits.items()]}
        for name, (latest, commits, folder, _) in catalog.items()
    ]
    content = {"multi_revision_supported": keeps_several, "items": items, "categories": []}
    return json.dumps({"_major": 1, "_minor": 0, "catalog": content})


def make_history(random, length):
    names = [f"i{number}" for number in range(30)]
    items = [(store, name) for name in names for store in random.choice(((SEVERAL,), (ONE,), (SEVERAL, ONE)))]
    items = items[: random.randint(15, 30)]

    def make_put(place):
        """Mostly needs items further on: cycles shall not be the rule."""
        needs = {}
        for _ in range(random.choice((0, 0, 1, 1, 1, 2, 2, 3))):
            store, name = random.choice(items[place + 1 :] or items if random.random() < 0.8 else items)
            name = "nothing" if random.random() < 0.01 else name
            needs[store, name, random.choice(REVISIONS[:3]) if random.random() < 0.25 else ""] = None
        return "publish", 0, "put", *items[place], random.choice(REVISIONS[: random.choice((2, 3, 4))]), tuple(needs)

    steps = [make_put(place) for place in [*range(len(items)), *range(0, len(items), 2)]] + [("module", 0, "refresh")]
    for _ in range(length):
        how = random.choice(("module",) * 16 + ("program", "restart", "cancel", "cancel", "interrupt"))
        amount = {"cancel": random.randint(1, 12), "interrupt": 0.001 + random.random() * 0.04}.get(how, 0)
        (action,) = random.choices([*CHANCES], [*CHANCES.values()])
        store, name = random.choice(items[: random.choice((3, 6, 30))])
        if action in ("publish", "refresh"):
            for place in random.sample(range(len(items)), random.randint(1, 4) if action == "publish" else 0):
                kind = random.choice(("put",) * 7 + ("withdraw", "drop", "lose", "rename"))
                steps.append(make_put(place) if kind == "put" else ("publish", 0, kind, *items[place]))
            steps.append((how, amount, "refresh", *random.choice(((), ("--hub",), (SEVERAL,), (ONE,)))))
        elif action == "edit":
            for name, text in random.choices(EDITS, k=6):
                steps.append(("user", random.randrange(99), action, name, text and f"{text} {random.random()}"))
        elif action == "repair" and random.random() < 0.5:
            steps.append(("program", 0, action))
        elif action == "update_all":
            steps.append(("program", 0, action) if how == "cancel" else (how, amount, action))
        else:
            name += "-b" if random.random() < 0.03 else ""
            if how == "cancel" and action in ("hold", "unhold"):  # too short for that
                how, amount = "program", 0
            is_exact = store == SEVERAL and (action != "install" or random.random() < 0.6)
            steps.append((how, amount, action, store, name, random.choice(REVISIONS[:3]) if is_exact else ""))
    return steps
