"""What people hear from the program, and how that looks."""

from support.hubtest import PLAZ, HubTest, edit, succeed


class MessagesTest(HubTest):
    def test_tells_faults_of_a_store_when_they_come(self):
        """Catches: every user told at every command what a store's maintainer has to mend, or nobody."""

        def lead_out(catalog):
            catalog["catalog"]["items"][0]["root"] = "../out"

        self.commit("tcl-store", lambda work: edit(work / "scripts_catalog.json", lead_out))
        self.check_shown(self.run_plaz("refresh tclscripts", status=1).stderr, "17-2160")
        self.check("later", self.run_plaz("items").stderr, "")

    def test_colours_where_a_terminal_shows_them(self):
        """Catches: escape sequences in a file, none on a terminal, and nobody who wants none heard."""
        red = "\033[1;31mERROR\033[0m: [17-"
        refused = ["script", "--quiet", "--command", f"{PLAZ} info nosuch", "/dev/null"]
        self.check_shown(succeed(*refused, env={**self.env, "TERM": "xterm"}), red)
        for quiet in ({"TERM": "dumb"}, {"NO_COLOR": "1"}):
            self.check_shown(succeed(*refused, env={**self.env, **quiet}), "ERROR: [17-", never=["\033"])
        self.check_shown(self.run_plaz("info nosuch", status=1).stderr, "ERROR: [17-")
        self.check_shown(self.run_plaz("info nosuch --color always", status=1).stderr, red)

    def test_shows_progress_on_a_terminal(self):
        """Catches: a progress line without the store's number, its step or its percentage."""
        shown = succeed("script", "--quiet", "--return", "--command", f"{PLAZ} refresh", "/dev/null", env=self.env)
        self.check_shown(shown, "1/2   0% Fetching Sample boards", "2/2  50% Describing items of Sample Tcl scripts")
