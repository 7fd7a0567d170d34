"""Catches: completion that offers nothing, the wrong thing or too much, in the shells that people have."""

import os
import shutil

import pexpect

from support.hubtest import PLAZ, TREE, HubTest, run

SCRIPTS = TREE / "apps/shell/completion"
SHELLS = {
    "bash": (["--norc", "--noprofile"], f"source {SCRIPTS}/plaz.bash"),
    "zsh": (["-f"], f"fpath=({SCRIPTS} $fpath); autoload -Uz compinit; compinit -u -D"),
    "fish": (["--no-config"], f"source {SCRIPTS}/plaz.fish"),
}
# What is typed before a tab, and what stands there then.
COMPLETED = {
    "plaz unin": "uninstall",
    "plaz hub remo": "remove-store",
    "plaz help hub remo": "remove-store",
    "plaz hub set sa": "sample",
    "plaz items --st": "--store",
    "plaz items --sort=rel": "relevance",
    "plaz --set plaz.hu": "plaz.hub=",
    "plaz refresh boa": "boards",
    "plaz install boards::aur": "aurora",
    "plaz install 計": "計測",
    "plaz uninstall ": "string-kit",
    f"plaz validate {TREE}/CMakeL": "CMakeLists.txt",
}


class CompletionTest(HubTest):
    def complete(self, command):
        """@return what may stand behind the command; nothing else may be said"""
        env = {**self.env, "PLAZ_ENABLELOG": "true"}
        result = run(PLAZ, "complete", "plaz", *command.split(), "", cwd=self.dir, env=env)
        self.check(command, (result.stderr, result.returncode), ("", 0))
        return result.stdout

    def test_offers_what_is_there(self):
        """Catches: commands offered that were taken back, or the oldest first; damage, or the log, told amid a line."""
        for command in ("install string-kit", "uninstall string-kit", "undo", "set plaz.gitTimeout 30"):
            self.run_plaz(command)
        entries = "3\tundo 2\n1\tinstall tclscripts::string-kit\n"
        self.check("entries", self.complete("undo"), entries)
        files = [*self.home.rglob("*.json"), *self.data.rglob("*_catalog.json")]
        self.assertIn("preferences.json", [file.name for file in files])
        for file in files:
            shutil.copy(file, self.dir / "kept")
            file.write_text("{")
            for command in ("undo", "uninstall", "unhold", "items --category", "--set"):
                self.complete(command)
            self.check(file.name, self.complete("refresh"), "boards\tSample boards\ntclscripts\tSample Tcl scripts\n")
            shutil.copy(self.dir / "kept", file)

    def test_shells(self):
        self.run_plaz("install string-kit")
        env = {
            **self.env,
            "PATH": f"{PLAZ.parent}{os.pathsep}{os.environ['PATH']}",
            "TERM": "xterm",
            "LC_ALL": "C.UTF-8",
        }
        env["HOME"] = str(self.dir)
        for shell, (options, setup) in SHELLS.items():
            typist = pexpect.spawn(shell, options, env=env, encoding="utf-8", timeout=20, dimensions=(40, 200))
            self.addCleanup(typist.close, force=True)
            typist.sendline(f"{setup}; echo rea''dy")
            typist.expect("ready\r\n")
            for typed, completed in COMPLETED.items():
                with self.subTest(shell=shell, typed=typed):
                    typist.send(f"{typed}\t")
                    typist.expect_exact(completed)
                typist.send("\x15")  # the line goes
