#!/usr/bin/python3
"""A loopback SMTP server for the tests, on Debian's aiosmtpd.

Records every message it takes, and can be told to misbehave:

    smtp_server.py --port-file FILE --dir DIR [--auth USER:PASSWORD] [--auth-required]
                   [--refuse-rcpt ADDRESS|all] [--stall greeting|data] [--drop greeting|data]

It listens on 127.0.0.1 on a free port and writes the port to FILE once it listens. In DIR it keeps:

    NNN.eml   each message as it arrived (the DATA, byte for byte)
    log       one line per message: "NNN from=<...> to=<...>,<...> auth=USER|none"
    events    one line per happening, "NANOSECONDS smtp connect|message NNN|auth USER|refused ADDRESS",
              on the machine's monotonic clock, so that it sorts together with the POP3 server's

--auth offers AUTH LOGIN and PLAIN (without TLS) and takes only USER with PASSWORD; --auth-required
refuses mail from a client that has not logged on. --refuse-rcpt answers 550 to that recipient (or to
every one). --stall never answers: at the greeting, or once the message has been sent. --drop closes the
connection: at once, or once the message has been sent. Passwords are never written down.
"""

import argparse
import asyncio
import logging
import os
import sys
import warnings

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

import mail_loopback


class Recorder:
    def __init__(self, args):
        self.args = args
        self.count = 0
        os.makedirs(args.dir, exist_ok=True)

    def event(self, text):
        mail_loopback.record_event(self.args.dir, "smtp", text)

    def authenticate(self, server, session, envelope, mechanism, auth_data):
        if not isinstance(auth_data, LoginPassword) or self.args.auth is None:
            return AuthResult(success=False, handled=False)
        user, _, password = self.args.auth.partition(":")
        login = auth_data.login.decode("utf-8", "replace")
        if login == user and auth_data.password.decode("utf-8", "replace") == password:
            self.event(f"auth {login} {mechanism}")
            return AuthResult(success=True, auth_data=login)
        self.event(f"auth refused {login}")
        return AuthResult(success=False, handled=False)

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        refuse = self.args.refuse_rcpt
        if refuse and (refuse == "all" or address.lower() == refuse.lower()):
            self.event(f"refused {address}")
            return "550 5.1.1 No such user here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if self.args.stall == "data":
            self.event("stalling")
            await asyncio.sleep(3600)
        if self.args.drop == "data":
            self.event("dropping")
            server.transport.close()
            return "421 closing"
        self.count += 1
        name = f"{self.count:03d}"
        with open(os.path.join(self.args.dir, name + ".eml"), "wb") as f:
            f.write(envelope.original_content)
        who = session.auth_data if session.authenticated else "none"
        with open(os.path.join(self.args.dir, "log"), "a", encoding="utf-8") as f:
            f.write(f"{name} from=<{envelope.mail_from}> to=" + ",".join(f"<{r}>" for r in envelope.rcpt_tos)
                    + f" auth={who}\n")
        self.event(f"message {name}")
        return "250 Message accepted for delivery"


class RecordingSMTP(SMTP):
    def __init__(self, recorder, **kwargs):
        super().__init__(recorder, **kwargs)
        self.recorder = recorder

    def connection_made(self, transport):
        self.recorder.event("connect")
        super().connection_made(transport)


class Misbehaving(asyncio.Protocol):
    """Takes the connection and then says nothing (stall) or hangs up (drop)."""

    def __init__(self, recorder, drop):
        self.recorder = recorder
        self.drop = drop

    def connection_made(self, transport):
        self.recorder.event("connect")
        if self.drop:
            transport.close()


async def serve(args):
    recorder = Recorder(args)

    def factory():
        if args.stall == "greeting" or args.drop == "greeting":
            return Misbehaving(recorder, args.drop == "greeting")
        options = {"hostname": "mail.test.example"}
        if args.auth is not None:
            options.update(authenticator=recorder.authenticate, auth_require_tls=False,
                           auth_required=args.auth_required)
        return RecordingSMTP(recorder, **options)

    await mail_loopback.serve(factory, args.port_file)


def main():
    # aiosmtpd warns about its own use of a deprecated field while it logs a client on, and about AUTH
    # without TLS, which is what these tests want.
    warnings.filterwarnings("ignore", category=DeprecationWarning)
    warnings.filterwarnings("ignore", category=UserWarning)
    logging.getLogger("mail.log").setLevel(logging.CRITICAL)
    parser = argparse.ArgumentParser()
    parser.add_argument("--port-file", required=True)
    parser.add_argument("--dir", required=True)
    parser.add_argument("--auth", metavar="USER:PASSWORD")
    parser.add_argument("--auth-required", action="store_true")
    parser.add_argument("--refuse-rcpt")
    parser.add_argument("--stall", choices=["greeting", "data"])
    parser.add_argument("--drop", choices=["greeting", "data"])
    asyncio.run(serve(parser.parse_args()))


if __name__ == "__main__":
    sys.exit(main())
