"""The benches' SMTP server: aiosmtpd's maildir handler that also logs when each message was received.

Run as: /usr/bin/python3 -m aiosmtpd -n -l 127.0.0.1:PORT -c smtp_sink.ReceiptLog MAILDIR RECEIPTS
with this folder on PYTHONPATH. Each accepted message adds one line to RECEIPTS:
"<CLOCK_MONOTONIC ns at the end of its data> <alert number, or - when the body names none> <bytes of data>".
"""

import re
import time

from aiosmtpd.handlers import Mailbox

ALERT_NUMBER = re.compile(rb"Alert ID: (\d+)")


class ReceiptLog(Mailbox):
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

    @classmethod
    def from_cli(cls, parser, *args):
        if len(args) != 2:
            parser.error("ReceiptLog takes the maildir and the receipts file")
        return cls(args[0], args[1])
