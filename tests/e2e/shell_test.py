"""Runs the real program on a sample hub of real git repositories."""

import json
import os
import pathlib
import shutil
import signal
import subprocess

from support.hubtest import PLAZ, PRODUCT_DATA, TEXT, HubTest, edit, hide, run, succeed, wait_for


class ShellTest(HubTest):
    def check_installed(self, expected=""):
        """Name, revision, mode and count of each item are recorded, and its files are there."""
        installed = "items --installed --all-revisions"
        recorded = self.ask(installed, "items: name revision installation_mode reference_count")
        self.check("installed", sorted(recorded), sorted(filter(None, expected.split(", "))))
        directories = self.ask(installed, "items: local_directory")
        self.check("no files", [name for name in directories if not pathlib.Path(name, "item.json").is_file()], [])

    def test_lists_what_the_hub_offers(self):
        """Catches: stores, items or dependencies lost on the way, filters that are ignored."""
        stores = "qstores: name store_type item_count installed_count"
        self.expect("stores", stores, "boards board 8 0", "tclscripts ced 8 0")
        found = ["boards clocking 1.1", "tclscripts csv-kit 1.1", "tclscripts clocking 1.0"]
        self.expect("items *c[ls]*k*", "items: store name revision", *found)
        self.check_shown(self.run_plaz("items --store boards").stdout, "prüfadapter", never=["csv-kit"])
        needed = ["boards connectors-common - False", "boards io-panel 1.0 False"]
        needed += ["tclscripts pin-report - False", "tclscripts board-check - False"]
        self.expect("info aurora", "item dependencies: store item revision installed", *needed)
        text = self.run_plaz("info aurora@1.1").stdout
        self.check_shown(text, "boards::aurora@1.1", "boards::io-panel@1.0", "not installed")

    def test_installs_with_dependencies_and_removes_them_again(self):
        """Catches: what one process installs unknown to the next, wrong counts, what is left at the end."""
        self.expect("install aurora", "items: name revision outcome", "aurora 2.0 installed")
        self.check_installed(
            "aurora 2.0 user 0, connectors-common 1.0 tool 2, io-panel 1.0 tool 1, pin-report 1.0 tool 1, "
            "board-check 1.0 tool 1, csv-kit 1.1 tool 2, string-kit 1.0 tool 2, text-tables 1.0 tool 1"
        )
        self.expect("info csv-kit", "item dependants: name", "pin-report", "board-check")
        self.check("held", self.ask("uninstall csv-kit", "messages: id", status=1)[0], "17-1568")
        quiet = self.run_plaz("--quiet uninstall aurora")
        self.check("quiet", quiet.stdout + quiet.stderr, "")
        self.check_installed()

    def test_refreshed_and_moved_stores_outlive_the_process(self):
        """Catches: a restart that goes back to what was shipped or forgets a move, a move to where nothing can be."""
        listed, file = "items: name revision display", "elsewhere/tcl-store/scripts/csv-kit/item.json"
        shipped = self.ask("items --all-revisions", listed)
        self.run_plaz("relocate tclscripts elsewhere")
        self.expect("refresh", "qstores: outcome items", "refreshed 8", "refreshed 8")
        shutil.rmtree(self.data / "plaz/storesdata")
        self.expect("items --all-revisions", listed, *shipped)
        self.run_plaz("install csv-kit")
        self.assertTrue((self.dir / file).is_file())
        self.run_plaz(f"relocate boards {file}", status=1)
        self.check_shown(self.run_plaz("relocate boards no\udcff", status=1).stderr, "17-2293", never=["17-2177"])

    def test_keeps_others_out_of_the_user_area(self):
        """Catches: rights in the user's area that follow the mask, or in a directory that was chosen that do not."""
        for mask in (0, 0o22):
            area, chosen = self.dir / f"area{mask}", self.dir / f"chosen{mask}"

            def plaz(*command):
                env = {**self.env, "GDA_APPDATA_DIR": str(area)}
                succeed(PLAZ, *" ".join(command).split(), cwd=self.dir, env=env, umask=mask)

            plaz("refresh --hub")
            plaz("refresh")
            plaz("relocate tclscripts", chosen.name)
            plaz("install aurora@1.1 csv-kit")
            edited = next(area.glob("*/plaz/board_store/boards/aurora/1.1/board.xml"))
            edited.write_text("mine")
            edited.chmod(0o777)  # not ours to change, but a copy is
            plaz("uninstall aurora@1.1")
            plaz("install aurora")
            edited = next(area.glob("*/plaz/board_store/boards/aurora/2.0/board.xml"))
            edited.write_text("mine")
            plaz("repair aurora")
            made = [file for file in (area, *area.rglob("*")) if not file.is_symlink()]
            self.check("kept", sum("plaz_kept" in str(file) and file.is_file() for file in made), 2)
            self.check("rights", [str(file) for file in made if file.stat().st_mode & 0o27], [])
            places = "tcl-store", "tcl-store/scripts_catalog.json", "tcl-store/scripts/csv-kit/item.json"
            modes = [file.stat().st_mode & 0o777 for file in (edited, *map(chosen.joinpath, places))]
            self.check("mask", modes, [0o640, 0o777 & ~mask, 0o666 & ~mask, 0o666 & ~mask])

    def test_keeps_what_items_need_that_are_away(self):
        """Catches: items removed, or a place made anew, since a store's disk is not there, or nobody knows where it is;
        no clean-up any more after a store went home; a shared place emptied by whoever comes to it."""
        area = self.home / "2024.2/plaz"
        chosen, mine = self.dir / "disk/boards-store", "aurora resistances"

        def names(status=0):
            return sorted(self.ask("items --installed", "items: name", status))

        def take(place):
            place.rename(self.dir / "away")

        def empty():
            take(chosen)
            chosen.mkdir()

        def lay_link():
            (area / "board_store").rename(self.dir / "away")
            (area / "board_store").symlink_to(chosen)

        for name, relocation, lose, place in (
            ("parent", "disk", lambda: take(chosen.parent), chosen.parent),
            ("place", "disk", lambda: take(chosen), chosen),
            ("mount point", "disk", empty, chosen),
            ("link", area / "board_store", lay_link, chosen),
        ):
            with self.subTest(name):
                self.setUp()
                self.run_plaz(f"relocate boards {relocation}")
                self.run_plaz(f"install {mine}")
                lose()
                kept = names(1)
                for command in ("refresh boards", "refresh --hub", "install boards::hikari", "doctor", "verify"):
                    self.check_shown(self.run_plaz(command, status=1).stdout, never=["nothing was installed yet"])
                self.check_shown(self.run_plaz("uninstall resistances", status=1).stderr, "17-2249", "17-2250")
                self.check("kept", names(1), [each for each in kept if each != "resistances"])
                self.check("made anew", place.exists() and any(place.iterdir()), False)
                place.parent.mkdir(exist_ok=True)
                (self.dir / "away").rename(place)
                self.run_plaz("verify")
                self.run_plaz("uninstall aurora")
                self.check_installed()
        self.setUp()
        self.run_plaz("relocate boards disk")
        take(chosen)
        edit(self.hub_file, lambda hub: hub["plaz"]["qstores"].pop(0))
        self.check_shown(self.run_plaz("install string-kit").stderr, "17-2252", str(chosen / ".plaz"))
        self.setUp()
        self.run_plaz("relocate boards shared")
        self.run_plaz(f"install {mine}")
        (area / "plaz_stores.json").write_text("{}")
        kept = names(1)
        self.check_shown(self.run_plaz("uninstall resistances", status=1).stderr, "17-2246", "17-2224")
        self.check("of places unknown", names(1), kept)
        (area / "plaz_stores.json").unlink()
        for home in (self.home, self.dir / "another"):
            self.env["GDA_APPDATA_DIR"] = str(home)
            for store in ("tclscripts", "boards"):
                self.run_plaz(f"relocate {store} shared")
            if home == self.home:
                self.run_plaz("install aurora")
                kept = names()
        self.check("of another user", names(), kept)

    def test_reads_a_large_catalog_only_where_it_is_needed(self):
        """Catches: other answers, databases or messages where catalogs are too large for each start; one that is read
        for other stores, or that never is."""
        names = {"tclscripts": "tcl-store/scripts_catalog.json", "boards": "boards-store/boards_catalog.json"}
        catalogs = {store: self.data / "plaz/storesdata" / name for store, name in names.items()}
        life = """install aurora@1.1|items --store boards|install tclscripts::計測|info boards::hikari|install aurora
            |items --installed --all-revisions|info tclscripts::csv-kit|uninstall aurora@1.1|update --all|verify|stores
            |uninstall tclscripts::計測|install legacy-carrier|refresh boards|uninstall aurora|items --store tclscripts
            |refresh tclscripts|install tclscripts::resistances|uninstall legacy-carrier|items"""

        def settle(blanks):
            self.setUp()
            for catalog in catalogs.values():
                catalog.write_text(catalog.read_text("utf-8") + " " * blanks, "utf-8")

        def live(blanks):
            settle(blanks)
            for command in life.split("|"):
                result = run(PLAZ, *command.split(), env=self.env)
                databases = [file.read_text("utf-8") for file in sorted(self.home.glob("**/plaz_local_db.json"))]
                yield command, result.returncode, result.stdout, result.stderr, databases

        for large, ordinary in zip(live(1 << 20), [*live(0)]):
            self.check(large[0], large, ordinary)
        for store, other in (("tclscripts", "boards"), ("boards", "tclscripts")):
            for installed in ("legacy-carrier", "aurora"):
                settle(1 << 20)
                self.run_plaz(f"install {installed}")
                seen = catalogs[store].stat()
                with catalogs[store].open("r+") as catalog:
                    catalog.write("nonsense")  # in a file that nobody can tell from the old one without reading it
                os.utime(catalogs[store], ns=(seen.st_atime_ns, seen.st_mtime_ns))
                for command in ("items --store", "install clocking --store", "verify --store", "refresh"):
                    self.check_shown(self.run_plaz(f"{command} {other}").stderr, never=["12-102"])
                self.expect(f"items --store {store}", "messages: id", "12-102")

    def test_updates_and_keeps_modes(self):
        """Catches: an update that turns a dependency into the user's, drops the older revision, or never ends."""
        for command in ("install aurora@1.1", "install hikari"):
            self.run_plaz(command)
        self.expect("items --outdated", "items: name revision offered_revision", "aurora 1.1 2.0")
        self.run_plaz("hold aurora")
        self.check_shown(self.run_plaz("update --all").stderr, '17-2345] "aurora" stays', never=["17-2186"])
        self.expect("hold", "items: revision held outdated", "1.1 True True")
        self.run_plaz("unhold aurora")
        next(self.home.glob("*/plaz/board_store/boards/aurora/1.1/board.xml")).unlink()
        plan = self.run_plaz("update aurora --dry-run").stdout
        self.check_shown(plan, "update   boards::aurora@2.0 (was 1.1, which stays)", never=["\n\n\n"])
        self.assertIn("restore aurora 1.1", self.ask("update --all --dry-run", "steps: step name revision"))
        members = "items: revision previous_revision beside_revision outcome"
        self.expect("update --all", members, "2.0 1.1 1.1 updated")
        self.run_plaz("verify")
        self.expect("items --outdated", "items: name")
        held = (
            '17-2230] "io-panel" stays in the revision "1.0", which is there for boards::aurora@2.0, boards::aurora@1.1'
        )
        self.check_shown(self.run_plaz("update --all").stderr, "17-2186", held)
        for file in self.home.glob("*/plaz/board_store/boards/aurora/*/board.xml"):
            file.unlink()
        self.expect("update --all", "items: revision outcome", "2.0 updated", "1.1 updated")
        self.run_plaz("verify")
        several = self.run_json("uninstall aurora", status=1)["error"]
        self.check_shown(several, "boards::aurora@1.1", "boards::aurora@2.0")

    def test_refuses_wrong_usage(self):
        """Catches: slips of the command line that count as failures of the hub, or that leave a script without JSON."""
        wrong = """|bogus|stores --bogus|items --limit 0|items --sort size|install|install a@|install ::a|info a b
            |update|update --all a|validate|--set plaz.gitTimeout stores|--set no.such=1 stores
            |--set plaz.enableLog=perhaps stores"""
        for command in wrong.split("|"):
            with self.subTest(command):
                plain = self.run_plaz(command, status=2)
                self.assertEqual(("--help" in plain.stderr, plain.stdout), (True, ""))
                self.assertTrue(self.run_json(command, status=2)["error"])
        self.check_shown(self.run_plaz("--set plaz.no_such_token=geheim stores", status=2).stderr, never=["geheim"])
        meant = {"instal x": "install", "serach x": "plaz items WORD...", "items --outdted": "--outdated"}
        for command, word in {**meant, "help instal": "install", "hub sett": "set"}.items():
            self.check_shown(self.run_plaz(command, status=2).stderr, f"Did you mean `{word}`?")
        for command in ("", "items", "hub", "hub add-store"):
            self.check("help", self.run_plaz(f"help {command}").stdout, self.run_plaz(f"{command} --help").stdout)
        pointed = {
            "update": "update",
            "hub add-store a": "hub add-store",
            "hub sett": "hub",
            "help hub sett": "",
            "x": "",
        }
        for command, name in pointed.items():
            self.check_shown(
                self.run_plaz(command, status=2).stderr, f'Try "{" ".join(["plaz", *name.split()])} --help"'
            )
        for command in ("--help", "install --help", "--version", "help", "version"):
            with self.subTest(command):
                self.run_plaz(command)
                self.run_json(command)

    def test_says_why_it_failed(self):
        """Catches: failures that exit with 0, pick a candidate by themselves or do not name what there is."""
        cases = {
            "install nonsense": "nonsense",
            "info arora": "aurora",
            "install clocking": "boards::clocking@1.1, tclscripts::clocking@1.0",
            "install hikari nonsense": "nonsense",
            "info aurora@9": "boards::aurora@1.1",
            "uninstall hikari": "not installed",
            "update hikari": "not installed",
            "items --store nope": "tclscripts",
            "refresh nonsense": "tclscripts",
            "refresh Boards": "Did you mean boards?",
            "items AUR*": "aurora",
            "items nope::x": "tclscripts",
            "items zzzz": "zzzz",
            "items aurora --installed": "installed",
            "items --category Reports": "Did you mean reports? There are: development",
            "params plaz.gitTimout": "plaz.gitTimeout",
            "--product Solvn stores": "Solvan",
        }
        for command, told in cases.items():
            with self.subTest(command):
                self.assertIn(told, self.run_plaz(command, status=1).stderr)
                self.assertIn(told, self.run_json(command, status=1)["error"])
        self.check_installed()
        self.check("full", run("sh", "-c", 'exec "$0" params >/dev/full', PLAZ, env=self.env).returncode, 1)

    def test_says_why_there_is_nothing(self):
        """Catches: a hub that is switched off, or gone, and looks empty."""
        self.expect("--set plaz.enableDataAccess=false items", "messages: id", "17-1557")
        self.expect("--set plaz.enableDataAccess=false items", "items: name")
        self.catalog_file.write_text("{")
        self.check_shown(self.run_plaz("why-not zzzz", status=1).stderr, "17-2339", "plaz refresh tclscripts")
        self.check_shown(self.run_plaz("why boards::hikari", status=1).stderr, "17-2165", "17-2294")
        for command in ("why-not", "install --dry-run"):
            told = self.run_plaz(f"--set plaz.enableRemoteAccess=false {command} hikari", status=1).stderr
            self.check_shown(told, "17-1559", "17-2291", never=["17-1567"])
        self.hub_file.unlink()
        self.expect("items", "messages: id", "17-1569", status=1)

    def test_json_stays_alone_on_standard_output(self):
        """Catches: the debug log, or a child, writing between the brackets of the document; a text that turns what the
        terminal shows; items not in the log."""
        result = self.run_plaz("--json --set plaz.enableLog=true install string-kit")
        self.check("document", json.loads(result.stdout)["items"][0]["outcome"], "installed")
        self.check_shown(result.stderr, "Inside HSCPlazMgr::initHub")
        state = r"apply name: string-kit is_installed: 1 needs_refresh: 0 local_dir: /\S+/string-kit "
        state += r"installation_mode: user is_latest: 1 latest_rev: 1.0 source: 0 commit_id: [0-9a-f]{40}\n"
        self.assertRegex(result.stderr, state)
        turned = self.run_plaz("--json info a\u202eb", status=1).stdout
        self.check("turned", ("\\u202e" in turned, "\u202e" in turned), (True, False))

    def test_ctrl_c_cancels(self):
        """Catches: a Ctrl-C that waits for git, leaves it running, is told as a failure of git or costs a catalog."""
        mark = self.dir / "git.pid"
        self.lay_git(f"echo $$ > {mark}\necho fatal: stopped\nexec sleep 100")
        cases = {"install string-kit aurora": "items 1", "refresh": "qstores 1", "refresh --hub": "qstores 0"}
        for command, begun in {**cases, "doctor": "checks 0"}.items():
            with self.subTest(command):
                process = subprocess.Popen([PLAZ, "--json", *command.split()], env=self.env, **TEXT)
                git = wait_for(mark)
                process.send_signal(signal.SIGINT)
                out, err = process.communicate(timeout=20)
                self.assertEqual((process.returncode, "stopped" in out + err), (130, False), err)
                document, results = json.loads(out), begun.split()[0]
                self.assertEqual((document["ok"], f"{results} {len(document[results])}"), (False, begun))
                self.assertRaises(ProcessLookupError, os.kill, git, 0)
                mark.unlink()
        self.check_installed()
        self.check("items", len(self.run_json("items")["items"]), 16)

    def test_refreshes_the_hub_itself(self):
        """Catches: a new store without a name, a failed one that stops others or never gets a place, a hub that is gone
        yet refreshed, or forgotten."""

        def add_stores(hub):
            stores = hub["plaz"]["qstores"]
            for name, repository in (("more", "tcl-store.git"), ("gone", "nowhere")):
                change = {"name": name, "url": (self.repositories / repository).as_uri()}
                stores.append({**stores[1], **change, "config": {**stores[1]["config"], "root": name}})

        # What a store's branch is called is known once its metadata has come from "master".
        succeed("git", "-C", self.repositories / "tcl-store.git", "branch", "master", "main")
        self.commit("hub", lambda work: edit(work / "plaz.json", add_stores))
        self.expect("refresh --hub more", "qstores: name outcome", "more refreshed", "gone failed", status=1)
        self.check("items of a new store", len(self.run_json("items --store more")["items"]), 8)
        shutil.copytree(self.repositories / "tcl-store.git", self.repositories / "nowhere")
        self.expect("refresh gone", "qstores: outcome", "refreshed")
        self.expect("install gone::string-kit", "items: outcome", "installed")
        self.check_shown(self.run_plaz("refresh --hub nonsense", status=1).stderr, "tclscripts, more, gone")
        shutil.rmtree(self.repositories / "hub.git")
        self.check("hub that is gone", self.ask("refresh --hub", "messages: id", status=1)[-2:], ["17-2194", "17-2366"])

    def test_chooses_a_hub_and_keeps_own_stores(self):
        """Catches: an empty hub that nothing leads out of, a hub that is left half, own stores that a refresh loses or
        that are there although nothing came of them."""
        self.env["GDA_DATA_DIR"] = str(PRODUCT_DATA)
        for command in ("stores", "items"):
            self.check_shown(self.run_plaz(command).stderr, "17-2336", never=["17-1532"])
        self.check_shown(self.run_plaz("refresh --hub", status=1).stderr, "17-1532")
        self.run_plaz("hub set file:///nowhere", status=1)
        self.expect("params plaz.hub", "params: source", "default")
        told = self.run_plaz("hub set file:///nowhere", ZENTOR_PLAZ_REMOTE_REPO_PATH="file:///elsewhere").stderr
        self.check_shown(told, "17-2321", "file:///elsewhere")
        self.run_plaz("hub unset")
        hub, tcl = ((self.repositories / f"{name}.git").as_uri() for name in ("hub", "tcl-store"))
        self.expect(f"hub set {hub}", "qstores: name outcome", "boards refreshed", "tclscripts refreshed")
        self.check_shown(self.run_plaz("--product-version 2025.1 stores").stderr, "17-2360", hub, never=["17-2336"])
        self.check_shown(self.run_plaz("hub add-store a https://me:geheim@h/x", status=1).stderr, never=["geheim"])
        self.run_plaz(f"hub add-store mine {tcl}", status=1)  # its metadata file has no usual name
        self.run_plaz("hub add-store mine file:///nowhere --metadata-file a.json", status=1)
        self.check("leftovers", [*self.home.glob("2024.2/plaz/*_store_*")], [])
        self.run_plaz(f"hub add-store boards {tcl} --metadata-file tcl_store.json", status=1)
        self.expect(f"hub add-store mine {tcl} --metadata-file tcl_store.json", "qstores: name items", "mine 8")
        self.expect("install mine::string-kit", "items: outcome", "installed")
        self.run_plaz("refresh --hub")
        stores = ("boards hub", "tclscripts hub", "mine yours")
        self.expect("hub", "hub qstores: name of", *stores)
        self.commit(
            "hub", lambda work: edit(work / "plaz.json", lambda all: all["plaz"]["qstores"][1].update(name="mine"))
        )
        self.check_shown(self.run_plaz("refresh --hub").stderr, "17-2333")
        self.expect("hub", "hub qstores: name of", "boards hub", "mine hub")
        self.run_plaz("hub unset")
        self.expect("hub", "hub qstores: name of", "mine yours")
        told = self.run_plaz("hub remove-store mine").stderr
        self.check_shown(told, "17-2331", "17-2292", "--store mine", never=["17-2178", "17-2295"])
        self.check_shown(self.run_plaz("stores").stdout, "(no longer offered; what is installed stays)")
        self.expect("stores", "qstores: name is_listed", "mine False")
        self.expect("hub", "hub qstores: name of", "mine nobody")
        self.expect("items --installed", "items: store name", "mine string-kit")
        self.run_plaz("hub remove-store mine", status=1)
        boards, area = (self.repositories / "boards-store.git").as_uri(), self.home / "2024.2/plaz"
        for kind, folder in (("", "ced_store_b"), ("--type board", "board_store_b")):
            self.run_plaz(f"hub add-store b {boards} --metadata-file boards_store.json {kind}")
            self.assertTrue((area / folder / "boards_store.json").is_file())
            self.check_shown(self.run_plaz("hub remove-store b").stderr, never=["17-2295"])
            self.check("left", (area / folder).exists(), False)
        self.run_plaz(f"hub add-store b {boards} --metadata-file boards_store.json --type board")
        (area / "board_store_b/mine.txt").write_text("mine")
        self.check_shown(self.run_plaz("hub remove-store b").stderr, "17-2295", str(area / "board_store_b"))
        self.check("mine", sorted(file.name for file in (area / "board_store_b").iterdir()), ["mine.txt"])

    def test_a_hub_that_cannot_be_used_is_no_empty_one(self):
        """Catches: success where nobody knows which stores there are, and no way back from there."""

        # What cannot even be read is told until somebody mends it.
        for damage, status in ((lambda file: file.write_text("{"), 0), (hide, 1)):
            for installed in ("", "string-kit"):
                self.setUp()
                if installed:
                    self.run_plaz(f"install {installed}")
                damage(self.hub_file)
                for command in ("stores", "items", "refresh", "check", "update --all"):
                    self.check_shown(self.run_plaz(command, status=1).stderr, str(self.hub_file))
                self.run_plaz("refresh --hub", status=status)
                self.expect("stores", "qstores: name", "boards", "tclscripts")

    def test_check_without_an_answer_is_no_good_news(self):
        """Catches: a remote that is gone, has lost the branch, or may not be asked, told as up to date."""
        self.run_plaz("refresh")
        offline = "--set plaz.enableRemoteAccess=false check boards"
        self.expect(offline, "qstores: outcome", "unknown", status=1)
        self.expect(offline, "messages: id", "17-1559", status=1)
        self.edit_stores({"url": (self.dir / "nowhere").as_uri()}, first=1)
        self.expect("check", "qstores: outcome", "up-to-date", "unknown", status=1)
        self.check_shown(self.run_json("check", status=1)["error"], "nowhere")
        succeed("git", "init", "--bare", self.dir / "nowhere")
        self.check_shown(self.run_json("check tclscripts", status=1)["error"], "no branch")
