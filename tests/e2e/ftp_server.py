#!/usr/bin/python3
"""A loopback FTP server for the tests, on Debian's pyftpdlib.

    ftp_server.py --dir DIR [--port-file FILE] [--user NAME:PASSWORD]... [--server-ini TEXT]
                  [--mode normal|refuse|stall|garble] [--watch-stdin]

It listens on 127.0.0.1 on a free port, prints the port on a line of its own and writes it to
--port-file. What it serves and records lies in DIR, so that a test can look at it afterwards:

    DIR/root/incoming/server.ini   what the anonymous user fetches (--server-ini, "\\n" for a line end)
    DIR/root/NAME/                 the home of each --user account, with an empty folder "pics"
    DIR/commands.log               one line a command received, the password written as "****"

The anonymous user ("anonymous" or "ftp", any password) sees DIR/root and may only read; an account may
read and write its own home. Modes: "refuse" answers every logon with 530; "stall" accepts connections
and never says a word, "garble" greets them with a line that is no FTP reply and hangs up (plain
sockets, not FTP servers at all).
"""

import argparse
import logging
import os
import signal
import socket
import sys
import threading
import time

from pyftpdlib.authorizers import AuthenticationFailed, DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.log import config_logging
from pyftpdlib.servers import FTPServer


class RefusingAuthorizer(DummyAuthorizer):
    """Knows the accounts but lets nobody in."""

    def validate_authentication(self, username, password, handler):
        raise AuthenticationFailed("Login incorrect.")


def make_handler(log_path):
    lock = threading.Lock()

    class RecordingHandler(FTPHandler):
        banner = "Lotwright test FTP server ready."

        def pre_process_command(self, line, cmd, arg):
            shown = "PASS ****" if cmd == "PASS" else line
            with lock, open(log_path, "a", encoding="utf-8") as log:
                log.write(shown + "\n")
            return super().pre_process_command(line, cmd, arg)

    return RecordingHandler


def write_port(port, port_file):
    print(port, flush=True)
    if port_file:
        tmp = port_file + ".tmp"
        with open(tmp, "w", encoding="utf-8") as f:
            f.write(f"{port}\n")
        os.replace(tmp, port_file)


def watch_stdin():
    # The test that started the server may die without stopping it; its end closes our standard input.
    def run():
        try:
            while sys.stdin.read(1):
                pass
        finally:
            os.kill(os.getpid(), signal.SIGTERM)

    threading.Thread(target=run, daemon=True).start()


def plain_socket(port_file, greeting):
    listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", 0))
    listener.listen(16)
    write_port(listener.getsockname()[1], port_file)
    held = []
    while True:
        conn, _ = listener.accept()
        if greeting is None:
            held.append(conn)  # kept open, never answered
            continue
        try:
            conn.sendall(greeting)
        finally:
            conn.close()


def main():
    parser = argparse.ArgumentParser(description="Loopback FTP server for the tests")
    parser.add_argument("--dir", required=True)
    parser.add_argument("--port-file")
    parser.add_argument("--user", action="append", default=[], help="NAME:PASSWORD of an account")
    parser.add_argument("--server-ini", default="4.01\\n", help="content of incoming/server.ini")
    parser.add_argument("--mode", choices=["normal", "refuse", "stall", "garble"], default="normal")
    parser.add_argument("--watch-stdin", action="store_true", help="stop when standard input closes")
    args = parser.parse_args()

    signal.signal(signal.SIGTERM, lambda *_: os._exit(0))
    if args.watch_stdin:
        watch_stdin()
    if args.mode in ("stall", "garble"):
        plain_socket(args.port_file, None if args.mode == "stall" else b"HTTP/1.0 200 OK\r\n\r\nhello\r\n")
        return

    base = os.path.realpath(args.dir)
    root = os.path.join(base, "root")
    os.makedirs(os.path.join(root, "incoming"), exist_ok=True)
    with open(os.path.join(root, "incoming", "server.ini"), "w", encoding="utf-8", newline="") as f:
        f.write(args.server_ini.replace("\\n", "\r\n"))

    authorizer = RefusingAuthorizer() if args.mode == "refuse" else DummyAuthorizer()
    for account in args.user:
        name, _, password = account.partition(":")
        home = os.path.join(root, name)
        os.makedirs(os.path.join(home, "pics"), exist_ok=True)
        authorizer.add_user(name, password, home, perm="elradfmw")
    authorizer.add_anonymous(root, perm="elr")

    config_logging(level=logging.WARNING)
    handler = make_handler(os.path.join(base, "commands.log"))
    handler.authorizer = authorizer
    # A refused logon is answered at once: the tests wait for it, nobody guesses passwords here.
    handler.auth_failed_timeout = 0
    handler.passive_ports = None
    handler.masquerade_address = None
    server = FTPServer(("127.0.0.1", 0), handler)
    write_port(server.address[1], args.port_file)
    server.serve_forever(timeout=0.5, handle_exit=True)


if __name__ == "__main__":
    time.tzset()
    main()
