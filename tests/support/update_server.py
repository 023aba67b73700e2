#!/usr/bin/python3
"""A server of updates with certificates made for the test. Argument: a folder, into which it writes "authority.pem" and
whose "files" it serves. Its first line tells, as JSON, the ports of what it is:

secure     the server "localhost", as the authority says
stranger   the same with a certificate of another authority
misnamed   one whose certificate is for another name
plain      one without encryption
other      the authority's as well, but another server

    /files/NAME          the file
    /to/NAME             a redirect to this server's /files/NAME
    /away?PORT/NAME      a redirect to that port; over HTTP for "plain"
    /around              a redirect to itself
    /cut/NAME            announces all of the file and breaks off after half
    /long/NAME           the file, and more than was announced before
    /drip/NAME           announces the file and sends a byte now and then
    /silent              never answers
    /refused             says no, on a page without end

Each request is a line in "requests": port and path."""

import http.server
import json
import os
import ssl
import subprocess
import sys
import threading
import time

FOLDER = sys.argv[1]


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], cwd=FOLDER, check=True, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_key(name):
    openssl("genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256", "-out", f"{name}.key")


def make_authority(name):
    make_key(name)
    openssl("req", "-x509", "-new", "-key", f"{name}.key", "-subj", f"/CN={name} for a test", "-days", "2",
            "-out", f"{name}.pem")


def make_certificate(name, host, authority):
    make_key(name)
    openssl("req", "-new", "-key", f"{name}.key", "-subj", f"/CN={host}", "-out", f"{name}.csr")
    with open(os.path.join(FOLDER, f"{name}.ext"), "w", encoding="ascii") as file:
        file.write(f"subjectAltName=DNS:{host}\n")
    openssl("x509", "-req", "-in", f"{name}.csr", "-CA", f"{authority}.pem", "-CAkey", f"{authority}.key",
            "-CAcreateserial", "-days", "2", "-extfile", f"{name}.ext", "-out", f"{name}.pem")


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_GET(self):
        port = self.server.server_address[1]
        with open(os.path.join(FOLDER, "requests"), "a", encoding="ascii") as file:
            file.write(f"{port} {self.path}\n")
        self.close_connection = True
        kind, _, name = self.path[1:].partition("/")
        if self.path.startswith("/away?"):
            where, _, rest = self.path[len("/away?"):].partition("/")
            scheme = "http" if where == "plain" else "https"
            return self.redirect(f"{scheme}://localhost:{PORTS[where]}/files/{rest}")
        if kind == "to":
            return self.redirect(f"/files/{name}")
        if kind == "around":
            return self.redirect("/around")
        if kind == "silent":
            return self.wait()
        if kind == "refused":
            return self.refuse()
        content = self.content(name)
        if content is None:
            return self.send_error(404)
        self.send_response(200)
        if kind != "long":
            self.send_header("Content-Length", str(len(content)))
        self.send_header("Connection", "close")
        self.end_headers()
        try:
            if kind == "cut":
                self.wfile.write(content[: len(content) // 2])
            elif kind == "drip":
                for byte in content:
                    self.wfile.write(bytes([byte]))
                    time.sleep(0.05)
            else:
                self.wfile.write(content)
                while kind == "long":
                    self.wfile.write(bytes(65536))
        except OSError:
            pass  # whoever asked has gone

    def content(self, name):
        path = os.path.join(FOLDER, "files", os.path.basename(name))
        if not os.path.isfile(path):
            return None
        with open(path, "rb") as file:
            return file.read()

    def redirect(self, place):
        self.send_response(302)
        self.send_header("Location", place)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def refuse(self):
        self.send_response(403)
        self.send_header("Connection", "close")
        self.end_headers()
        try:
            while True:
                self.wfile.write(bytes(65536))
        except OSError:
            pass

    def wait(self):
        try:
            self.connection.recv(1)
        except OSError:
            pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, certificate=None):
        super().__init__(("127.0.0.1", 0), Handler)
        self.context = None
        if certificate:
            self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            path = os.path.join(FOLDER, certificate)
            self.context.load_cert_chain(path + ".pem", path + ".key")

    def finish_request(self, request, client_address):
        """On the connection's own thread: a handshake that goes wrong holds up nobody."""
        if self.context:
            try:
                request = self.context.wrap_socket(request, server_side=True)
            except (OSError, ssl.SSLError):
                return
        super().finish_request(request, client_address)
        if self.context:
            try:
                request.close()
            except OSError:
                pass

    def handle_error(self, request, client_address):
        pass


os.makedirs(os.path.join(FOLDER, "files"), exist_ok=True)
make_authority("authority")
make_authority("stranger-authority")
make_certificate("server", "localhost", "authority")
make_certificate("stranger", "localhost", "stranger-authority")
make_certificate("misnamed", "elsewhere.example", "authority")
SERVERS = {"secure": Server("server"), "stranger": Server("stranger"), "misnamed": Server("misnamed"),
           "plain": Server(), "other": Server("server")}
PORTS = {name: server.server_address[1] for name, server in SERVERS.items()}
for server in SERVERS.values():
    threading.Thread(target=server.serve_forever, daemon=True).start()
print(json.dumps(PORTS), flush=True)
threading.Event().wait()
