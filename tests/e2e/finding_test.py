"""Looks for items with the real program."""

from support.hubtest import HubTest


class FindingTest(HubTest):
    def test_finds_items_by_words(self):
        """Catches: texts ranked above names, slips that are not forgiven, names that are searched, counts that differ,
        what nobody offers any more taken for the rest."""
        self.expect("items report", "items: name", "pin-report", "text-tables", "計測")
        self.expect("items arora", "messages: id", "17-2302", "17-2303")
        for command in ("items arora", "items aurora", "items Entwickulngsplatine", "items aurroa platine"):
            self.expect(command, "items: name", "aurora")
        self.expect("items --sort name --limit 2", "items: name", "aurora", "board-check")
        self.expect("items --sort name --limit 2", "messages: id arguments", "17-2309 ['14']")
        self.expect("items --installed", "messages: id", "17-2238")
        for category in self.run_json("categories")["categories"]:
            command = f"items --store {category['store']} --category {category['name']}"
            self.check(command, len(self.run_json(command)["items"]), category["item_count"])
        self.check_shown(self.run_plaz("items legacy*").stdout, " inactive ")
        self.check_shown(self.run_plaz("install legacy-carrier").stderr, "WARNING: [17-2310]")
