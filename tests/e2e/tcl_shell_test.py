"""Runs "plaz shell" on a sample hub: scripts, standard input and a terminal."""

import re

import pexpect

from support.hubtest import PLAZ, HubTest, run


class Terminal(pexpect.spawn):
    """A person in front of the shell, who takes leave in the end."""

    def __init__(self, test):
        env = {**test.env, "TERM": "xterm"}
        super().__init__(str(PLAZ), ["shell"], 60, cwd=test.dir, env=env, encoding="utf-8", codec_errors="replace")

    def read_nonblocking(self, *args, **kwargs):
        return re.sub(r"\x1b\[[0-9;?]*[A-Za-z]|\r", "", super().read_nonblocking(*args, **kwargs))

    def __enter__(self):
        self.expect_exact("plaz% ")
        return self

    def __exit__(self, failure, *_):
        if not failure:
            self.send("\x03")
            self.expect_exact("^C\nplaz% ")
            self.send("\x04")
            self.expect_exact(pexpect.EOF)
        self.close()
        assert failure or self.exitstatus == 0, self.exitstatus

    def enter(self, command, prompt="plaz% "):
        """@return what the command shows until the next prompt"""
        self.send(command)
        self.expect_exact(command)
        self.send("\r")
        self.expect_exact(prompt)
        return self.before.strip()


class TclShellTest(HubTest):
    def check_shell(self, name, status, printed, told, *args, text=""):
        """Prints that, and tells of nothing else than @p told, once."""
        with self.subTest(name):
            result = run(PLAZ, "shell", *args, cwd=self.dir, env=self.env, input=text)
            self.assertEqual((result.returncode, result.stdout), (status, printed), result.stderr)
            self.assertEqual(result.stderr.count(told) if told else result.stderr, 1 if told else "", result.stderr)

    def test_runs_scripts(self):
        """Catches: arguments or an exit status lost, failures told never or twice, text that depends on the locale."""
        self.env["LC_ALL"] = "C"
        failing = "puts begun\nproc p {} {plaz::install nix}\np"
        for name, script, status, printed, told in (
            ("arguments", 'puts "$argv0|$argc|$argv"', 0, "script.tcl|2|--quiet {a b}\n", ""),
            ("text and exit status", "puts [plaz::get_qitems prü*]; exit 7", 7, "prüfadapter\n", ""),
            ("failure", failing, 1, "begun\n", 'There is no item "nix"'),
            ("its place", failing, 1, "begun\n", '(file "script.tcl" line 3)'),
            ("failure of the hub", "plaz::install -quiet aurora; plaz::uninstall csv-kit", 1, "", "stays installed"),
            ("closed channels", "close stdin; close stdout; error told", 1, "", "told\n"),
        ):
            (self.dir / "script.tcl").write_text(script, encoding="utf-8")
            self.check_shell(name, status, printed, told, "script.tcl", "--quiet", "a b")
        self.check_shell("missing script", 1, "", 'couldn\'t read file "missing.tcl"', "missing.tcl")
        self.run_plaz("shell --json", status=2)

    def test_runs_what_standard_input_says(self):
        """Catches: results among a script's output, data read past the commands, one that goes on after a failure."""
        data = "plaz::get_qstores\ngets stdin line\ndata\nputs <$line>\nset x {\n1}\n"
        self.check_shell("data among commands", 0, "<data>\n", "", text=data)
        self.check_shell("failure", 1, "", 'invalid command name "nix"', text="nix\nputs on\n")
        self.check_shell("unfinished command", 1, "", "missing", text="puts {never")
        self.check_shell("no line end", 0, "end\n", "", text="puts end")

    def test_answers_a_person(self):
        """Catches: no prompt, results not shown, an error that ends the shell, a command of two lines taken for two."""
        with Terminal(self) as terminal:
            self.check("result", terminal.enter("plaz::get_qstores"), "boards tclscripts")
            self.check_shown(terminal.enter("plaz::install nix"), "no item")
            terminal.enter("expr {6 *", prompt="> ")
            self.check("two lines", terminal.enter("7}"), "42")

    def test_completes(self):
        """Catches: completion that does nothing, offers something else or crashes."""
        (self.dir / "script.tcl").touch()
        for keys, shown in (
            ("plaz::get_qs\t", "plaz::get_qstores "),
            ("plaz::install hik\t", "hikari "),
            ("plaz::get_qitems -st\tboa\t", "-store boards "),
            ("get_param rawG\x15\x0bset_param plaz.raw\t", "plaz.rawGitUrl "),
            ("source scr\t", "script.tcl "),
            ("plaz::get_qitems c\t\t", "connectors-common\ncsv-kit\n"),
            ("source ~no-such-user/\t", "~no-such-user/"),
        ):
            with self.subTest(keys), Terminal(self) as terminal:
                terminal.send(keys)
                terminal.expect_exact(shown)

    def test_ctrl_c_stops_a_loop(self):
        """Catches: Ctrl-C that ends the shell, cannot stop a loop or works once only."""
        with Terminal(self) as terminal:
            for _ in range(2):
                terminal.enter("puts begun; while 1 {catch {incr i}}", prompt="begun\n")
                terminal.send("\x03")
                terminal.expect_exact("plaz% ")
                self.assertIn("[17-2190]", terminal.before)

    def test_keeps_a_history(self):
        """Catches: history that is lost, that another shell overwrites, that keeps secrets or that others can read."""
        with Terminal(self) as other:
            with Terminal(self) as terminal:
                terminal.enter("expr {6 * 7}")
                terminal.enter("set_param plaz.git_token.board_store abcdef")
                terminal.enter("set p x; set_param $p abcdef")
                terminal.send("\x10")
                terminal.expect_exact("expr {6 * 7}")
            other.enter("set b 2")
        history = self.home / "plaz_shell_history"
        self.check("rights of others", history.stat().st_mode & 0o077, 0)
        self.check_shown(history.read_text(), never=["abcdef"])
        with Terminal(self) as terminal:
            terminal.send("\x10\x10")
            terminal.expect_exact("expr {6 * 7}")
