"""What should be installed, by the rules alone: no product code, no files, no git.

An item is (store, name, revision). So is the key of a dependency, with "" where it names no revision.
"""

from collections import namedtuple

SEVERAL, ONE = "boards", "tclscripts"  # the stores, by how many revisions of an item they keep
TOO_MANY = 20000  # ways along dependencies, beyond which they are not counted
Entry = namedtuple("Entry", "latest commits folder head")  # commits by revision; head: of what describes the item
Fact = namedtuple("Fact", "commit mode folder")  # of an installed item


class Model:
    """catalogs: what the user's hub offers, as it was published when last refreshed. own: what the user has made of an
    item's files, None where one is removed. kept: what of that is put aside. held: the installed items that stay."""

    def __init__(self, published, catalogs=(), installed=(), own=(), kept=(), held=()):
        self.published, self.catalogs = published, {SEVERAL: {}, ONE: {}, **dict(catalogs)}
        self.installed, self.own, self.kept, self.held = dict(installed), dict(own), set(kept), set(held)

    def rank(self, item):
        """@return what sorts the newest revision of an item first"""
        latest, commits, *_ = self.catalogs[item[0]].get(item[1], ("", {}))
        return (item[2] != latest) + (item[2] not in commits), *(-int(part) for part in item[2].split("."))

    def list_revisions(self, store, name):
        """@return the installed ones as items, the newest first"""
        return sorted((item for item in self.installed if item[:2] == (store, name)), key=self.rank)

    def find_server(self, store, name, revision):
        """@return the installed item that serves a key, or None"""
        items = self.list_revisions(store, name)
        return next((item for item in items if store == ONE or revision in ("", item[2])), None)

    def find_offer(self, store, name, revision):
        """@return the item that the catalog offers for a key, or None"""
        latest, commits, *_ = self.catalogs[store].get(name, ("", {}))
        item = (store, name, revision or latest)
        return item if item[2] in (commits if store == SEVERAL else [latest]) and item[2] else None

    def find_coming(self, key):
        """@return the item that comes, or stays, for a key that an item needs, or None"""
        server = self.find_server(*key)
        return server if server in self.held and not key[2] else self.find_offer(*key) or server

    def get_needs(self, item):
        """@return the keys that an item needs, by its description in the catalog where it is not installed"""
        offered = self.catalogs[item[0]].get(item[1])
        commit = self.installed[item].commit if item in self.installed else offered and offered.head
        return (
            self.published.contents[commit] if self.published.names.get(commit) == item[1] else ()
        )  # not of another item

    def list_asked_for(self):
        return [item for item, fact in self.installed.items() if fact.mode == "user"]

    def count(self):
        """@return by how many ways each item is reached from what the user asked for; None when there are too many"""
        counts = dict.fromkeys(self.installed, 0)
        ways = [(item, {item}) for item in self.list_asked_for()]
        needs = {key: self.find_server(*key) for other in self.installed for key in self.get_needs(other)}
        for item, keys in ways:  # by which it is named
            keys |= {key for key, server in needs.items() if server == item}
        for _ in range(TOO_MANY):
            if not ways:
                return counts
            item, path = ways.pop()
            for key in set(self.get_needs(item)) - path:
                if server := self.find_server(*key):
                    counts[server] += 1
                    ways.append((server, path | {key}))
        return None

    def edit(self, number, name, text):
        """@return the installed item that is edited, or None"""
        if not self.installed:
            return None
        item = sorted(self.installed)[number % len(self.installed)]
        self.own[item] = {**self.own.get(item, {}), name: text}
        if text is None and name not in self.get_files(item):
            del self.own[item][name]
        return item

    def get_files(self, item):
        return self.published.files[self.installed[item].commit]

    def put_aside(self, item, is_repaired=False):
        """What a user has made of an item's files goes. Where it is repaired, what was added stays."""
        own, going = self.own.get(item, {}), self.get_files(item) if is_repaired else self.own.get(item, {})
        self.kept |= {(f"{self.installed[item].folder}/{name}", own[name]) for name in going if own.get(name)}
        self.own[item] = {name: text for name, text in own.items() if name not in going}

    def take_over(self, facts):
        for item in [item for item, fact in self.installed.items() if item not in facts or facts[item][0] != fact[0]]:
            self.put_aside(item)
        self.installed = facts

    def restore(self, item):
        """What is missing or empty comes back."""
        self.own[item] = {name: text for name, text in self.own.get(item, {}).items() if text}

    def collect(self):
        """Lets go of what no way leads to."""
        ways, reached = self.list_asked_for(), set()
        while ways:
            item = ways.pop()
            if item and item not in reached:
                reached.add(item)
                ways += [self.find_server(*key) for key in self.get_needs(item)]
        for item in self.installed.keys() - reached:
            self.put_aside(item)
            del self.installed[item]
        self.held &= self.installed.keys()

    def put(self, item, mode):
        """Fetches an offered item. Where one revision is kept it takes the place of another, and its mode "user"."""
        store, name, revision = item
        entry = self.catalogs[store][name]
        commit, folder = entry.commits[revision], entry.folder + (f"/{revision}" if store == SEVERAL else "")
        replaced = {other for other in self.installed if other[:2] == (store, name) and (store == ONE or other == item)}
        taken = [fact.folder for other, fact in self.installed.items() if other[0] == store and other not in replaced]
        if commit not in self.published.contents or folder in taken or replaced & self.held:
            return False
        for other in replaced:
            self.put_aside(other)
        modes = [self.installed.pop(other).mode for other in replaced]
        self.installed[item] = Fact(commit, "user" if "user" in modes else mode, folder)
        return True

    def complete(self, top, is_new):
        """Brings what is missing below an item, depth first: what the catalog offers, below an item that is new, also
        where another revision would serve; there the first need of its own that cannot be had ends the work."""
        latest = self.catalogs[top[0]].get(top[1], ("",))[0]
        path = {top} | ({(*top[:2], "")} if top[0] == ONE or latest in ("", top[2]) else set())
        seen, lacking = {top}, []

        def follow(key, step):  # what is on the way already would lead in circles
            if key in path:
                return True
            path.add(key)
            went_well = step(key)
            path.remove(key)
            return went_well

        def bring(key):
            item = self.find_coming(key)
            if not item or (item not in self.installed and not self.put(item, "tool")):
                lacking.append(key)
                return False
            self.restore(item)
            if item not in seen:
                seen.add(item)
                for need in self.get_needs(item):
                    follow(need, bring)
            return True

        def look(key):
            server = self.find_server(*key)
            if not server:
                bring(key)
            elif server not in seen:
                seen.add(server)
                self.restore(server)
                for need in self.get_needs(server):
                    follow(need, look)

        self.restore(top)
        if is_new:
            all(follow(key, bring) for key in self.get_needs(top))
        else:
            for key in self.get_needs(top):
                follow(key, look)
        return not lacking

    def is_barred(self, top):
        """@return whether what the user holds keeps away an item that is asked for: of another revision, or needed"""
        older = [item for item in self.held if item[:2] == top[:2] and self.rank(top) < self.rank(item)]
        if top not in self.installed and older:
            return True
        ways, seen = [top], {top}
        for item in ways:
            for coming in {self.find_coming(key) for key in self.get_needs(item)} - {None, *seen}:
                if (
                    coming[0] == ONE
                    and coming not in self.installed
                    and self.held & {*self.list_revisions(*coming[:2])}
                ):
                    return True
                seen.add(coming)
                ways.append(coming)
        return False

    # The tasks: each gives whether all went well

    def install(self, store, name, revision):
        newest = self.find_offer(store, name, "") or self.find_server(store, name, "")
        item = (store, name, revision) if revision else newest
        was_users = item in self.list_asked_for()
        if item in self.installed:
            self.restore(item)
        if item and not was_users and self.is_barred(item):
            return False
        if item in self.installed:
            self.installed[item] = self.installed[item]._replace(mode="user")
        elif not (item and self.find_offer(*item) and self.put(item, "user")):
            return False
        return self.complete(item, not was_users)

    def uninstall(self, *key):
        item = self.find_server(*key)
        is_held = item and self.count()[item] > 0
        if not item or (is_held and self.installed[item].mode == "tool"):
            return False
        if is_held:
            self.installed[item] = self.installed[item]._replace(mode="tool")
        else:
            self.put_aside(item)
            del self.installed[item]
        return True

    def repair(self, *key):
        items = [item for item in self.installed if not key or (item[:2] == key[:2] and key[2] in ("", item[2]))]
        for item in items:
            self.put_aside(item, is_repaired=True)
        return bool(items or not key)

    def update(self, *key):
        item = self.find_server(*key)
        if not item:
            return False
        former, fact, latest = item, self.installed[item], self.find_offer(*item[:2], "")
        is_new = bool(latest) and latest not in self.installed and fact.mode == "user"
        if latest and (latest[0] == ONE or latest == item or is_new):
            fact = self.installed.get(latest, fact._replace(commit=""))
            is_outdated = fact.commit != self.catalogs[latest[0]][latest[1]].commits[latest[2]]
            if is_outdated and (item in self.held or (is_new and self.is_barred(latest))):
                return False
            item = latest
            if is_outdated and not self.put(item, fact.mode):
                return False
        stays = former != item and former in self.installed
        return self.complete(item, is_new) and (not stays or self.complete(former, False))

    def update_all(self):
        names = [(store, name) for store, catalog in self.catalogs.items() for name in catalog]
        names = dict.fromkeys([*names, *sorted(item[:2] for item in self.installed)])
        went_well = True
        for item in [item for name in names for item in self.list_revisions(*name)]:
            went_well = (item not in self.installed or self.update(*item)) and went_well
            self.collect()
        return went_well

    def hold(self, *key):
        item = self.find_server(*key)
        self.held |= {item} - {None}
        return item is not None

    def unhold(self, store, name, revision):
        freed = {item for item in self.held if item[:2] == (store, name) and revision in ("", item[2])}
        self.held -= freed
        return bool(freed)

    def refresh(self, *stores):
        chosen = [store for store in stores if store != "--hub"] or [SEVERAL, ONE]
        self.catalogs.update((store, self.published.catalogs[store]) for store in chosen)
        return True
