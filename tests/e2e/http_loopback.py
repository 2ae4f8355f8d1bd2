"""What the loopback HTTP servers of the tests share: the stop on SIGTERM or SIGINT, the stop when the
test program holding standard input ends, the port file and the port printed on its own line."""

import os
import signal
import sys
import threading


def serve(server, stop_event, port_file=None, watch_stdin=False, poll_interval=0.2):
    """Serves `server` (bound to 127.0.0.1) until stopped; sets stop_event as the stop begins, so that
    handlers waiting on purpose (a stalled reply) let go."""
    port = server.server_address[1]

    def stop(*_):
        stop_event.set()
        threading.Thread(target=server.shutdown, daemon=True).start()

    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    if watch_stdin:
        # The test program that started the server holds its standard input; when that program ends,
        # however it ends, the server ends too.
        def watch():
            sys.stdin.read()
            stop()

        threading.Thread(target=watch, daemon=True).start()
    if port_file:
        with open(port_file + ".tmp", "w") as f:
            f.write("%d\n" % port)
        os.replace(port_file + ".tmp", port_file)
    print(port, flush=True)
    server.serve_forever(poll_interval=poll_interval)
    stop_event.set()
    server.server_close()
