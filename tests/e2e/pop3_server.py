#!/usr/bin/python3
"""A small loopback POP3 server for the tests: it has no mail and only records who logged on.

    pop3_server.py --port-file FILE --dir DIR [--user USER:PASSWORD]

It listens on 127.0.0.1 on a free port and writes the port to FILE once it listens. It answers CAPA,
USER, PASS, NOOP, STAT, LIST and QUIT; with --user only that user with that password logs on, without
it anyone does. In DIR/events it writes "NANOSECONDS pop3 logon USER" (or "logon refused USER") on the
machine's monotonic clock, so that the lines sort together with the SMTP server's. Passwords are never
written down.
"""

import argparse
import asyncio
import os
import sys

import mail_loopback


class Pop3(asyncio.Protocol):
    def __init__(self, args):
        self.args = args
        self.buffer = b""
        self.user = None
        self.logged_on = False

    def event(self, text):
        mail_loopback.record_event(self.args.dir, "pop3", text)

    def say(self, line):
        self.transport.write(line.encode() + b"\r\n")

    def connection_made(self, transport):
        self.transport = transport
        self.event("connect")
        self.say("+OK Lotwright test POP3 server ready")

    def data_received(self, data):
        self.buffer += data
        while b"\r\n" in self.buffer:
            line, self.buffer = self.buffer.split(b"\r\n", 1)
            self.command(line.decode("utf-8", "replace"))

    def command(self, line):
        verb, _, rest = line.partition(" ")
        verb = verb.upper()
        if verb == "CAPA":
            self.say("+OK capabilities follow")
            self.say("USER")
            self.say(".")
        elif verb == "USER":
            self.user = rest
            self.say("+OK send your password")
        elif verb == "PASS":
            wanted = self.args.user
            if self.user is not None and (wanted is None or wanted == f"{self.user}:{rest}"):
                self.logged_on = True
                self.event(f"logon {self.user}")
                self.say("+OK logged on")
            else:
                self.event(f"logon refused {self.user}")
                self.say("-ERR logon refused")
        elif verb in ("NOOP", "STAT", "LIST"):
            if verb == "STAT":
                self.say("+OK 0 0")
            elif verb == "LIST":
                self.say("+OK 0 messages")
                self.say(".")
            else:
                self.say("+OK")
        elif verb == "QUIT":
            self.say("+OK bye")
            self.transport.close()
        else:
            self.say("-ERR unknown command")


async def serve(args):
    os.makedirs(args.dir, exist_ok=True)
    await mail_loopback.serve(lambda: Pop3(args), args.port_file)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port-file", required=True)
    parser.add_argument("--dir", required=True)
    parser.add_argument("--user", metavar="USER:PASSWORD")
    asyncio.run(serve(parser.parse_args()))


if __name__ == "__main__":
    sys.exit(main())
