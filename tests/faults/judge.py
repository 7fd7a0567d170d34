"""Judges a home by its files, and by what git says of the stores' repositories: no rule is taken from the hub."""

import collections
import functools
import hashlib
import json
import os
import re
import time
from typing import NamedTuple

from support.hubtest import DRIVE, succeed

DATABASE, PLACES, METADATA = "plaz_local_db.json", "plaz_stores.json", "item.json"
GARBAGE = re.compile(r"tmp_.*|.*\.lock|.*\.log")  # left in a working copy where a command on it ended early


def parse_listing(text):
    """@return the blob of each file that git lists"""
    return {name: about.split()[2] for about, name in (line.split("\t") for line in text.split("\0")[:-1])}


def read_tree(file):
    """@return commit and listing of a kept tree that is whole"""
    parts = file.read_text("utf-8").split("\n", 4)
    return (parts[2], parse_listing(parts[4])) if parts[4:] and parts[4].endswith("\0") else None


def get_blob(text):
    return hashlib.sha1(b"blob %d\0" % len(text) + text).hexdigest()


class Record(NamedTuple):
    """What a database says of an item."""

    store: str
    name: str
    revision: str
    commit: str
    mode: str
    count: int
    repository: str
    folder: str  # in the repository


class Origin:
    """What the stores' repositories hold."""

    def __init__(self, repositories):
        self.repositories = repositories

    def git(self, repository, *command):
        return succeed("git", "-C", self.repositories / f"{repository}.git", *command)

    @functools.cache
    def get_blobs(self, repository, commit, folder):
        """@return the blob of each file below a folder"""
        listed = parse_listing(self.git(repository, "ls-tree", "-r", "-z", commit, "--", f"{folder}/"))
        return {name[len(folder) + 1 :]: blob for name, blob in listed.items()}

    @functools.cache
    def get_dependencies(self, repository, commit, folder):
        infra = json.loads(self.git(repository, "show", f"{commit}:{folder}/{METADATA}"))["config"]["items"][0]["infra"]
        return [(entry["store"], entry["item"], entry["revision"]) for entry in infra["dependencies"]]

    @functools.cache
    def keeps_revisions(self, repository):
        names = self.git(repository, "ls-tree", "--name-only", "HEAD").split()
        (catalog,) = (name for name in names if name.endswith("_catalog.json"))
        return json.loads(self.git(repository, "show", f"HEAD:{catalog}"))["catalog"]["multi_revision_supported"]


def read_home(directory, origin):
    """Of a program that was killed; what it had started may end a moment later."""
    for _ in range(50):
        try:
            return Home(directory, origin)
        except FileNotFoundError:
            time.sleep(0.1)
    return Home(directory, origin)


class Home:
    """A home as it lies on disk, its own place written "@": files, the records of all databases by the items' places,
    what cannot be read, what was left in working copies, whose files are no concern of ours otherwise, what is kept
    aside of users' files, and the trees that installations keep. own: what a user has made of files, None for gone."""

    def __init__(self, directory, origin, own=()):
        self.origin, self.names = origin, (f"{DRIVE}{directory}".encode(), str(directory).encode())
        self.own = dict(own)
        self.files, self.records, self.damage, self.garbage, self.kept, self.trees = {}, {}, [], [], {}, []
        self.chosen = {}  # the directories of stores that have moved
        for file in sorted(directory.rglob("*")):
            path = f"@/{file.relative_to(directory).as_posix()}"
            if file.is_dir():
                if file.name == ".staging" or file.name.startswith(".plaz-"):
                    self.files[path] = None
            elif "/.plaz/.index/" in path:
                if GARBAGE.fullmatch(file.name):
                    self.garbage.append(path)
            elif "/plaz_kept/" in path:
                self.kept[path] = file.read_bytes()
            elif "/.plaz/.trees/" in path and not file.name.startswith(".plaz-") and (tree := read_tree(file)):
                self.trees.append((path.partition("/.plaz/")[0], *tree))
            elif file.name == DATABASE:
                self.read(file, self.read_records)
            elif file.name == PLACES:
                self.read(file, self.read_places)
            elif file.name == "plaz_history.json":  # whole, whatever the time
                self.read(file, lambda entries: None, "history")
            elif file.name != "plaz.lock":
                self.files[path] = self.read_relative(file)

    def read_relative(self, file):
        # A link may point nowhere: git makes such a one to find out whether it can.
        content = os.readlink(os.fsencode(file)) if file.is_symlink() else file.read_bytes()
        return functools.reduce(lambda text, name: text.replace(name, b"@"), self.names, content)

    def read(self, file, take, member="qstores"):
        try:
            take(json.loads(self.read_relative(file))["plaz"][member])
        except (ValueError, KeyError, TypeError) as error:
            self.damage.append(f"{file} cannot be read: {error!r}")

    def read_places(self, stores):
        self.chosen = {store["name"]: store["directory"] for store in stores}

    def read_records(self, stores):
        for store in stores:
            for item in store["items"]:
                key = store["name"], item["name"], item["revision"]
                said = [item[name] for name in ("commit_id", "installation_mode", "reference_count")]
                where, root = item["local_directory"], store["item_root"]
                folder = where.partition(f"/{root}/")[2].removesuffix(f"/{item['revision']}")
                record = Record(*key, *said, store["root"], f"{root}/{folder}")
                if self.records.setdefault(where, record) is not record:
                    self.damage.append(f"{where} is recorded twice")

    def get_in_force(self):
        """The records of the places where the stores are kept now."""
        chosen = {where: self.chosen.get(record.store, "@/2024.2/plaz") for where, record in self.records.items()}
        return [record for where, record in self.records.items() if where.startswith(f"{chosen[where]}/")]

    def recount(self):
        """@return how many ways along dependencies lead to each item from what users have asked for"""
        records, counts = self.get_in_force(), collections.Counter()

        def find(store, name, revision):
            there = [r for r in records if (r.store, r.name) == (store, name)]
            if revision and there and self.origin.keeps_revisions(there[0].repository):
                there = [r for r in there if r.revision == revision]
            return max(there, key=lambda r: [int(number) for number in r.revision.split(".")], default=None)

        def walk(record, passed):
            for key in self.origin.get_dependencies(record.repository, record.commit, record.folder):
                needed = find(*key)
                if needed and key not in passed:
                    counts[needed[:3]] += 1
                    walk(needed, passed | {key})

        for record in records:
            if record.mode == "user":
                walk(record, {record[:3], (*record[:2], "")})
        return counts

    def find_owner(self, path, *others):
        """@return the place of the item that a file belongs to, of all that these homes know"""
        return next((w for home in (self, *others) for w in home.records if path.startswith(f"{w}/")), None)

    def get_tree(self, where):
        """@return what its installation keeps of an item's files"""
        record = self.records[where]
        blobs = self.origin.get_blobs(record.repository, record.commit, record.folder)
        return where.partition(f"/{record.folder}")[0], record.commit, blobs

    def describe_lack(self, where, *owns):
        """Says what an item lacks: its tree, and the files of the recorded commit, with what a user made of them."""
        if self.get_tree(where) not in self.trees:
            yield f"{where} is there without its tree"
        start, (_, commit, blobs) = f"{where}/", self.get_tree(where)
        found = {path: get_blob(text) for path, text in self.files.items() if path.startswith(start)}
        lacks = []
        for own in owns:
            expected = {start + name: blob for name, blob in blobs.items()}
            expected |= {p: text if text is None else get_blob(text) for p, text in own.items() if p.startswith(start)}
            lacks.append([p for p in sorted({*found, *expected}) if found.get(p) != expected.get(p)])
        for path in min(lacks, key=len):
            yield f"{path} is not as in {commit[:7]}, which is recorded"

    def judge_own(self, own, said="", is_done=False):
        """Says which of a user's files are nowhere any more, or are told as kept and are not, or the other way around
        by a command that is done."""
        texts = {path.split("/", 4)[4]: text for path, text in own.items() if text}
        whole = {path for path, text in self.kept.items() if text == texts.get(path.split("/", 6)[-1])}
        for name in self.names:
            said = said.replace(name.decode(), "@")
        told = re.findall(r'(@\S*/plaz_kept/[^" ]*)"?:? (.*?)\.?$', said, re.M)
        told = {f"{where}/{name}" for where, names in told for name in names.split(", ")}
        yield from (f"{path} is told as kept" for path in told - whole)
        places = {path.split("/", 6)[-1] for path in (told if is_done else whole)}
        for path in (path for path in own if own[path] and own[path] not in self.files.values()):
            if path.split("/", 4)[4] not in places:
                yield f"{path} is lost, or not told as kept"

    def describe_counts(self, found):
        """Says which of these counts, by item, are not those that dependencies give."""
        counts = self.recount()
        for key, count in found.items():
            if count != counts[key]:
                yield f"{'::'.join(key)} has the count {count}, not {counts[key]}"

    def judge_items(self, old, new):
        """Says which items, and places of stores, are neither as in one home nor as in another."""
        yield from self.damage
        if self.chosen not in (old.chosen, new.chosen):
            yield f"stores are kept in {self.chosen}"
        for where in sorted({*self.records, *old.records, *new.records}):
            found, before, after = (home.records.get(where) for home in (self, old, new))
            known = [record for record in (before, after) if record]
            if not found:
                if before and after:
                    yield f"{where} is no longer recorded"
            elif found[2:4] not in [record[2:4] for record in known]:
                yield f"{where} is recorded as {found.revision} at {found.commit[:7]}"
            elif found.mode not in [record.mode for record in known]:
                yield f'{where} is installed for "{found.mode}"'
            else:
                homes = (home for home, record in ((old, before), (new, after)) if record and record[3] == found[3])
                yield from self.describe_lack(where, *(home.own for home in homes))

    def judge_shown(self, shown):
        """Says where the list of what is installed is not what is recorded."""
        listed = {(i["store"], i["name"], i["revision"]): (i["installation_mode"], i["reference_count"]) for i in shown}
        modes = {record[:3]: record.mode for record in self.get_in_force()}
        if {key: mode for key, (mode, _) in listed.items()} != modes:
            yield f"what is listed is not what is recorded: {sorted(listed)}"
        yield from self.describe_counts({key: count for key, (_, count) in listed.items()})

    def judge_files(self, old, new, others=()):
        """Says which files beside those of items are neither as in one home nor as in another."""
        unused = tuple(f"{where}/" for where in new.chosen.values() if where not in self.chosen.values())
        paths = {path for path in (*self.files, *old.files, *new.files) if not path.startswith(unused)}
        paths = {path for path in paths if not self.find_owner(path, old, new, *others)}
        for path in sorted(paths):
            there = [home.files[path] for home in (old, new) if path in home.files]
            if path not in self.files and len(there) == 2:
                yield f"{path} is gone"
            elif path in self.files and there and self.files[path] not in there:
                yield f"{path} is neither old nor new"
        marks = [path for path in self.files if re.search(r"(?<!\.staging)/\.done$", path)]
        for folder in (mark.removesuffix("/.done") for mark in marks):
            whole = [path for path in {*old.files, *new.files} & paths if path.rpartition("/")[0] == folder]
            if not any(all(self.files.get(p) == home.files.get(p) for p in whole) for home in (old, new)):
                yield f"{folder} is partly old and partly new"

    def find_leftovers(self, old, new):
        """Says which files belong to nothing that is recorded, nor were there in one of the homes. What an item that is
        gone leaves of itself is its metadata file."""
        needed = [self.get_tree(where) for where in self.records]
        for tree in self.trees:
            if self.trees.count(tree) > needed.count(tree):
                yield f"a tree of {tree[0]} at {tree[1][:7]} is left over"
        for path in self.files:
            owner = self.find_owner(path, old, new)
            known = path == f"{owner}/{METADATA}" if owner else path in old.files or path in new.files
            if owner not in self.records and not known:
                yield f"{path} is left over"

    def describe_difference(self, new, old):
        """Says what this home has otherwise than a new one, that an old one became: items, counts and other files."""
        for where in sorted({*self.records, *new.records}):
            found, expected = (home.records.get(where) for home in (self, new))
            if found != expected:
                yield f"{where}: {found and found[2:6]}, not {expected and expected[2:6]}"
        yield from self.judge_items(new, new)
        yield from self.judge_files(new, new, [old])
