#!/usr/bin/python3
"""A loopback HTTP server for the tests.

Serves fixture pages from a folder by path and query, stands in for the site's sign-in (every page
answers with a sign-in form until a sign-in form post sets the session cookie), and can be told to fail
(close the connection, or answer 500) or to stall (never answer) on a path.

    http_server.py --root DIR [--port-file FILE] [--signin USER:PASSWORD]
                   [--fail PATH=close|500]... [--stall PATH]... [--set-cookie PATH=NAME=VALUE]...
                   [--watch-stdin]

It listens on 127.0.0.1 on a free port and prints the port on a line of its own (and writes it to
--port-file). Pages are found first in ROOT/routes.json, a list of
{"path": "/x.dll", "query": "regex searched in the query", "file": "page.htm", "content_type": "..."},
then as ROOT/PATH. Control addresses, for the tests themselves:

    /__control/fail?path=P&mode=close|500   /__control/stall?path=P   /__control/clear?path=P
    /__control/reset                        /__control/log  (one line a request: METHOD TARGET cookie)
    /__control/cookies  (one line a request: METHOD TARGET and the whole Cookie header)
A page served from PATH given to --set-cookie also sets that cookie (Path=/).
"""

import argparse
import http.server
import json
import os
import re
import secrets
import socket
import threading
import urllib.parse

import http_loopback

SESSION_COOKIE = "lw_session"

SIGNIN_PAGE = """<html><head><title>Sign In</title></head>
<body>
<h2>Please sign in:</h2>
{error}
<form name="SignInForm" method="post" action="/aw-cgi/eBayISAPI.dll">
<input type="hidden" name="MfcISAPICommand" value="SignInWelcome">
<input type="hidden" name="ru" value="{ru}">
<table>
<tr><td>User ID</td><td><input type="text" name="userid" value=""></td></tr>
<tr><td>Password</td><td><input type="password" name="pass" value=""></td></tr>
</table>
<input type="submit" name="signin" value="Sign In">
</form>
</body></html>
"""

SIGNED_IN_PAGE = """<html><head><title>Welcome</title></head>
<body><p>You are now signed in.</p></body></html>
"""


class State:
    def __init__(self, root, credentials):
        self.root = os.path.realpath(root)
        self.credentials = credentials
        self.lock = threading.Lock()
        self.failing = {}
        self.stalling = set()
        self.sessions = set()
        self.log = []
        self.cookie_log = []
        self.set_cookies = {}
        self.stop = threading.Event()
        self.routes = []
        routes_file = os.path.join(self.root, "routes.json")
        if os.path.exists(routes_file):
            with open(routes_file, encoding="utf-8") as f:
                self.routes = json.load(f)

    def find_page(self, path, query):
        for r in self.routes:
            if r.get("path") == path and re.search(r.get("query", ""), query):
                return os.path.join(self.root, r["file"]), r.get("content_type")
        candidate = os.path.realpath(os.path.join(self.root, path.lstrip("/")))
        if candidate.startswith(self.root + os.sep) and os.path.isfile(candidate):
            return candidate, None
        return None, None


def content_type_for(path):
    if path.endswith((".htm", ".html")):
        return "text/html"
    if path.endswith(".xml"):
        return "text/xml"
    return "text/plain"


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "LoopbackFixtures/1.0"

    def log_message(self, fmt, *args):
        pass

    @property
    def state(self):
        return self.server.state

    def do_GET(self):
        self.handle_request(b"")

    def do_POST(self):
        length = int(self.headers.get("Content-Length") or 0)
        self.handle_request(self.rfile.read(length) if length > 0 else b"")

    def handle_request(self, body):
        parsed = urllib.parse.urlsplit(self.path)
        path, query = parsed.path, parsed.query
        cookie = self.session_cookie()
        with self.state.lock:
            self.state.log.append("%s %s %s" % (self.command, self.path, cookie or "-"))
            self.state.cookie_log.append("%s %s %s" % (self.command, self.path, self.headers.get("Cookie") or "-"))
        if path.startswith("/__control/"):
            return self.control(path, urllib.parse.parse_qs(query))
        with self.state.lock:
            mode = self.state.failing.get(path)
            stall = path in self.state.stalling
        if stall:
            # Hold the connection open without a word until the server ends.
            self.close_connection = True
            self.state.stop.wait()
            return
        if mode == "close":
            self.close_connection = True
            try:
                self.connection.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
            return
        if mode == "500":
            return self.send_page(500, b"<html><body>Internal Server Error</body></html>", "text/html")

        if self.state.credentials is not None:
            form = urllib.parse.parse_qs(body.decode("latin-1")) if self.command == "POST" else {}
            if self.command == "POST" and "userid" in form:
                return self.sign_in(form)
            # The site also signs in from an address that carries the id and password.
            if self.command == "GET" and "SignInWelcome" in query:
                fields = urllib.parse.parse_qs(query, keep_blank_values=True)
                if "userid" in fields and "pass" in fields:
                    return self.sign_in(fields)
            if "SignIn" in query or cookie not in self.state.sessions:
                return self.sign_in_page("", self.path)

        page, ctype = self.state.find_page(path, query)
        if page is None:
            return self.send_page(404, b"<html><body>Not Found</body></html>", "text/html")
        with open(page, "rb") as f:
            data = f.read()
        extra = [("Set-Cookie", "%s; Path=/" % self.state.set_cookies[path])] if path in self.state.set_cookies else []
        self.send_page(200, data, ctype or content_type_for(page), extra)

    def session_cookie(self):
        for part in (self.headers.get("Cookie") or "").split(";"):
            name, _, value = part.strip().partition("=")
            if name == SESSION_COOKIE:
                return value
        return None

    def sign_in_page(self, error, ru):
        html = SIGNIN_PAGE.format(error=error, ru=ru.replace("&", "&amp;").replace('"', "&quot;"))
        self.send_page(200, html.encode("utf-8"), "text/html; charset=utf-8")

    def sign_in(self, form):
        user = form.get("userid", [""])[0]
        password = form.get("pass", [""])[0]
        if (user, password) != self.state.credentials:
            return self.sign_in_page("<p>Your User ID or password is incorrect.</p>", form.get("ru", [""])[0])
        token = secrets.token_hex(16)
        with self.state.lock:
            self.state.sessions.add(token)
        ru = form.get("ru", [""])[0]
        cookie = "%s=%s; Path=/" % (SESSION_COOKIE, token)
        if ru and ru.startswith("/"):
            self.send_response(303)
            self.send_header("Location", ru)
            self.send_header("Set-Cookie", cookie)
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        self.send_page(200, SIGNED_IN_PAGE.encode("utf-8"), "text/html; charset=utf-8", [("Set-Cookie", cookie)])

    def control(self, path, args):
        target = args.get("path", [""])[0]
        with self.state.lock:
            if path == "/__control/fail":
                self.state.failing[target] = args.get("mode", ["close"])[0]
            elif path == "/__control/stall":
                self.state.stalling.add(target)
            elif path == "/__control/clear":
                self.state.failing.pop(target, None)
                self.state.stalling.discard(target)
            elif path == "/__control/reset":
                self.state.failing.clear()
                self.state.stalling.clear()
                self.state.sessions.clear()
                self.state.log.clear()
                self.state.cookie_log.clear()
            elif path in ("/__control/log", "/__control/cookies"):
                lines = self.state.log if path == "/__control/log" else self.state.cookie_log
                text = "".join(line + "\n" for line in lines)
                return self.send_page(200, text.encode("utf-8"), "text/plain; charset=utf-8")
            else:
                return self.send_page(404, b"unknown control", "text/plain")
        self.send_page(200, b"ok", "text/plain")

    def send_page(self, status, data, ctype, headers=()):
        self.send_response(status)
        self.send_header("Content-Type", ctype)
        self.send_header("Content-Length", str(len(data)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(data)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True


def main():
    parser = argparse.ArgumentParser(description="Loopback HTTP fixture server for the tests")
    parser.add_argument("--root", required=True)
    parser.add_argument("--port-file")
    parser.add_argument("--signin", help="USER:PASSWORD the sign-in form accepts")
    parser.add_argument("--fail", action="append", default=[], help="PATH=close or PATH=500")
    parser.add_argument("--stall", action="append", default=[])
    parser.add_argument("--set-cookie", action="append", default=[], help="PATH=NAME=VALUE")
    parser.add_argument("--watch-stdin", action="store_true", help="stop when standard input closes")
    args = parser.parse_args()

    credentials = tuple(args.signin.split(":", 1)) if args.signin else None
    if credentials is not None and len(credentials) != 2:
        parser.error("--signin takes USER:PASSWORD")
    state = State(args.root, credentials)
    for item in args.fail:
        p, _, mode = item.partition("=")
        if mode not in ("close", "500"):
            parser.error("--fail takes PATH=close or PATH=500")
        state.failing[p] = mode
    state.stalling.update(args.stall)
    for item in args.set_cookie:
        p, _, cookie = item.partition("=")
        if "=" not in cookie:
            parser.error("--set-cookie takes PATH=NAME=VALUE")
        state.set_cookies[p] = cookie

    server = Server(("127.0.0.1", 0), Handler)
    server.state = state
    http_loopback.serve(server, state.stop, args.port_file, args.watch_stdin, poll_interval=0.2)


if __name__ == "__main__":
    main()
