"""Runs "plaz shell" on a sample hub: scripts, standard input and a terminal.

    tcl_shell_test.py PLAZ MAKE_SAMPLE_HUB PRODUCT_DATA USER_GUIDE [unittest arguments]
"""

import os
import pathlib
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest

PLAZ, MAKE_SAMPLE_HUB, PRODUCT_DATA, USER_GUIDE = (pathlib.Path(arg).resolve() for arg in sys.argv[1:5])

SCRATCH = tempfile.TemporaryDirectory(prefix="plaz-tcl-")  # gone at the end of the process
SAMPLE = pathlib.Path(SCRATCH.name) / "sample"


class Terminal:
    """A person in front of the shell."""

    def __init__(self, env, cwd):
        self.seen = ""
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.chdir(cwd)
            os.execve(PLAZ, [PLAZ, "shell"], {**env, "TERM": "xterm"})

    def see(self, text):
        """Waits until @p text is shown behind what has been waited for. @return what stood before it"""
        deadline = time.monotonic() + 60
        while text not in self.seen:
            if not select.select([self.fd], [], [], max(0, deadline - time.monotonic()))[0]:
                raise AssertionError(f"{text!r} does not come: {self.seen!r}")
            shown = os.read(self.fd, 4096).decode(errors="replace")
            self.seen += re.sub(r"\x1b\[[0-9;?]*[A-Za-z]|\r", "", shown)
        before, self.seen = self.seen.split(text, 1)
        return before

    def type(self, keys):
        os.write(self.fd, keys.encode())

    def enter(self, command):
        """@return what the command shows until the next prompt"""
        self.type(command)
        self.see(command)
        self.type("\r")
        return self.see("plaz% ").strip()

    def drop(self):
        """Throws away what is typed."""
        self.type("\x03")
        self.see("^C\n")
        self.see("plaz% ")

    def end(self):
        self.drop()
        self.type("\x04")
        try:
            while shown := os.read(self.fd, 4096):
                self.seen += shown.decode(errors="replace")
        except OSError:  # what the system says when the other side is closed
            pass
        status = os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])
        if status != 0:
            raise AssertionError(f"the shell ends with {status}: {self.seen!r}")


class TclShellTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, SAMPLE, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)

    def setUp(self):
        self.dir = pathlib.Path(tempfile.mkdtemp(dir=SCRATCH.name))
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_"))}
        self.env.update(HOME=str(self.dir), GDA_APPDATA_DIR=str(self.dir / "area"), LC_ALL="C.UTF-8",
                        GDA_DATA_DIR=f"{SAMPLE / 'data'}{os.pathsep}{PRODUCT_DATA}")

    def run_shell(self, *args, text=""):
        return subprocess.run([PLAZ, "shell", *args], cwd=self.dir, env=self.env, input=text, encoding="utf-8",
                              timeout=120, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run_script(self, text, *args):
        (self.dir / "script.tcl").write_text(text, encoding="utf-8")
        return self.run_shell("script.tcl", *args)

    def test_runs_scripts(self):
        """Catches: arguments taken by the program, a lost exit status, a failure not told, without its place or told
        twice, text that depends on the locale, a crash where a channel is closed."""
        self.env["LC_ALL"] = "C"
        result = self.run_script("puts \"$argv0|$argc|$argv|[plaz::get_qitems pr\u00fc*]\"; exit 7", "--quiet", "a b")
        self.assertEqual((result.returncode, result.stdout), (7, "script.tcl|2|--quiet {a b}|pr\u00fcfadapter\n"))
        result = self.run_script("puts begun\nproc p {} {plaz::install nix}\np")
        self.assertEqual((result.returncode, result.stdout), (1, "begun\n"))
        self.assertIn('There is no item "nix"', result.stderr)
        self.assertIn('(file "script.tcl" line 3)', result.stderr)
        result = self.run_script("plaz::install aurora; plaz::uninstall csv-kit")
        self.assertEqual((result.returncode, result.stderr.count("stays installed")), (1, 1))
        result = self.run_shell("missing.tcl")
        self.assertEqual(result.returncode, 1)
        self.assertIn('couldn\'t read file "missing.tcl"', result.stderr)
        self.assertEqual(self.run_script("close stdin; close stdout; error told").stderr.split("\n")[0], "told")
        self.assertEqual(self.run_shell("--json").returncode, 2)

    def test_runs_what_standard_input_says(self):
        """Catches: results or a prompt among a script's output, commands that go on after one failed, data read past the
        commands, an unfinished command that passes."""
        result = self.run_shell(text="plaz::get_qstores\ngets stdin line\ndata\nputs <$line>\nset x {\n1}\nnix\nputs on\n")
        self.assertEqual((result.returncode, result.stdout), (1, "<data>\n"))
        self.assertIn('invalid command name "nix"', result.stderr)
        self.assertEqual(self.run_shell(text="puts {never").returncode, 1)
        self.assertEqual(self.run_shell(text="puts end").stdout, "end\n")

    def test_runs_the_example_of_the_user_guide(self):
        """Catches: documentation that does not work."""
        guide = USER_GUIDE.read_text(encoding="utf-8").split("\n## In Tcl\n")[1].split("\n## ")[0]
        blocks = re.findall(r"```tcl\n(.*?)```\n\n```\n(.*?)```", guide, re.S)
        self.assertTrue(blocks)
        for script, output in blocks:
            result = self.run_script(script)
            self.assertEqual((result.returncode, result.stdout), (0, output), result.stderr)

    def test_serves_a_person(self):
        """Catches: no prompt, results not shown, completion or history that does nothing or keeps secrets, Ctrl-C that
        ends the shell, cannot stop a loop or works once only, an error that ends the shell."""
        terminal = Terminal(self.env, self.dir)
        terminal.see("plaz% ")
        self.assertEqual(terminal.enter("plaz::get_qstores"), "boards tclscripts")
        for typed, completed in (("plaz::get_qs\t", "plaz::get_qstores "), ("plaz::install hik\t", "hikari "),
                                 ("plaz::get_qitems -st\tboa\t", "-store boards "), ("get_param rawG\x15\x0bset_param plaz.raw\t", "plaz.rawGitUrl "),
                                 ("source scr\t", "script.tcl ")):
            (self.dir / "script.tcl").touch()
            terminal.type(typed)
            terminal.see(completed)
            terminal.drop()
        terminal.type("plaz::get_qitems c\t\t")
        terminal.see("connectors-common\ncsv-kit\n")
        terminal.drop()
        terminal.type("source ~no-such-user/\t")
        terminal.drop()
        self.assertIn("no item", terminal.enter("plaz::install nix"))
        terminal.type("expr {6 *\r")
        terminal.see("> ")
        self.assertEqual(terminal.enter("7}"), "42")
        for _ in range(2):
            terminal.type("puts begun; while 1 {catch {incr i}}\r")
            terminal.see("begun\n")
            terminal.type("\x03")
            self.assertIn("[17-2190]", terminal.see("plaz% "))
        other = Terminal(self.env, self.dir)
        other.see("plaz% ")
        for secret in ("set_param plaz.git_token.board_store abcdef", "set p x; set_param $p abcdef"):
            terminal.enter(secret)
        terminal.type("\x10")
        terminal.see("puts begun")
        terminal.end()
        history = self.dir / "area/plaz_shell_history"
        self.assertEqual(history.stat().st_mode & 0o077, 0)
        self.assertNotIn("abcdef", history.read_text())
        other.enter("set b 2")
        other.end()
        terminal = Terminal(self.env, self.dir)
        terminal.see("plaz% ")
        terminal.type("\x10\x10\x10")
        terminal.see("expr {6 *")
        terminal.end()


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]])
