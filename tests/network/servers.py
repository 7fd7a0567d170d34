"""Real servers for the network tests. Each runs inside a with block and is gone after it, or when this process ends."""

import collections
import contextlib
import os
import signal
import socket
import socketserver
import subprocess
import threading
import time

from support.hubtest import SCRATCH, make_env, succeed

# An address of this process alone, so that no other test comes to the same port. Clients reach it from 127.0.0.1.
HOST = "127.{}.{}.{}".format(64 + (os.getpid() >> 16), os.getpid() >> 8 & 255, os.getpid() & 255)
GIT_PROGRAMS = succeed("git", "--exec-path").strip()
ENVIRONMENT = make_env(SCRATCH.name, PATH=f"{os.environ['PATH']}:/usr/bin:/usr/sbin")


def write(file, text):
    file.write_text(text, encoding="utf-8")
    file.chmod(0o600)
    return file


@contextlib.contextmanager
def run_server(directory, make_command):
    """Runs the command for a port. @return the address, once something answers there"""
    directory.mkdir()
    with socket.create_server((HOST, 0)) as probe:
        port = probe.getsockname()[1]
    with open(directory / "output", "wb") as output:
        command = ["setpriv", "--pdeathsig", "TERM", *map(str, make_command(port))]
        streams = {"stdin": subprocess.DEVNULL, "stdout": output, "stderr": subprocess.STDOUT}
        process = subprocess.Popen(command, env=ENVIRONMENT, start_new_session=True, **streams)
    try:
        deadline = time.monotonic() + 20
        while True:
            with contextlib.suppress(OSError), socket.create_connection((HOST, port)):
                break
            if process.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError(f"{command} does not answer: {(directory / 'output').read_text()}")
            time.sleep(0.02)
        yield f"{HOST}:{port}"
    finally:
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()


def serve_web(repositories, directory, certificate=None, credentials=None, only_from=None, moved_to="/git"):
    """git's http-backend behind lighttpd at "/git", with TLS, for one user, or for one client's address alone. "/moved"
    leads to another place. It notes the headers of requests in "output"."""

    def make_command(port):
        config = f"""
            server.document-root = "{directory}"
            server.bind = "{HOST}"
            server.port = {port}
            server.modules = ("mod_access", "mod_alias", "mod_auth", "mod_authn_file", "mod_cgi", "mod_openssl",
                              "mod_redirect", "mod_setenv")
            debug.log-request-header = "enable"
            url.redirect = ("^/moved/(.*)" => "{moved_to}/$1")
            alias.url = ("/git" => "{GIT_PROGRAMS}/git-http-backend")
            cgi.assign = ("" => "")
            setenv.set-environment = ("GIT_PROJECT_ROOT" => "{repositories}", "GIT_HTTP_EXPORT_ALL" => "1")\n"""
        if certificate:
            config += f'ssl.engine = "enable"\nssl.pemfile = "{certificate}"\n'
        if credentials:
            users = write(directory / "users", ":".join(credentials) + "\n")
            config += f'auth.backend = "plain"\nauth.backend.plain.userfile = "{users}"\n'
            config += 'auth.require = ("/git" => ("method" => "basic", "realm" => "git", "require" => "valid-user"))\n'
        if only_from:
            config += f'$HTTP["remoteip"] != "{only_from}" {{ url.access-deny = ("") }}\n'
        return ["lighttpd", "-D", "-f", write(directory / "lighttpd.conf", config)]

    return run_server(directory, make_command)


def serve_git(repositories, directory, hook=""):
    """git's own daemon. It has the hook, a command for the shell, make packs in the place of the words behind it."""
    command = ["git", "-c", f"uploadpack.packObjectsHook={hook}"] if hook else ["git"]
    command += ["daemon", "--reuseaddr", "--export-all", f"--base-path={repositories}"]
    return run_server(directory, lambda port: [*command, f"--listen={HOST}", f"--port={port}"])


def run_proxy(directory, credentials):
    """tinyproxy, which servers see at the address HOST. It notes requests in "log"."""

    def make_command(port):
        config = f'Port {port}\nListen {HOST}\nBind {HOST}\nTimeout 60\nLogFile "{directory}/log"\nLogLevel Connect\n'
        if credentials:
            config += "BasicAuth {} {}\n".format(*credentials)
        return ["tinyproxy", "-d", "-c", write(directory / "tinyproxy.conf", config)]

    return run_server(directory, make_command)


def make_certificates(directory, authority=None, host=HOST, days=2):
    """An authority, or one that is given, and a certificate that it has issued. @return their files; the second holds
    its key too"""
    directory.mkdir()
    request, key, server = (directory / name for name in ("request", "server.key", "server.pem"))
    new = "openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes".split()
    if not authority:
        authority = directory / "ca.crt"
        succeed(*new, *"-x509 -days 2 -subj /CN=Authority".split(), "-keyout", directory / "ca.key", "-out", authority)
    succeed(*new, "-subj", f"/CN={host}", "-keyout", key, "-out", request)
    extensions = write(directory / "extensions", f"subjectAltName=IP:{host}\nbasicConstraints=CA:FALSE\n")
    issuer = ["-CA", authority, "-CAkey", authority.with_name("ca.key"), "-extfile", extensions]
    succeed("openssl", "x509", "-req", "-in", request, "-days", str(days), *issuer, "-out", server)
    return authority, write(server, server.read_text() + key.read_text())


# What a relay does in place of passing everything on: it passes so many bytes of the server's answers and then sends a
# reply, or nothing; then it hangs up, or does not, or goes on with something without end.
Fault = collections.namedtuple("Fault", ["reply", "passed", "stalls", "endless"], defaults=[b"", 0, False, b""])


class Relay(socketserver.ThreadingTCPServer):
    """Stands before a server at a port of its own until this process ends. Its fault can be changed at any time."""

    daemon_threads = True

    def __init__(self, address):
        super().__init__((HOST, 0), None)
        self.address = f"{HOST}:{self.server_address[1]}"
        self.fault = None
        self.passed = b""  # what came through while there was a fault
        self.lead_to(address)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def lead_to(self, address):
        self._server = (HOST, int(address.rpartition(":")[2]))

    def finish_request(self, request, client_address):
        fault = self.fault or Fault(passed=float("inf"))
        with contextlib.suppress(OSError), socket.create_connection(self._server) as server:
            if fault.passed:
                threading.Thread(target=self._pass, args=(request, server), daemon=True).start()
                passed = self._pass(server, request, fault.passed)
                if fault is self.fault:
                    self.passed = passed
            else:
                request.recv(65536)
            request.sendall(fault.reply)
            while fault.endless:
                request.sendall(fault.endless)
            if fault.stalls:
                threading.Event().wait()
            request.shutdown(socket.SHUT_RDWR)

    @staticmethod
    def _pass(source, target, most=float("inf")):
        passed = b""
        with contextlib.suppress(OSError):
            while len(passed) < most and (data := source.recv(int(min(most - len(passed), 65536)))):
                target.sendall(data)
                passed += data
        return passed
