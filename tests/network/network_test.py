"""Runs the real program on stores that real servers hand out, and looks for secrets in all that it leaves behind."""

import base64
import json
import pathlib
import shlex
import shutil
import tempfile
import urllib.parse

from network import servers
from network.servers import HOST, Fault
from support.hubtest import PLAZ, SCRATCH, HubTest, edit, run

SYSTEM_BUNDLE = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
CREDENTIALS = ("hub+us@er", "s3cr3t/:en%40+")
WRONG = (CREDENTIALS[0], "wr0ng/:t0k3n")
PROXY_CREDENTIALS = ("pr0xy-user", "pr0xy-t0k3n")  # tinyproxy takes nothing but letters, digits and "-"
REPOSITORIES = {"tclscripts": "tcl-store", "boards": "boards-store"}
BOARD_PARAMETERS = ("plaz.git_user.board_store={}", "plaz.git_token.board_store={}")


def answer(status, header, body=""):
    return f"HTTP/1.1 {status}\r\nContent-Length: {len(body)}\r\nConnection: close\r\n{header}\r\n\r\n{body}".encode()


# Many branches, as a server tells of them.
BRANCHES = b"".join(b"003d%040x refs/heads/%05d\n" % (1, number) for number in range(1000))
ADVERTISEMENT = b"HTTP/1.1 200 OK\r\nContent-Type: application/x-git-upload-pack-advertisement\r\n\r\n"

# Each with a part of the words that say so, and with the message of the limit that it meets.
FAULTS = {
    "not there": (Fault(answer("404 Not Found", "X: x")), "not found"),
    "failing": (Fault(answer("500 Internal Server Error", "X: x")), "500"),
    "a page": (Fault(answer("200 OK", "Content-Type: text/html", "<html>Log in</html>")), "page to log in"),
    "no HTTP": (Fault(b"\0\1\2 nonsense\r\n\r\n"), "HTTP/0.9"),
    "hanging up": (Fault(), "Empty reply"),
    "silent": (Fault(stalls=True), "stopped after 2 seconds", "17-2275"),
    "endless": (Fault(ADVERTISEMENT, endless=BRANCHES), "ut of memory", "17-2276"),
    "broken off": (Fault(passed=60000), "RPC failed"),
    "silent in a pack": (Fault(passed=60000, stalls=True), "stopped after 2 seconds", "17-2275"),
}


def spell(user, token):
    """Credentials as they are given, as in a URL, and as in a header."""
    headers = (base64.b64encode(text.encode()).decode().rstrip("=") for text in (f"{user}:{token}", token))
    return {user, token, urllib.parse.quote(user, safe=""), urllib.parse.quote(token, safe=""), *headers}


class NetworkTest(HubTest):
    def setUp(self):
        super().setUp()
        self.servers = pathlib.Path(tempfile.mkdtemp(dir=SCRATCH.name))
        # It notes the command line of every program that git starts.
        self.lay_git(f'GIT_TRACE={self.dir}/trace exec git "$@"', SYSTEM_BUNDLE.read_text())
        self.env.update(GDA_APPROOT=f"{self.dir}/app", PLAZ_SHOW_LOG="yes")
        self.told, self.edition = "", 0

    def tearDown(self):
        """Nothing that others can read holds a secret."""
        texts = {"output": self.told.encode()}
        for file in self.dir.rglob("*"):
            if file.is_file() and not file.is_symlink() and file.stat().st_mode & 0o044:
                texts[str(file)] = file.read_bytes()
        forms = set().union(*(spell(*pair) for pair in (CREDENTIALS, WRONG, PROXY_CREDENTIALS)))
        for form in forms:
            self.check(form, [where for where, text in texts.items() if form.lower().encode() in text.lower()], [])

    def lead_to(self, base, private=False, credentials=None):
        """Lets the hub's metadata and configuration name a server."""
        login = {"authentication": dict(zip(("user_id", "user_token"), credentials or ("", "")))}
        for name, members in (("plaz.json", {"is_private": private}), ("plaz_config.json", login)):

            def change(document):
                for store in document["plaz"]["qstores"]:
                    store.update(members, url=f"{base}/{store['url'].rpartition('/')[2]}")
                document["plaz"].get("remote_repository", {}).update(login, url=f"{base}/hub.git")

            edit(self.data / "plaz" / name, change)
            (self.data / "plaz" / name).chmod(0o600)

    def publish(self, store="tclscripts"):
        """@return what an item is called from now on"""
        self.edition += 1
        super().publish(REPOSITORIES[store], f"Edition {self.edition}")
        return f"Edition {self.edition}"

    def run_plaz(self, command, settings=(), status=0):
        """Runs the program at a terminal where nobody types. @return its document, and all that it told"""
        directory = pathlib.Path(tempfile.mkdtemp(dir=self.dir))
        settings = [f"--set={setting}" for setting in ("plaz.enableLog=true", *settings)]
        line = shlex.join([str(PLAZ), "--json", *settings, *command.split()]) + " >out 2>err"
        terminal = run("script", "--quiet", "--return", "--command", line, "/dev/null", cwd=directory, env=self.env)
        self.assertEqual(terminal.stdout, "")
        document, told = ((directory / name).read_text("utf-8") for name in ("out", "err"))
        told = document + told
        self.told += told
        self.assertIn("Inside HSCPlazMgr::initHub", (directory / "plaz.log").read_text())
        self.assertEqual(terminal.returncode, status, told)
        return json.loads(document), told

    def get_items(self, store="tclscripts"):
        return {item["name"]: item["display"] for item in self.run_plaz(f"items --store {store}")[0]["items"]}

    def check_remote(self, store="tclscripts", settings=()):
        return self.run_plaz(f"check {store}", settings)[0]["qstores"][0]["outcome"]

    def refresh_twice(self, store="tclscripts", settings=()):
        """What is new comes, in the first refresh and in a later one, which goes on from the same working copy, and an
        update check sees it before."""
        marks = []
        for is_first in (True, False):
            display = self.publish(store)
            if not is_first:
                self.assertEqual(self.check_remote(store, settings), "outdated")
                marks = [directory / "mark" for directory in self.home.glob("**/.index/.git")]
            for mark in marks:
                mark.touch()
            _, told = self.run_plaz(f"refresh {store}", settings)
            self.assertEqual([mark for mark in marks if not mark.exists()], [])
            self.assertIn(f"executing: {self.dir}", told)
            self.assertIn(display, self.get_items(store).values())
            self.assertEqual(self.check_remote(store, settings), "up-to-date")

    def fail_to_refresh(self, words, ids, store="tclscripts", settings=()):
        """A refresh fails, says so once and why, sends these other messages, and takes nothing away."""
        before = self.get_items(store)
        document, _ = self.run_plaz(f"refresh {store}", settings, status=1)
        messages = {message["id"]: message["text"] for message in document["messages"]}
        self.assertEqual(len(messages), len(document["messages"]))
        messages.pop("17-2366", None)
        self.assertIn(words, messages.pop("17-1990", None) or messages.pop("17-2172"))
        self.assertIn(f'"{store}"', messages.pop("17-2191"))
        self.assertEqual((list(messages), self.get_items(store)), (ids, before))

    def serve(self, name, **options):
        return servers.serve_web(self.repositories, self.servers / name, **options)

    def test_plain_transports(self):
        """Catches: a store that cannot be fetched over the network, or that a server's end or another URL spoils."""
        git = servers.serve_git(self.repositories, self.servers / "git")
        for scheme, folder, server in (("http", "/git", self.serve("http")), ("git", "", git)):
            with self.subTest(scheme):
                with server as address:
                    self.lead_to(f"{scheme}://{address}{folder}")
                    self.refresh_twice()
                    self.run_plaz("install text-tables")
                    self.run_plaz("uninstall text-tables")
                self.fail_to_refresh("connect", [])

    def trust(self, *authorities):
        self.bundle.write_bytes(b"".join(file.read_bytes() for file in (SYSTEM_BUNDLE, *authorities)))

    def refuse(self, command, address, reason, settings=()):
        """A command fails and says once which server it does not believe, why, and what to do."""
        document, told = self.run_plaz(command, settings, status=1)
        texts = [message["text"] for message in document["messages"] if message["id"] == "17-2260"]
        shown = (f'"https://{address}"', reason, "plaz.certificateFile", "plaz.enableCertificateCheck")
        self.check(command, [[part in text for part in shown] for text in texts], [[True] * len(shown)])
        self.check_shown(told, "certificate")

    def test_servers_that_pretend(self):
        """Catches: a catalog from, or a login for, a server that only pretends; a way in that leads nowhere."""
        authority, good = servers.make_certificates(self.servers / "keys")
        other, untrusted = servers.make_certificates(self.servers / "other")
        cases = {
            "untrusted": (untrusted, "no authority"),
            "expired": (servers.make_certificates(self.servers / "old", authority, days=-1)[1], "date"),
            "wrong name": (servers.make_certificates(self.servers / "name", authority, "127.0.0.9")[1], "another name"),
        }
        self.env.update(GIT_SSL_NO_VERIFY="1", GIT_SSL_CAINFO="/dev/null")
        self.trust(authority)
        unchecked = "plaz.enableCertificateCheck=false"
        with self.serve("good", certificate=good, credentials=CREDENTIALS) as good_address:
            relay = servers.Relay(good_address)
            self.lead_to(f"https://{relay.address}/git", credentials=CREDENTIALS)
            for kind, (certificate, reason) in cases.items():
                relay.lead_to(good_address)
                self.run_plaz("refresh tclscripts")
                before = self.get_items()
                with self.serve(kind, certificate=certificate, credentials=CREDENTIALS) as address:
                    relay.lead_to(address)
                    self.publish()
                    for command in ("check tclscripts", "refresh tclscripts", "refresh --hub"):
                        self.refuse(command, relay.address, reason)
                    self.refuse("refresh tclscripts", relay.address, reason, [unchecked])
                    for index in self.home.glob("**/.index"):
                        shutil.rmtree(index)
                    self.refuse("install text-tables", relay.address, reason)
                    self.check(kind, self.get_items(), before)
                    self.check_shown((self.servers / kind / "output").read_text().lower(), never=["authorization:"])
                    self.refresh_twice(settings=[unchecked, f"plaz.uncheckedServers=x, {relay.address}"])
                    if kind == "untrusted":
                        with_key = self.servers / "with_key.pem"
                        with_key.write_bytes(certificate.read_bytes() + other.read_bytes())
                        self.refresh_twice(settings=[f"plaz.certificateFile={with_key}"])
                        kept = next(self.home.glob("**/plaz_authorities.pem")).read_text()
                        self.check_shown(kept, "BEGIN CERTIFICATE", never=["PRIVATE KEY"])
        with self.serve("open", certificate=untrusted) as address:
            self.lead_to(f"https://{address}/git")
            self.refresh_twice(settings=[unchecked])
        with self.serve("locked", certificate=untrusted, credentials=CREDENTIALS) as address:
            self.lead_to(f"https://{address}/git")
            servers.write(self.home / ".netrc", "machine {} login {} password {}".format(HOST, *CREDENTIALS))
            self.fail_to_refresh("could not read Username", [], settings=[unchecked])
            self.check_shown((self.servers / "locked" / "output").read_text().lower(), never=["authorization:"])

    def test_credentials(self):
        """Catches: credentials lost, read by others or asked for at a keyboard; wrong ones told of as none."""
        cases = (  # store, whether it is private, what is configured, parameters, messages where they are refused
            ("tclscripts", True, None, (), ["17-1669"]),
            ("tclscripts", False, None, (), []),
            ("tclscripts", True, WRONG, (), ["17-2169"]),
            ("tclscripts", True, CREDENTIALS, (), None),
            ("tclscripts", True, WRONG, (), ["17-2169"]),
            ("tclscripts", True, CREDENTIALS, (), None),
            ("boards", True, CREDENTIALS, WRONG, ["17-2169"]),
            ("boards", True, WRONG, CREDENTIALS, None),
        )
        with self.serve("web", credentials=CREDENTIALS) as address:
            for number, (store, private, configured, parameters, ids) in enumerate(cases):
                settings = [name.format(value) for name, value in zip(BOARD_PARAMETERS, parameters)]
                with self.subTest(case=cases[number], number=number):
                    self.lead_to(f"http://{address}/git", private, configured)
                    if ids is None:
                        self.refresh_twice(store, settings)
                    else:
                        words = "Authentication failed" if configured or parameters else "could not read Username"
                        self.fail_to_refresh(words, ids, store, settings)
            configs = list(self.home.glob("**/.index/.git/config"))
            self.check("rights of others", [config.stat().st_mode & 0o777 for config in configs], [0o600] * 2)
            for config in configs:
                self.check_shown(config.read_text(), urllib.parse.quote(CREDENTIALS[1], safe=""))
            self.check_shown((self.dir / "trace").read_text(), f"git-remote-http origin http://{address}/git")
            for configured, status in ((WRONG, 1), (CREDENTIALS, 0)):
                with self.subTest(hub=configured):
                    self.lead_to(f"http://{address}/git", True, configured)
                    self.run_plaz("refresh --hub", status=status)

    def test_board_login(self):
        """Catches: the login for boards at any server that calls itself one of boards, or lost silently."""
        login = [name.format(value) for name, value in zip(BOARD_PARAMETERS, CREDENTIALS)]
        with self.serve("first", credentials=CREDENTIALS) as first, self.serve(
            "next", credentials=CREDENTIALS
        ) as second:
            self.lead_to(f"http://{first}/git")
            self.refresh_twice("boards", login)
            self.lead_to(f"http://{second}/git")
            self.assertIn("17-2262", self.run_plaz("check boards", login, status=1)[1])
            self.fail_to_refresh("could not read Username", ["17-2262"], "boards", login)
            requests = (self.servers / "next" / "output").read_text().lower()
            self.check_shown(requests, "info/refs", never=["authorization:"])
            self.refresh_twice("boards", [*login, f"plaz.git_servers.board_store=http://{second}"])

    def test_redirects(self):
        """Catches: credentials that follow a redirect to another server, a repository that has moved and is lost."""
        authority, certificate = servers.make_certificates(self.servers / "keys")
        self.trust(authority)
        secure = self.serve("secure", certificate=certificate, credentials=CREDENTIALS)
        with self.serve("open") as open_address, self.serve(
            "locked", credentials=WRONG
        ) as locked_address, secure as tls:
            open_place, locked_place = f"http://{open_address}/git", f"http://{locked_address}/git"
            for name, place, credentials, ids in (
                ("same server", "/git", CREDENTIALS, None),
                ("same host with TLS", f"https://{tls}/git", CREDENTIALS, None),
                ("other server", open_place, None, None),
                ("with credentials", open_place, CREDENTIALS, None),
                ("to a locked one", locked_place, CREDENTIALS, ["17-2174"]),
            ):
                server = self.serve(name, credentials=CREDENTIALS, moved_to=place)
                with self.subTest(name), server as address:
                    self.lead_to(f"http://{address}/moved", credentials=credentials)
                    if ids is None:
                        self.refresh_twice()
                    else:
                        self.fail_to_refresh("could not read Username", ids)
            for name in ("open", "locked"):
                requests = (self.servers / name / "output").read_text().lower()
                self.check_shown(requests, "get /git/tcl-store.git/info/refs", never=["authorization:"])

    def test_proxies(self):
        """Catches: a proxy that is not used, not found, of yesterday, or whose password others can read."""
        authority, certificate = servers.make_certificates(self.servers / "keys")
        self.trust(authority)
        cases = {  # parameter, what is detected, the proxy's credentials
            "URL": ("plaz.http_proxy=http://{}", "", ()),
            "address": ("plaz.http_proxy={}", "", ()),
            "detected": ("", "Proxy={}", ()),
            "locked": ("plaz.http_proxy=http://{}:{}@{}", "", PROXY_CREDENTIALS),
        }
        for scheme, request in (("http", "GET http://{}/git/"), ("https", "CONNECT {}")):
            with self.serve(scheme, certificate=certificate if scheme == "https" else None, only_from=HOST) as address:
                self.lead_to(f"{scheme}://{address}/git")
                self.fail_to_refresh("403", [])
                for name, (setting, detected, credentials) in cases.items():
                    directory = self.servers / f"{scheme}-{name}"
                    with self.subTest(f"{scheme}, {name}"), servers.run_proxy(directory, credentials) as proxy:
                        self.lay_program("app/bin/zenproxy.exe", f"echo 'Looking'; echo '{detected.format(proxy)}'")
                        self.refresh_twice(settings=[setting.format(*credentials, proxy)] if setting else [])
                        self.assertIn(request.format(address), (directory / "log").read_text())
                        self.told += (directory / "log").read_text()

    def test_undetected_proxies(self):
        """Catches: a helper that is missing, fails or hangs and takes the refresh with it."""
        with self.serve("web") as address:
            self.lead_to(f"http://{address}/git")
            for script in (None, "exit 1", "exec sleep 100", "echo Proxy="):
                with self.subTest(script):
                    if script:
                        self.lay_program("app/bin/zenproxy.exe", script)
                    shutil.rmtree(self.home)
                    document, told = self.run_plaz("refresh tclscripts", ["plaz.gitTimeout=2"])
                    self.assertEqual(document["messages"], [])
                    self.assertIn("ERROR: Failed to detect and set the proxy", told)

    def meet_faults(self, is_first):
        with self.serve("web") as address:
            relay = servers.Relay(address)
            self.lead_to(f"http://{relay.address}/git")
            for name, (fault, words, *limit) in FAULTS.items():
                timeout = 2 if limit == ["17-2275"] else 100
                settings = [f"plaz.gitTimeout={timeout}", "plaz.gitMemoryLimit=256"]
                relay.fault = None
                with self.subTest(name):
                    if is_first:
                        shutil.rmtree(self.home)
                    else:
                        self.run_plaz("refresh tclscripts")
                    display = self.publish()
                    relay.fault, relay.passed = fault, b""
                    self.fail_to_refresh(words, limit, settings=settings)
                    self.assertEqual(b"PACK" in relay.passed, fault.passed > 0)
                    if not is_first and not fault.passed:
                        self.run_plaz("check tclscripts", settings, status=1)
                    relay.fault = None
                    self.run_plaz("refresh tclscripts")
                    self.assertIn(display, self.get_items().values())

    def test_faults_at_first_refresh(self):
        """Catches: half a clone that is taken for a whole one, a server that nothing ever gives up."""
        self.meet_faults(is_first=True)

    def test_faults_at_later_refresh(self):
        """Catches: a known catalog that a broken connection takes away, or a working copy that it spoils for good."""
        self.meet_faults(is_first=False)

    def test_packs(self):
        """Catches: a server that drips or talks on and is waited for, one that is given up while it makes a pack."""
        drip = '"$@" | { head -c 20000; while head -c 1; do sleep 0.2; done; }'
        for script, words, limit in (
            ('sleep 6; exec "$@"', None, None),
            (drip, "did not get on", "17-2278"),
            ("yes error: no >&2", "1 MB of text", "17-2277"),
        ):
            self.lay_program("hook", script)
            with self.subTest(script), servers.serve_git(
                self.repositories, self.servers / str(limit), self.dir / "hook"
            ) as git:
                self.lead_to(f"git://{git}")
                self.publish()
                settings = ["plaz.gitTimeout=100", "plaz.gitSlowTime=3", "plaz.gitLogLimit=1"]
                if limit:
                    self.fail_to_refresh(words, [limit], settings=settings)
                else:
                    self.run_plaz("refresh tclscripts", settings)
