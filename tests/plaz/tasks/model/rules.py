"""What should be installed, by the rules alone: no product code, no files, no git.

An item is (store, name, revision). A dependency's key is the same, with "" for no revision.
"""

import copy
import dataclasses

SEVERAL, ONE = "several", "one"  # the stores: how many revisions of an item each keeps
TOO_MANY = 20000  # ways along dependencies: no history goes on beyond


@dataclasses.dataclass(frozen=True)
class Entry:
    """What a catalog says of an item: its commits by revision, in the catalog's order, and its folder."""

    latest: str
    commits: dict
    folder: str


@dataclasses.dataclass(frozen=True)
class Fact:
    commit: str
    mode: str
    folder: str


def number(revision):
    return tuple(map(int, revision.split(".")))


class Model:
    def __init__(self, contents):
        """@param contents  dependencies by commit, growing; a commit that is not there cannot be fetched"""
        self.contents = contents
        self.catalogs = {SEVERAL: {}, ONE: {}}
        self.installed = {}

    def copy(self):
        other = copy.copy(self)
        other.catalogs, other.installed = dict(self.catalogs), dict(self.installed)
        return other

    # What is meant

    def get_latest(self, store, name):
        return self.catalogs[store][name].latest if name in self.catalogs[store] else None

    def sort_newest_first(self, store, name):
        """@return the installed revisions as items"""
        entry = self.catalogs[store].get(name)
        listed = [entry.latest, *entry.commits] if entry else []

        def rank(item):
            return (0, listed.index(item[2])) if item[2] in listed else (1, *(-part for part in number(item[2])))

        return sorted((item for item in self.installed if item[:2] == (store, name)), key=rank)

    def get_server(self, store, name, revision):
        """@return the installed item that serves the dependency, or None"""
        items = self.sort_newest_first(store, name)
        if revision and store == SEVERAL:
            items = [item for item in items if item[2] == revision]
        return items[0] if items else None

    def get_offer(self, store, name, revision):
        """@return the item that the catalog offers for a key, or None"""
        latest = self.get_latest(store, name)
        offered = [] if latest is None else self.catalogs[store][name].commits if store == SEVERAL else [latest]
        revision = revision or latest
        return (store, name, revision) if revision in offered else None

    def get_needs(self, item):
        return self.contents[self.installed[item].commit]

    # Who holds what

    def get_own_keys(self, item):
        store, name, revision = item
        is_newest = store == ONE or revision == self.get_latest(store, name)
        return frozenset({item, (store, name, "")} if is_newest else {item})

    def count(self):
        """@return how many ways lead to each installed item from what the user asked for; None for too many"""
        counts = dict.fromkeys(self.installed, 0)
        ways = [(item, self.get_own_keys(item)) for item, fact in self.installed.items() if fact.mode == "user"]
        for total in range(TOO_MANY):
            if not ways:
                return counts
            item, path = ways.pop()
            for key in self.get_needs(item):
                server = self.get_server(*key)
                if server and key not in path:
                    counts[server] += 1
                    ways.append((server, path | {key}))
        return None

    def collect(self):
        """Lets go of what no way leads to."""
        ways = [item for item, fact in self.installed.items() if fact.mode == "user"]
        reached = set(ways)
        while ways:
            servers = {self.get_server(*key) for key in self.get_needs(ways.pop())} - reached - {None}
            reached |= servers
            ways += servers
        self.installed = {item: fact for item, fact in self.installed.items() if item in reached}

    # The tasks: each gives whether all went well

    def put(self, item, mode):
        """Fetches and records an offered item. In a store that keeps one revision it takes the place of another."""
        store, name, revision = item
        entry = self.catalogs[store][name]
        commit, place = entry.commits[revision], entry.folder + (f"/{revision}" if store == SEVERAL else "")
        others = [other for other in self.installed if other[:2] == (store, name) and store == ONE]
        taken = [
            fact.folder == place
            for other, fact in self.installed.items()
            if other[0] == store and other != item and other not in others
        ]
        if commit not in self.contents or any(taken):
            return False
        if any(self.installed.pop(other).mode == "user" for other in others):
            mode = "user"
        self.installed[item] = Fact(commit, mode, place)
        return True

    def complete(self, item):
        """Brings what is missing below an item, depth first."""
        seen = set()

        def walk(item):
            seen.add(item)
            went_well = True
            for key in self.get_needs(item):
                server = self.get_server(*key)
                if not server:
                    server = self.get_offer(*key)
                    if not server or not self.put(server, "tool"):
                        went_well = False
                        continue
                if server not in seen:
                    went_well = walk(server) and went_well
            return went_well

        return walk(item)

    def install(self, store, name, revision):
        newest = self.get_server(store, name, "")
        item = (store, name, revision or self.get_latest(store, name) or (newest and newest[2]))
        if item in self.installed:
            self.installed[item] = dataclasses.replace(self.installed[item], mode="user")
        elif not (self.get_offer(*item) and self.put(item, "user")):
            return False
        return self.complete(item)

    def uninstall(self, *key):
        item = self.get_server(*key)
        is_held = item and self.count()[item] > 0
        if not item or (is_held and self.installed[item].mode == "tool"):
            return False
        fact = self.installed.pop(item)
        if is_held:
            self.installed[item] = dataclasses.replace(fact, mode="tool")
        return True

    def update(self, *key):
        item = self.get_server(*key)
        if not item:
            return False
        mode = self.installed[item].mode
        latest = self.get_offer(*item[:2], "")
        if latest and not (item[0] == SEVERAL and mode == "tool" and latest != item):
            fact = self.installed.get(latest, Fact("", mode, None))
            item = latest
            if fact.commit != self.catalogs[item[0]][item[1]].commits[item[2]] and not self.put(item, fact.mode):
                return False
        return self.complete(item)

    def update_all(self):
        items = []
        for store in (SEVERAL, ONE):
            names = [*self.catalogs[store], *sorted({name for s, name, _ in self.installed if s == store})]
            items += [item for name in dict.fromkeys(names) for item in self.sort_newest_first(store, name)]
        went_well = True
        for item in items:
            if item in self.installed:
                went_well = self.update(*item) and went_well
                self.collect()
        return went_well

    def refresh(self, published, *stores):
        self.catalogs.update({store: published[store] for store in stores or published})
        return True
