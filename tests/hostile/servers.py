"""Servers that mean harm, by the names of cases: what each does to a world whose bad store is there."""

import base64
import contextlib
import shutil
import socketserver
import ssl
import threading

from hostile.stores import CONTROLS
from hostile.world import SECRETS, USER
from network.servers import HOST, make_certificates

ID = "1" * 40
NO_LOGIN, ASKS = "407 No", 'Proxy-Authenticate: Basic realm="x"'
SERVICE = "/info/refs?service=git-upload-pack"


class Liar(socketserver.ThreadingTCPServer):
    """Answers each request with the parts that a function gives, and keeps what it was told."""

    daemon_threads = True

    def __init__(self, answer, certificate=None):
        super().__init__((HOST, 0), None)
        self.address, self.heard, self.answer = f"{HOST}:{self.server_address[1]}", "", answer
        self.context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH) if certificate else None
        if certificate:
            self.context.load_cert_chain(certificate)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def finish_request(self, request, client_address):
        with contextlib.suppress(OSError):
            with self.context.wrap_socket(request, server_side=True) if self.context else request as opened:
                text = ""
                while "\r\n\r\n" not in text and (data := opened.recv(65536)):
                    text += data.decode("latin-1")
                self.heard += text
                for part in self.answer(text):
                    opened.sendall(part)


def http(status, *headers, body=b""):
    lines = [f"HTTP/1.1 {status}", *headers, f"Content-Length: {len(body)}", "Connection: close", "", ""]
    return ["\r\n".join(lines).encode() + body]


def packet(text):
    return b"%04x" % (len(text.encode()) + 4) + text.encode()


def advertise(*packets):
    """A repository's refs."""
    body = packet("# service=git-upload-pack\n") + b"0000" + b"".join(map(packet, packets)) + b"0000"
    return http("200 OK", "Content-Type: application/x-git-upload-pack-advertisement", body=body)


def ask_for_login(request):
    return http("401 Unauthorized", f'WWW-Authenticate: Basic realm="{CONTROLS[:4]}"')


def repeat(request):
    """Tells what it was sent."""
    sent = request.partition("Authorization: Basic ")[2].partition("\r\n")[0]
    return advertise(f"ERR no {sent} {base64.b64decode(sent).decode()}\n") if sent else ask_for_login(request)


def show_page(request):
    return http("200 OK", "Content-Type: text/html", body=b"<html>\x1b[2J</html>")


def talk(request):
    """Refs that are there, and then nothing but words."""
    if request.startswith("GET"):
        return advertise(f"{ID} HEAD\0side-band-64k\n", f"{ID} refs/heads/main\n")
    body = packet("NAK\n") + packet(f"\2fatal: {CONTROLS}\n") + packet(f"\3{CONTROLS}\n")
    return http("200 OK", "Content-Type: application/x-git-upload-pack-result", body=body)


def visit(world, answer, certificate=None):
    """The bad store is at such a server, and its credentials come by this world's road."""
    server = Liar(answer, certificate)
    user = f"{USER}:{SECRETS['url']}@" if world.road == "url" else ""
    world.bad.entry["url"] = f"http{'s' * bool(certificate)}://{user}{server.address}/bad.git"
    return server


def at(answer):
    return lambda world: visit(world, answer)


def redirect(place):
    """From a server that has the credentials to a place: "{0}" one that is a stranger to them, "{1}" itself."""

    def lead(world):
        world.strangers.append(Liar(ask_for_login))
        server = visit(world, None)
        target = world.fill(place).format(world.strangers[0].address, server.address) + SERVICE

        def answer(request):
            return http("302 Found", f"Location: {target}") if "Authorization" in request else ask_for_login(request)

        server.answer = answer

    return lead


def redirect_secure(is_checked):
    """From a server with TLS to a stranger for whom the home directory holds a login: to one without, or unchecked."""

    def lead(world):
        authority, certificate = make_certificates(world.record / "keys")
        world.write("person/.netrc", f"machine {HOST} login {USER} password {SECRETS['url']}\n", 0o600)
        world.strangers.append(Liar(ask_for_login, None if is_checked else certificate))
        place = f"http{'s' * (not is_checked)}://{world.strangers[0].address}/x{SERVICE}"
        server = visit(world, lambda request: http("302 Found", f"Location: {place}"), certificate)
        world.road = "url"  # in which there is none
        if is_checked:
            bundle = world.dir / "tps/win64/git-2.45.0/mingw64/etc/ssl/certs/ca-bundle.crt"
            bundle.parent.mkdir(parents=True)
            shutil.copy(authority, bundle)
        else:
            world.settings |= {"plaz.enableCertificateCheck": "false", "plaz.uncheckedServers": server.address}

    return lead


def lead_away(place):
    """A repository of the old kind, which says that its objects are elsewhere."""

    def lead(world):
        world.strangers.append(Liar(ask_for_login))
        target = world.fill(place).format(world.strangers[0].address)

        def answer(request):
            told = {
                "info/refs": f"{ID}\trefs/heads/main\n",
                "HEAD": "ref: refs/heads/main\n",
                "alternates": f"{target}\n",
            }
            body = next((text for name, text in told.items() if name in request.split()[1]), None)
            return http("200 OK", body=body.encode()) if body else http("404 Not Found")

        visit(world, answer)

    return lead


def call_through(scheme, answer):
    """A proxy that answers itself."""

    def lead(world):
        world.proxy = f"http://{USER}:{SECRETS['proxy']}@{Liar(answer).address}"
        world.settings["plaz.https_proxy"] = world.proxy
        world.bad.entry["url"] = f"{scheme}://store.invalid/bad.git"

    return lead


CASES = {
    "harmless": lambda world: None,
    "to another": redirect("http://{0}"),
    "to a file": redirect("file://@OUTSIDE/decoy.git"),
    "to ext::": redirect("ext::@TRAP"),
    "to itself": redirect("http://{1}/x"),
    "out of TLS": redirect_secure(is_checked=True),
    "to another unchecked": redirect_secure(is_checked=False),
    "objects of another": lead_away("http://{0}/objects"),
    "objects of a file": lead_away("file://@OUTSIDE/decoy.git/objects"),
    "login for ever": at(ask_for_login),
    "what it was sent": at(repeat),
    "a page": at(show_page),
    "error in colours": at(lambda request: advertise(f"ERR {CONTROLS}\n")),
    "words in colours": at(talk),
    "refs in colours": at(lambda request: advertise(f"{ID} refs/heads/{CONTROLS}\0x\n", f"{ID} refs/heads/../../x\n")),
    "status in colours": at(lambda request: http(f"500 {CONTROLS}", f"X: {CONTROLS}")),
    "proxy with an answer": call_through("http", lambda request: advertise(f"ERR {CONTROLS}\n")),
    "what a proxy was sent": call_through(
        "http", lambda asked: repeat(asked) if "Auth" in asked else http(NO_LOGIN, ASKS)
    ),
    "proxy with a page": call_through("http", show_page),
    "proxy with a login": call_through("https", lambda request: http(NO_LOGIN, ASKS)),
    "proxy in the middle": call_through("https", lambda request: [b"HTTP/1.1 200 OK\r\n\r\n", b"\x15\3\1\0\2\2\x28"]),
}
