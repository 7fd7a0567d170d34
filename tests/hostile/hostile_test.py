"""Runs the program among stores, servers and neighbours that mean harm, each beside a good store; one judge for all."""

import shutil
import unittest

from hostile import neighbours, servers, stores
from hostile.judge import Judge
from hostile.world import World
from support.hubtest import SCRATCH, succeed

GOOD = "install good::pearl"


class HostileTest(unittest.TestCase):
    def setUp(self):
        self.expected = {}  # the user area behind a harmless store, by where stores lie

    def meet(self, case, world, told, *commands):
        """@param told  what the failure names, of which there is none where this is empty; after "?" there may be one,
        after "!" nothing at all may change until what it names is mended"""
        judge = Judge(world)
        before = judge.take_stock()
        results = [judge.run(*words) for words in commands]
        judge.judge_ends(results, told)
        if not told.startswith("!") and any(result.status for result in results if result.words == GOOD):
            judge.find("the good store's item is not installed")
        judge.judge_programs()
        judge.judge_strangers()
        where, after = str(world.good_area), judge.take_stock()
        judge.judge_files(before, before if told.startswith("!") else self.expected.setdefault(where, after))
        self.assertEqual(judge.faults, [], case)

    def test_stores(self):
        """Catches: a store that does more than offer its items."""
        for case, (told, changes) in stores.CASES.items():
            with self.subTest(case):
                world = World()
                stores.spoil(world, changes)
                world.publish()
                name = f"bad::{world.bad.item['name']}"
                asked = (["refresh"], ["items"], ["info", name], ["install", name], ["verify"], GOOD.split())
                self.meet(case, world, told, *asked, ["uninstall", name])

    def test_servers(self):
        """Catches: a server that gets what is not for it, that nothing gives up, or whose words are obeyed."""
        for number, (case, lead) in enumerate(servers.CASES.items()):
            with self.subTest(case):
                world = World()
                world.road, world.settings["plaz.gitTimeout"] = ("param", "config", "url")[number % 3], "3"
                lead(world)
                world.publish()
                self.meet(case, world, "bad" if number else "", ["refresh"], ["check"], GOOD.split())

    def test_neighbours(self):
        """Catches: what others have laid in a directory and is trusted, followed or waited for."""
        world, base = World(), f"{SCRATCH.name}/base"
        world.publish()
        for words in ("refresh", f"relocate bad {world.shared}", "refresh", "install bad::stone"):
            self.assertEqual(Judge(world).run(*words.split())[1:], (0, []))
        world.bad_area, world.settings["plaz.gitTimeout"] = world.shared / "bad-root", "3"
        world.bad.files["items/stone/more.txt"] = "x"
        world.bad.publish()
        shutil.rmtree(world.record)
        world.record.mkdir()
        succeed("mv", world.dir, base)
        for case, (told, things) in neighbours.CASES.items():
            with self.subTest(case):
                succeed("rm", "-rf", world.dir)
                succeed("cp", "-a", base, world.dir)
                neighbours.lay(world, things)
                again = ["install", "--reinstall", "bad::stone"]
                self.meet(case, world, told, ["refresh"], ["verify"], again, GOOD.split(), ["uninstall", "bad::stone"])
