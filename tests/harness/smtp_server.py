#!/usr/bin/python3
"""A real SMTP server for the tests and benches: Debian's aiosmtpd on loopback, storing each message it accepts in
a maildir and logging when it was received.

Run as: /usr/bin/python3 smtp_server.py --listen 127.0.0.1:PORT --maildir DIR --receipts FILE
Each accepted message adds one line to the receipts file:
"<CLOCK_MONOTONIC ns at the end of its data> <alert number, or - when the body names none> <bytes of data>".
The server runs until it is sent SIGTERM.
"""

import argparse
import re
import signal
import threading
import time

from aiosmtpd.controller import Controller
from aiosmtpd.handlers import Mailbox

ALERT_NUMBER = re.compile(rb"Alert ID: (\d+)")


class Recorder(Mailbox):
    def __init__(self, mail_dir, receipts):
        super().__init__(mail_dir)
        self.receipts = open(receipts, "a", buffering=1)

    async def handle_DATA(self, server, session, envelope):
        received = time.clock_gettime_ns(time.CLOCK_MONOTONIC)
        reply = await super().handle_DATA(server, session, envelope)
        data = envelope.original_content or b""
        match = ALERT_NUMBER.search(data)
        number = match.group(1).decode() if match else "-"
        self.receipts.write(f"{received} {number} {len(data)}\n")
        return reply


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--listen", required=True, help="HOST:PORT")
    parser.add_argument("--maildir", required=True)
    parser.add_argument("--receipts", required=True)
    args = parser.parse_args()
    host, port = args.listen.rsplit(":", 1)

    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    controller = Controller(Recorder(args.maildir, args.receipts), hostname=host, port=int(port))
    controller.start()
    print("listening", flush=True)
    stop.wait()
    controller.stop()


if __name__ == "__main__":
    main()
