#!/usr/bin/python3
"""A loopback stand-in for the site's XML interface, for the tests.

Takes POSTs to /ws/api.dll, checks each call's headers (names, order, the application's credentials,
a call name it knows, a numeric site, a detail level of 0 or 1) and that its body is well-formed XML
of the call it names (a request element whose Verb and DetailLevel match the headers, and whose SiteId
matches the site header where the call has one), records every request, and answers from fixture
replies in the interface's format of compatibility level 245.

    api_server.py --port-file FILE --dir DIR [--fixtures DIR] [--mode MODE[:CALL]]...
                  [--reply CALL[#N]=FILE]... [--tree COUNT] [--version-date DATE] [--watch-stdin]

MODE is one of
    stall     take the request and never answer
    close     take the request and close the connection without a word
    garbage   answer with bytes that are no text in the charset the answer declares
    empty     answer with an empty body
    truncate  answer with the first half of the reply
for every call, or for CALL only. Replies come from the fixtures folder (tests/e2e/api by default):
    VerifyAddItem.xml, or VerifyAddItem-errors.xml for a request whose category is empty or "0"
    AddItem.xml, or AddItem-errors.xml for a request whose category is empty or "0"
    GetCategories-0.xml and GetCategories-1.xml by detail level, GetLogoURL.xml,
    ValidateTestUserRegistration.xml
--reply CALL=FILE answers every CALL from FILE, CALL#N=FILE only the N-th (from 1); FILE is read from
the fixtures folder. --tree COUNT answers GetCategories at detail level 1 with a generated tree of COUNT
categories on five levels (see generated_tree), and at level 0 with that tree's version date.

What it recorded, in DIR:
    log            one line a request: "N CALL site=S level=L ok" or "... bad: REASONS"
    N-CALL.xml     the request's body as it came
    N-CALL.headers its X-EBAY-API headers in the order they came, one "Name: value" a line
A request that fails a check is answered with an error reply naming what was wrong.
"""

import argparse
import http.server
import os
import re
import socket
import threading
import time
import xml.dom.minidom

import http_loopback

PATH = "/ws/api.dll"
HEADERS = [
    ("X-EBAY-API-COMPATIBILITY-LEVEL", "245"),
    ("X-EBAY-API-SESSION-CERTIFICATE", "qzt7k52vbnd93w;hx4tuowKRe31;7fjwn3p9xg21778"),
    ("X-EBAY-API-DEV-NAME", "qzt7k52vbnd93w"),
    ("X-EBAY-API-APP-NAME", "hx4tuowKRe31"),
    ("X-EBAY-API-CERT-NAME", "7fjwn3p9xg21778"),
    ("X-EBAY-API-CALL-NAME", None),
    ("X-EBAY-API-SITEID", None),
    ("X-EBAY-API-DETAIL-LEVEL", None),
]
CALLS = {"VerifyAddItem", "AddItem", "GetCategories", "GetLogoURL", "ValidateTestUserRegistration"}
# The calls whose body carries a SiteId of its own.
SITE_CALLS = {"VerifyAddItem", "AddItem", "GetCategories", "GetLogoURL"}
MODES = {"stall", "close", "garbage", "empty", "truncate"}
TIME = "2003-11-30 18:00:05"

ERROR_REPLY = (
    '<?xml version="1.0" encoding="UTF-8"?><eBay><EBayTime>' + TIME + "</EBayTime>"
    "<Errors><Error><Code>10007</Code><ErrorClass>RequestError</ErrorClass><SeverityCode>1</SeverityCode>"
    "<Severity>SeriousError</Severity><Line>0</Line><Column>0</Column>"
    "<ShortMessage><![CDATA[Bad request.]]></ShortMessage><LongMessage><![CDATA[{reason}]]></LongMessage>"
    "</Error></Errors></eBay>\n"
)


def generated_tree(count):
    """A tree of `count` categories on five levels, in the order the site lists them: 20 top
    categories, each further category under one of the level before. Two categories at level 2 share the
    name "Accessories" under different parents, and the one category at level 3 named "Orphaned
    Lots" names a parent that is not in the tree. Leaves are the categories without children."""
    per_level = [20]
    rest = max(count - 20, 0)
    for share in (0.1, 0.2, 0.3):
        per_level.append(int(rest * share))
    per_level.append(max(count - sum(per_level), 0))
    rows = []  # (id, level, name, parent)
    next_id = 1000
    previous = []
    for level, n in enumerate(per_level, start=1):
        current = []
        for i in range(n):
            parent = previous[i % len(previous)] if previous else 0
            name = "Category %d-%05d" % (level, i)
            if level == 2 and i in (0, 1):
                name = "Accessories"
            if level == 3 and i == 0:
                name, parent = "Orphaned Lots", 999999
            rows.append((next_id, level, name, parent if level > 1 else next_id))
            current.append(next_id)
            next_id += 1
        previous = current or previous
    parents = {r[3] for r in rows if r[1] > 1}
    out = []
    for cid, level, name, parent in rows:
        leaf = "0" if cid in parents else "1"
        out.append(
            "<Category><CategoryId>%d</CategoryId><CategoryLevel>%d</CategoryLevel>"
            "<CategoryName><![CDATA[%s]]></CategoryName><CategoryParentId>%d</CategoryParentId>"
            "<IsExpired>0</IsExpired><IsVirtual>0</IsVirtual><LeafCategory>%s</LeafCategory></Category>"
            % (cid, level, name, parent, leaf)
        )
    return out


class State:
    def __init__(self, args):
        self.dir = args.dir
        self.fixtures = args.fixtures
        self.modes = {}
        for m in args.mode:
            mode, _, call = m.partition(":")
            if mode not in MODES:
                raise SystemExit("api_server.py: unknown mode " + mode)
            self.modes[call or "*"] = mode
        self.replies = {}
        for r in args.reply:
            key, _, name = r.partition("=")
            self.replies[key] = name
        self.tree = args.tree
        self.version_date = args.version_date
        self.lock = threading.Lock()
        self.count = 0
        self.per_call = {}
        self.stopping = threading.Event()
        self._tree_reply = None

    def next_number(self, call):
        with self.lock:
            self.count += 1
            self.per_call[call] = self.per_call.get(call, 0) + 1
            return self.count, self.per_call[call]

    def record(self, number, call, site, level, body, headers, problems):
        with self.lock:
            base = os.path.join(self.dir, "%03d-%s" % (number, call or "unknown"))
            with open(base + ".xml", "wb") as f:
                f.write(body)
            with open(base + ".headers", "w") as f:
                for name, value in headers:
                    f.write("%s: %s\n" % (name, value))
            verdict = "ok" if not problems else "bad: " + "; ".join(problems)
            with open(os.path.join(self.dir, "log"), "a") as f:
                f.write("%d %s site=%s level=%s %s\n" % (number, call, site, level, verdict))

    def mode_for(self, call):
        return self.modes.get(call, self.modes.get("*"))

    def fixture(self, name):
        with open(os.path.join(self.fixtures, name), "rb") as f:
            return f.read()

    def tree_reply(self, level):
        date = self.version_date
        head = (
            '<?xml version="1.0" encoding="UTF-8"?><eBay><EBayTime>' + TIME + "</EBayTime>"
            "<Categories><Version>58</Version><UpdateTime>" + date + "</UpdateTime>"
        )
        if level == "0":
            return (head + "<CategoryCount>%d</CategoryCount></Categories></eBay>\n" % self.tree).encode()
        if self._tree_reply is None:
            self._tree_reply = (head + "".join(generated_tree(self.tree)) + "</Categories></eBay>\n").encode()
        return self._tree_reply


def text_of(node):
    return "".join(n.data for n in node.childNodes if n.nodeType in (n.TEXT_NODE, n.CDATA_SECTION_NODE)).strip()


def check_body(call, site, level, body):
    """What is wrong with a request's body for the call its headers name; and the request element."""
    try:
        doc = xml.dom.minidom.parseString(body)
    except Exception as e:  # any parse failure is the finding
        return ["not well-formed XML (%s)" % e], None
    root = doc.documentElement
    if root.tagName != "request":
        return ["the root element is %s, not request" % root.tagName], None
    problems = []
    elements = [n for n in root.childNodes if n.nodeType == n.ELEMENT_NODE]
    first = [e.tagName for e in elements[:5]]
    want = ["RequestUserId", "RequestPassword", "ErrorLevel", "DetailLevel", "Verb"]
    if first != want:
        problems.append("the request starts with %s, not %s" % (",".join(first), ",".join(want)))
    values = {}
    for e in elements:
        values.setdefault(e.tagName, text_of(e))
    if values.get("Verb") != call:
        problems.append("Verb %r for the call %s" % (values.get("Verb"), call))
    if values.get("DetailLevel") != level:
        problems.append("DetailLevel %r under the header's %s" % (values.get("DetailLevel"), level))
    if values.get("ErrorLevel") != "1":
        problems.append("ErrorLevel %r" % values.get("ErrorLevel"))
    if call in SITE_CALLS and values.get("SiteId") != site:
        problems.append("SiteId %r under the header's %s" % (values.get("SiteId"), site))
    return problems, values


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "api-server"

    def log_message(self, fmt, *args):
        pass

    def do_GET(self):
        self.send_error(405)

    def answer(self, status, body, content_type="text/xml; charset=utf-8"):
        self.send_response(status)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_POST(self):
        state = self.server.state
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length)
        headers = [(k, v) for k, v in self.headers.items() if k.upper().startswith("X-EBAY-API-")]
        call = self.headers.get("X-EBAY-API-CALL-NAME", "")
        site = self.headers.get("X-EBAY-API-SITEID", "")
        level = self.headers.get("X-EBAY-API-DETAIL-LEVEL", "")
        problems = []
        if self.path != PATH:
            problems.append("path %s" % self.path)
        names = [k.upper() for k, _ in headers]
        want = [k for k, _ in HEADERS]
        if names != want:
            problems.append("headers %s" % ",".join(names))
        for (name, fixed) in HEADERS:
            if fixed is not None and self.headers.get(name) != fixed:
                problems.append("%s %r" % (name, self.headers.get(name)))
        if call not in CALLS:
            problems.append("unknown call %r" % call)
        if not re.fullmatch(r"\d+", site):
            problems.append("site %r" % site)
        if level not in ("0", "1"):
            problems.append("detail level %r" % level)
        body_problems, values = check_body(call, site, level, body)
        problems += body_problems
        number, nth = state.next_number(call)
        state.record(number, call, site, level, body, headers, problems)
        if problems:
            return self.answer(400, ERROR_REPLY.replace("{reason}", "; ".join(problems)).encode())

        mode = state.mode_for(call)
        if mode == "stall":
            # Holds the connection until the client gives up or the server stops.
            self.connection.settimeout(0.1)
            while not state.stopping.is_set():
                try:
                    if self.connection.recv(1) == b"":
                        break
                except socket.timeout:
                    continue
                except OSError:
                    break
            self.close_connection = True
            return
        if mode == "close":
            self.close_connection = True
            self.connection.shutdown(socket.SHUT_RDWR)
            return
        if mode == "garbage":
            return self.answer(200, b"\xff\xfe\x00\x81garbage\xc3\x28\xa0\xa1" * 8)
        if mode == "empty":
            return self.answer(200, b"")

        reply = self.reply_for(state, call, nth, level, values or {})
        if mode == "truncate":
            reply = reply[: len(reply) // 2]
        self.answer(200, reply)

    def reply_for(self, state, call, nth, level, values):
        for key in ("%s#%d" % (call, nth), call):
            if key in state.replies:
                return state.fixture(state.replies[key])
        if call == "GetCategories":
            if state.tree:
                return state.tree_reply(level)
            return state.fixture("GetCategories-%s.xml" % level)
        if call in ("VerifyAddItem", "AddItem") and values.get("Category", "") in ("", "0"):
            return state.fixture("%s-errors.xml" % call)
        return state.fixture("%s.xml" % call)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    p = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    p.add_argument("--port-file")
    p.add_argument("--dir", required=True)
    p.add_argument("--fixtures", default=os.path.join(here, "api"))
    p.add_argument("--mode", action="append", default=[])
    p.add_argument("--reply", action="append", default=[])
    p.add_argument("--tree", type=int, default=0)
    p.add_argument("--version-date", default="2003-10-15 07:00:00")
    p.add_argument("--watch-stdin", action="store_true")
    args = p.parse_args()
    os.makedirs(args.dir, exist_ok=True)
    state = State(args)
    server = Server(("127.0.0.1", 0), Handler)
    server.state = state
    http_loopback.serve(server, state.stopping, args.port_file, args.watch_stdin, poll_interval=0.1)


if __name__ == "__main__":
    main()
