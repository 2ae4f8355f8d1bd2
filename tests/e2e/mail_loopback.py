"""What the loopback mail servers of the tests share: listening on the loopback, the port file, the
stop on SIGTERM, and the events file whose lines sort across servers."""

import asyncio
import os
import signal
import time


def record_event(folder, server, text):
    """Appends "NANOSECONDS SERVER TEXT" to FOLDER/events, on the machine's monotonic clock."""
    with open(os.path.join(folder, "events"), "a", encoding="utf-8") as f:
        f.write(f"{time.monotonic_ns()} {server} {text}\n")


async def serve(factory, port_file):
    """Listens on 127.0.0.1 on a free port, writes the port to port_file once it listens, and serves
    connections made by factory until SIGTERM or SIGINT."""
    loop = asyncio.get_running_loop()
    server = await loop.create_server(factory, "127.0.0.1", 0)
    port = server.sockets[0].getsockname()[1]
    with open(port_file + ".tmp", "w") as f:
        f.write(f"{port}\n")
    os.replace(port_file + ".tmp", port_file)
    stop = asyncio.Event()
    for sig in (signal.SIGTERM, signal.SIGINT):
        loop.add_signal_handler(sig, stop.set)
    await stop.wait()
    server.close()
