"""Hubs of real git repositories, and random histories of what is published there and done to what is installed.

A history is a list of steps, each of which makes sense whatever the others are: (how, action, argument, ...).
"""

import dataclasses
import json
import shutil
import subprocess

from rules import ONE, SEVERAL, Entry

REVISIONS = ("1.0", "1.1", "2.0", "10.0")
GONE = "0" * 39 + "1"  # a commit that no repository has


def lay_json(file, content):
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text(json.dumps({"_major": 1, "_minor": 0, **content}))


class Hub:
    """A hub whose two stores can be published to.

    catalogs: what each store offers by now. contents, files: dependencies, and files, by commit.
    """

    def __init__(self, directory):
        self.directory = directory
        self.catalogs, self.contents, self.files = {SEVERAL: {}, ONE: {}}, {}, {}
        if not (template := directory.with_name("template")).exists():
            self.make(template)
        shutil.rmtree(directory, ignore_errors=True)
        shutil.copytree(template, directory)

    def make(self, template):
        stores = [
            {"name": store, "display_name": store, "url": (self.directory / store).as_uri(), "is_private": False}
            | {"config": {"root": store, "metadata_file": "store.json", "store_type": kind, "item_root": "items"}}
            for store, kind in ((SEVERAL, "board"), (ONE, "ced"))
        ]
        hub = {"plaz": {"qstores": stores, "commit-id": ""}}
        where = {"root": "plaz", "metadata_file": "plaz.json", "stores_root": "storesdata"}
        lay_json(template / "data/plaz/plaz.json", hub)
        remote = {"url": (self.directory / "hub").as_uri(), "toolchain": {"tool": "git", "version": "2.45.0"}}
        lay_json(template / "data/plaz/plaz_config.json", {"plaz": {"remote_repository": remote, "config": where}})
        (template / "home").mkdir()
        for repository in (SEVERAL, ONE, "hub"):
            options = ("--quiet", "--bare", "--initial-branch=master")
            subprocess.run(["git", "init", *options, template / repository], check=True)
        release = {"version": "default", "qitem_catalogue_file": "catalog.json", "remote_repo_branch_to_sync": "master"}
        products = [{"product_name": "Solvan", "supported_releases": [release]}]
        names = {"remote": "origin", "script_root": "scripts", "item_root": "items", "current_branch": "master"}
        store = {"_major": 1, "_minor": 0, "catalog": {"supported_products": products, **names}}
        for name in (SEVERAL, ONE):
            with Importer(template / name) as git:
                git.commit({"store.json": json.dumps(store), "catalog.json": self.write_catalog(name)})
        with Importer(template / "hub") as git:
            git.commit({"plaz.json": json.dumps({"_major": 1, "_minor": 0, **hub})})

    def write_catalog(self, store):
        items = [
            {"name": name, "root": entry.folder, "company": "c", "latest_revision": entry.latest}
            | {"commit_id": entry.commits[entry.latest], "config": {"root": entry.folder, "metadata_file": "item.json"}}
            | {"revisions": [{"revision": rev, "commit_id": commit} for rev, commit in entry.commits.items()]}
            for name, entry in self.catalogs[store].items()
        ]
        catalog = {"multi_revision_supported": store == SEVERAL, "items": items, "categories": []}
        return json.dumps({"_major": 1, "_minor": 0, "catalog": catalog})

    def publish(self, store, *changes):
        """Commits items and then the catalog. A change is (kind, name, ...):

        "put" a revision with its dependencies, as the latest one; "withdraw" the item; "drop" all revisions but the
        latest; "lose" the latest one's commit; "rename" the item, whose folder stays.
        """
        catalog = dict(self.catalogs[store])
        with Importer(self.directory / store, "refs/heads/master^0") as git:
            for kind, name, *more in changes:
                entry = catalog.get(name, Entry("", {}, f"items/{name}"))
                if kind == "put":
                    revision, needs = more
                    files = write_item(name, revision, needs, len(self.files))
                    commit = git.commit({f"{entry.folder}/{file}": text for file, text in files.items()})
                    self.contents[commit], self.files[commit] = needs, files
                    catalog[name] = Entry(revision, {**entry.commits, revision: commit}, entry.folder)
                elif kind == "withdraw":
                    catalog.pop(name, None)
                elif name in catalog and kind == "drop":
                    catalog[name] = dataclasses.replace(entry, commits={entry.latest: entry.commits[entry.latest]})
                elif name in catalog and kind == "lose":
                    catalog[name] = dataclasses.replace(entry, commits={**entry.commits, entry.latest: GONE})
                elif name in catalog and kind == "rename" and more[0] not in catalog:
                    catalog[more[0]] = catalog.pop(name)
            self.catalogs = {**self.catalogs, store: catalog}
            git.commit({"catalog.json": self.write_catalog(store)})


def write_item(name, revision, needs, number):
    needs = [{"store": store, "item": item, "revision": revision} for store, item, revision in needs]
    infra = {"name": name, "display": name, "company": "c", "revision": revision, "dependencies": needs}
    config = {"_major": "1", "_minor": "0", "items": [{"infra": {**infra, "is_active": True}}]}
    return {"item.json": json.dumps({"_major": 1, "_minor": 0, "config": config}), "data.txt": f"{number}\n"}


class Importer:
    """Commits to a bare repository, all in one process."""

    def __init__(self, repository, head=None):
        self.head = head
        command = ["git", f"--git-dir={repository}", "fast-import", "--quiet"]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.communicate()

    def commit(self, files):
        """@return the commit's id"""
        lines = ["commit refs/heads/master", "mark :1", "committer A <a@example.org> 1000000000 +0000", "data 0"]
        lines += [f"from {self.head}"] if self.head else []
        for file, text in files.items():
            lines += [f"M 100644 inline {file}", f"data {len(text)}", text]
        self.process.stdin.write("\n".join([*lines, "get-mark :1", ""]).encode())
        self.process.stdin.flush()
        self.head = None  # the next commit follows this one
        return self.process.stdout.readline().decode().strip()


def make_needs(random, items, position):
    """Mostly on items further on: cycles shall not be the rule."""
    needs = {}
    for _ in range(random.choice((0, 0, 1, 1, 1, 2, 2, 3))):
        store, name = random.choice(items[position + 1 :] or items if random.random() < 0.8 else items)
        name = "nothing" if random.random() < 0.01 else name
        needs[store, name, random.choice(REVISIONS[:3]) if random.random() < 0.25 else ""] = None
    return tuple(needs)


def make_change(random, items, position):
    name = items[position][1]
    kind = random.choice(("put",) * 7 + ("withdraw", "drop", "lose", "rename"))
    more = {"put": (random.choice(REVISIONS), make_needs(random, items, position)), "rename": (f"{name}-b",)}
    return (kind, name, *more.get(kind, ()))


def make_history(random, length):
    """@return the steps"""
    names = [f"i{number}" for number in range(random.randint(10, 20))]
    items = [(store, name) for name in names for store in random.choice(((SEVERAL,), (ONE,), (SEVERAL, ONE)))][:30]
    changes = {SEVERAL: [], ONE: []}
    for position, (store, name) in enumerate(items):
        for revision in random.sample(REVISIONS[:3], random.choice((1, 2, 3)) if store == SEVERAL else 1):
            changes[store].append(("put", name, revision, make_needs(random, items, position)))
    steps = [("", "publish", store, *changes[store]) for store in changes] + [("module", "refresh")]
    wanted = []

    def refer():
        if not wanted or random.random() < 0.3:
            wanted.append(random.choice(items[: len(items) // 2]))
        store, name = random.choice(wanted if random.random() < 0.8 else items)
        return store, random.choice((name, name, name, f"{name}-b")) if random.random() < 0.1 else name

    for _ in range(length):
        action = random.choices(("install", "uninstall", "update", "update_all", "publish", "refresh"), (6, 4, 3, 1, 4, 2))[0]
        how = random.choice(("module",) * 16 + ("program", "restart", "cancel", "cancel", "interrupt"))
        how = "program" if action == "update_all" and how in ("module", "cancel") else how
        how = (how, random.randint(1, 12)) if how == "cancel" else how
        how = (how, random.random() * 0.04) if how == "interrupt" else how
        if action == "publish":
            store = random.choice((SEVERAL, ONE))
            places = [place for place, item in enumerate(items) if item[0] == store]
            mine = [make_change(random, items, random.choice(places)) for _ in range(random.randint(1, 4))] if places else []
            steps.append(("", "publish", store, *mine))
        if action in ("publish", "refresh"):
            steps.append((how, "refresh", *random.choice(((), ("--hub",), (SEVERAL,), (ONE,)))))
        elif action == "update_all":
            steps.append((how, action))
        else:
            store, name = refer()
            needs_revision = store == SEVERAL and (action != "install" or random.random() < 0.6)
            steps.append((how, action, store, name, random.choice(REVISIONS[:3]) if needs_revision else ""))
    return steps
