#!/usr/bin/python3
"""Prints what the loopback mail servers recorded, for an e2e transcript.

    mail_show.py DIR...

For each server folder: its log, then each message line by line as it arrived (a carriage return shown
as \\r, so that line ends can be read; the Date line, which changes with the clock, left out). With
--events DIR..., the happenings of all the folders in the order they happened, without their clock.
"""

import os
import sys


def show_messages(folder):
    log = os.path.join(folder, "log")
    if os.path.exists(log):
        with open(log, encoding="utf-8") as f:
            sys.stdout.write(f.read())
    for name in sorted(n for n in os.listdir(folder) if n.endswith(".eml")):
        print(f"== {name}")
        with open(os.path.join(folder, name), "rb") as f:
            raw = f.read()
        for line in raw.split(b"\n"):
            if line.startswith(b"Date: "):
                continue
            print(line.decode("utf-8", "replace").replace("\r", "\\r"))


def show_events(folders):
    events = []
    for folder in folders:
        path = os.path.join(folder, "events")
        if os.path.exists(path):
            with open(path, encoding="utf-8") as f:
                events += [line.rstrip("\n").split(" ", 1) for line in f if line.strip()]
    for _, what in sorted(events, key=lambda e: int(e[0])):
        print(what)


def main():
    args = sys.argv[1:]
    if args and args[0] == "--events":
        show_events(args[1:])
    else:
        for folder in args:
            show_messages(folder)


if __name__ == "__main__":
    main()
