"""Runs the real program on stores that real servers hand out, and looks for secrets in all that it leaves behind.

    network_test.py PLAZ MAKE_SAMPLE_HUB PRODUCT_DATA [unittest arguments]
"""

import base64
import contextlib
import fcntl
import json
import os
import pathlib
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import termios
import unittest
import urllib.parse

import servers
from servers import HOST, Fault

PLAZ, MAKE_SAMPLE_HUB, PRODUCT_DATA = (pathlib.Path(arg).resolve() for arg in sys.argv[1:4])
SYSTEM_BUNDLE = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
CREDENTIALS = ("hub+us@er", "s3cr3t/:en%40+")
WRONG = (CREDENTIALS[0], "wr0ng/:t0k3n")
PROXY_CREDENTIALS = ("pr0xy-user", "pr0xy-t0k3n")  # tinyproxy takes nothing but letters, digits and "-"
# The repository of each store, and an item there.
STORES = {"tclscripts": ("tcl-store", "scripts/string-kit"), "boards": ("boards-store", "boards/hikari")}
BOARD_PARAMETERS = ("plaz.git_user.board_store={}", "plaz.git_token.board_store={}")


def answer(status, header, body=""):
    return f"HTTP/1.1 {status}\r\nContent-Length: {len(body)}\r\nConnection: close\r\n{header}\r\n\r\n{body}".encode()


# Each with a part of the words that say so.
FAULTS = {
    "not there": (Fault(answer("404 Not Found", "X: x")), "not found"),
    "locked": (Fault(answer("401 Unauthorized", 'WWW-Authenticate: Basic realm="x"')), "could not read Username"),
    "failing": (Fault(answer("500 Internal Server Error", "X: x")), "500"),
    "a page": (Fault(answer("200 OK", "Content-Type: text/html", "<html>Log in</html>")), "page to log in"),
    "no HTTP": (Fault(b"\0\1\2 nonsense\r\n\r\n"), "HTTP/0.9"),
    "hanging up": (Fault(), "Empty reply"),
    "silent": (Fault(stalls=True), "stopped after 2 seconds"),
    "broken off": (Fault(passed=60000), "RPC failed"),
    "silent in a pack": (Fault(passed=60000, stalls=True), "stopped after 2 seconds"),
}


def spell(user, token):
    """Credentials as they are given, as in a URL, and as in a header."""
    headers = (base64.b64encode(text.encode()).decode().rstrip("=") for text in (f"{user}:{token}", token))
    return {user, token, urllib.parse.quote(user, safe=""), urllib.parse.quote(token, safe=""), *headers}


class NetworkTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="plaz-network-")
        self.addCleanup(temporary.cleanup)
        self.servers = pathlib.Path(temporary.name)
        self.dir = self.servers / "user"
        subprocess.run([sys.executable, MAKE_SAMPLE_HUB, self.dir, "--product-data", PRODUCT_DATA], check=True,
                       stdout=subprocess.DEVNULL)
        self.repositories = self.dir / "repos"
        self.bundle = self.dir / "tps/win64/git-2.45.0/mingw64/etc/ssl/certs/ca-bundle.crt"
        self.bundle.parent.mkdir(parents=True)
        shutil.copy(SYSTEM_BUNDLE, self.bundle)
        # It notes the command line of every program that git starts.
        self.lay_program("tps/win64/git-2.45.0/cmd/git.exe", f"GIT_TRACE={self.dir}/trace exec git \"$@\"")
        self.env = {k: v for k, v in os.environ.items()
                    if not k.startswith(("GDA_", "ZENTOR_", "GIT_", "PLAZ_")) and not k.lower().endswith("_proxy")}
        self.env.update(HOME=f"{self.dir}/home", GDA_APPDATA_DIR=f"{self.dir}/home", GDA_APPROOT=f"{self.dir}/app",
                        GDA_DATA_DIR=f"{self.dir}/data{os.pathsep}{PRODUCT_DATA}", GDA_TPS_DIR=f"{self.dir}/tps",
                        LC_ALL="C.UTF-8", PLAZ_SHOW_LOG="yes")
        self.told = ""
        self.edition = 0

    def tearDown(self):
        texts = {"output": self.told.encode()}
        texts.update((str(file), file.read_bytes()) for file in self.dir.rglob("*")
                     if file.is_file() and not file.is_symlink() and file.stat().st_mode & 0o044)
        forms = set().union(*(spell(*pair) for pair in (CREDENTIALS, WRONG, PROXY_CREDENTIALS)))
        leaks = [(form, where) for form in forms for where, text in texts.items()
                 if form.lower().encode() in text.lower()]
        self.assertEqual(leaks, [])

    def lay_program(self, name, script):
        program = self.dir / name
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\n{script}\n")
        program.chmod(0o755)

    def lead_to(self, base, private=False, credentials=None):
        """Lets the hub's metadata and configuration name a server."""
        login = {"authentication": dict(zip(("user_id", "user_token"), credentials or ("", "")))}
        own_members = {"plaz.json": {"is_private": private}, "plaz_config.json": login}
        for name, members in own_members.items():
            file = self.dir / "data/plaz" / name
            document = json.loads(file.read_text(encoding="utf-8"))
            for store in document["plaz"]["qstores"]:
                store.update(members, url=base + store["url"][store["url"].rindex("/"):])
            document["plaz"].get("remote_repository", {}).update(login, url=f"{base}/hub.git")
            servers.write(file, json.dumps(document))

    def publish(self, store="tclscripts"):
        """Commits to a store's repository. @return what an item is called there from now on"""
        work = self.servers / "work"
        work.mkdir(exist_ok=True)
        git = ["git", "-c", "user.name=A", "-c", "user.email=a@example.org",
               f"--git-dir={self.repositories / STORES[store][0]}.git", f"--work-tree={work}"]
        item = work / STORES[store][1]
        subprocess.run([*git, "reset", "--quiet", "--hard"], check=True, env=self.env)
        self.edition += 1
        display = f'"display": "Edition {self.edition}"'
        text = re.sub('"display": ".*"', display, (item / "item.json").read_text("utf-8"))
        (item / "item.json").write_text(text, "utf-8")
        (item / "changelog.txt").write_text(os.urandom(200000).hex())
        subprocess.run([*git, "commit", "--quiet", "--all", "--message", "Edition"], check=True, env=self.env)
        return f"Edition {self.edition}"

    def run_plaz(self, command, settings=(), status=0):
        """Runs the program at a terminal where nobody types. @return its document, and all that it told"""
        directory = pathlib.Path(tempfile.mkdtemp(dir=self.dir))
        settings = [f"--set={setting}" for setting in ("plaz.enableLog=true", "plaz.enableDebugGit=true", *settings)]
        keyboard, terminal = pty.openpty()
        process = subprocess.run([PLAZ, "--json", *settings, *command.split()], cwd=directory, env=self.env,
                                 stdin=terminal, stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                                 timeout=60, start_new_session=True,
                                 preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.set_blocking(keyboard, False)
        with contextlib.suppress(OSError):
            self.assertEqual(os.read(keyboard, 1000), b"")
        for end in (keyboard, terminal):
            os.close(end)
        told = process.stdout + process.stderr
        self.told += told
        self.assertIn("Inside HSCPlazMgr::initHub", (directory / "plaz.log").read_text())
        self.assertEqual(process.returncode, status, told)
        return json.loads(process.stdout), told

    def get_items(self, store="tclscripts"):
        return {item["name"]: item["display"] for item in self.run_plaz(f"items --store {store}")[0]["items"]}

    def check(self, store="tclscripts", settings=()):
        return self.run_plaz(f"check {store}", settings)[0]["qstores"][0]["outcome"]

    def refresh_twice(self, store="tclscripts", settings=()):
        """What is new comes, in the first refresh and in a later one, and an update check sees it before."""
        for is_first in (True, False):
            display = self.publish(store)
            if not is_first:
                self.assertEqual(self.check(store, settings), "outdated")
            self.run_plaz(f"refresh {store}", settings)
            self.assertIn(display, self.get_items(store).values())
            self.assertEqual(self.check(store, settings), "up-to-date")

    def fail_to_refresh(self, words, store="tclscripts", settings=()):
        """A refresh fails, says so once and why, and takes nothing away. @return the ids of its other messages"""
        before = self.get_items(store)
        document, _ = self.run_plaz(f"refresh {store}", settings, status=1)
        messages = {message["id"]: message["text"] for message in document["messages"]}
        self.assertEqual(len(messages), len(document["messages"]))
        self.assertIn(words, messages.pop("17-1990", None) or messages.pop("17-2172"))
        self.assertIn(f'"{store}"', messages.pop("17-2191"))
        self.assertEqual(self.get_items(store), before)
        return list(messages)

    def test_plain_transports(self):
        """Catches: a store that cannot be fetched over the network, or that a server's end or another URL spoils."""
        for scheme, folder, serve in (("http", "/git", servers.serve_web), ("git", "", servers.serve_git)):
            with self.subTest(scheme=scheme):
                with serve(self.repositories, self.servers / scheme) as port:
                    self.lead_to(f"{scheme}://{HOST}:{port}{folder}")
                    self.refresh_twice()
                    self.run_plaz("install text-tables")
                    self.run_plaz("uninstall text-tables")
                self.assertEqual(self.fail_to_refresh("connect"), [])

    def trust(self, authority):
        self.bundle.write_bytes(SYSTEM_BUNDLE.read_bytes() + authority.read_bytes())

    def test_certificates(self):
        """Catches: an authority in the hub's bundle that does not count, and a server that is believed without one."""
        authority, certificate = servers.make_certificates(self.servers / "keys")
        with servers.serve_web(self.repositories, self.servers / "web", certificate, CREDENTIALS) as port:
            self.lead_to(f"https://{HOST}:{port}/git", credentials=CREDENTIALS)
            self.trust(authority)
            self.refresh_twice()
            self.publish()
            shutil.copy(SYSTEM_BUNDLE, self.bundle)
            document, _ = self.run_plaz("check tclscripts", status=1)
            self.assertEqual(document["qstores"][0]["outcome"], "unknown")
            self.assertIn("certificate", document["error"])
            self.trust(authority)
            self.assertEqual(self.check(), "outdated")

    def test_credentials(self):
        """Catches: credentials that do not reach the server, that others can read on a command line or in a file, or
        without which a keyboard is waited for; wrong ones told of as if there were none."""
        with servers.serve_web(self.repositories, self.servers / "web", credentials=CREDENTIALS) as port:
            base = f"http://{HOST}:{port}/git"
            for store, private, configured, parameters, ids in (
                    ("tclscripts", True, None, (), ["17-1669"]), ("tclscripts", False, None, (), []),
                    ("tclscripts", True, WRONG, (), ["17-2169"]), ("tclscripts", True, CREDENTIALS, (), None),
                    ("tclscripts", True, WRONG, (), ["17-2169"]), ("tclscripts", True, CREDENTIALS, (), None),
                    ("boards", True, CREDENTIALS, WRONG, ["17-2169"]), ("boards", True, WRONG, CREDENTIALS, None)):
                settings = [name.format(value) for name, value in zip(BOARD_PARAMETERS, parameters)]
                with self.subTest(store=store, private=private, configured=configured, parameters=parameters):
                    self.lead_to(base, private, configured)
                    if ids is None:
                        self.refresh_twice(store, settings)
                    else:
                        words = "Authentication failed" if configured or parameters else "could not read Username"
                        self.assertEqual(self.fail_to_refresh(words, store, settings), ids)
            configs = list(self.dir.glob("home/**/.index/.git/config"))
            self.assertEqual(len(configs), 2)
            for config in configs:
                self.assertIn(urllib.parse.quote(CREDENTIALS[1], safe=""), config.read_text())
                self.assertEqual(config.stat().st_mode & 0o777, 0o600)
            self.assertIn(f"git-remote-http origin {base}", (self.dir / "trace").read_text())
            for configured, status in ((WRONG, 1), (CREDENTIALS, 0)):
                self.lead_to(base, True, configured)
                self.run_plaz("refresh --hub", status=status)

    def test_redirects(self):
        """Catches: credentials that follow a redirect to another server, a repository that has moved and is lost."""
        with servers.serve_web(self.repositories, self.servers / "open") as open_port, \
                servers.serve_web(self.repositories, self.servers / "locked", credentials=WRONG) as locked_port:
            open_place, locked_place = (f"http://{HOST}:{port}/git" for port in (open_port, locked_port))
            for number, (place, credentials, ids) in enumerate((
                    ("/git", CREDENTIALS, None), (open_place, None, None), (open_place, CREDENTIALS, None),
                    (locked_place, CREDENTIALS, ["17-2174"]))):
                with self.subTest(number), servers.serve_web(self.repositories, self.servers / f"first-{number}",
                                                             credentials=CREDENTIALS, moved_to=place) as port:
                    self.lead_to(f"http://{HOST}:{port}/moved", credentials=credentials)
                    if ids is None:
                        self.refresh_twice()
                    else:
                        self.assertEqual(self.fail_to_refresh("could not read Username"), ids)
            for directory in ("open", "locked"):
                requests = (self.servers / directory / "output").read_text()
                self.assertIn("GET /git/tcl-store.git/info/refs", requests)
                self.assertNotIn("authorization:", requests.lower())

    def test_proxies(self):
        """Catches: a proxy that is not used, not found, left out by encrypted connections, or whose password others can
        read; a proxy of yesterday."""
        authority, certificate = servers.make_certificates(self.servers / "keys")
        self.trust(authority)
        for scheme, keys in (("http", None), ("https", certificate)):
            with servers.serve_web(self.repositories, self.servers / scheme, keys, only_from=HOST) as port:
                self.lead_to(f"{scheme}://{HOST}:{port}/git")
                self.fail_to_refresh("403")
                for number, (setting, detected, credentials) in enumerate((
                        ("plaz.http_proxy=http://{}", "", ()), ("plaz.http_proxy={}", "", ()), ("", "Proxy={}", ()),
                        ("plaz.http_proxy=http://{}:{}@{}", "", PROXY_CREDENTIALS))):
                    directory = self.servers / f"{scheme}-{number}"
                    with self.subTest(directory), servers.run_proxy(directory, credentials) as proxy_port:
                        proxy = f"{HOST}:{proxy_port}"
                        self.lay_program("app/bin/zenproxy.exe", f"echo 'Looking'; echo '{detected.format(proxy)}'")
                        self.refresh_twice(settings=[setting.format(*credentials, proxy)] if setting else [])
                        requests = (directory / "log").read_text()
                        self.assertIn(f"CONNECT {HOST}:{port}" if keys else f"GET http://{HOST}:{port}/git/", requests)
                        self.told += requests

    def test_undetected_proxies(self):
        """Catches: a helper that is missing, fails or hangs and takes the refresh with it."""
        with servers.serve_web(self.repositories, self.servers / "web") as port:
            self.lead_to(f"http://{HOST}:{port}/git")
            for script in (None, "exit 1", "exec sleep 100", "echo Proxy="):
                with self.subTest(script=script):
                    if script:
                        self.lay_program("app/bin/zenproxy.exe", script)
                    shutil.rmtree(self.dir / "home")
                    document, told = self.run_plaz("refresh tclscripts", ["plaz.gitTimeout=2"])
                    self.assertEqual(document["messages"], [])
                    self.assertIn("ERROR: Failed to detect and set the proxy", told)

    def meet_faults(self, is_first):
        with servers.serve_web(self.repositories, self.servers / "web") as port:
            relay = servers.Relay(port)
            self.lead_to(f"http://{HOST}:{relay.server_address[1]}/git")
            for name, (fault, words) in FAULTS.items():
                relay.fault = None
                with self.subTest(fault=name):
                    if is_first:
                        shutil.rmtree(self.dir / "home")
                    else:
                        self.run_plaz("refresh tclscripts")
                    display = self.publish()
                    relay.fault, relay.passed = fault, b""
                    self.assertEqual(self.fail_to_refresh(words, settings=["plaz.gitTimeout=2"]), [])
                    self.assertEqual(b"PACK" in relay.passed, fault.passed > 0)
                    if not is_first and not fault.passed:
                        self.run_plaz("check tclscripts", ["plaz.gitTimeout=2"], status=1)
                    relay.fault = None
                    self.run_plaz("refresh tclscripts")
                    self.assertIn(display, self.get_items().values())

    def test_faults_at_first_refresh(self):
        """Catches: half a clone that is taken for a whole one, a server that nothing ever gives up."""
        self.meet_faults(is_first=True)

    def test_faults_at_later_refresh(self):
        """Catches: a known catalog that a broken connection takes away, or a working copy that it spoils for good."""
        self.meet_faults(is_first=False)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
