"""The plain client of bench-smtp: sends one stored message COUNT times with smtplib, one connection per message.

Usage: /usr/bin/python3 plain_client.py HOST PORT COUNT FROM RCPT[,RCPT...] STORED_MESSAGE [CAFILE USER PASSWORD]
With CAFILE, USER and PASSWORD each connection does STARTTLS (trusting CAFILE) and AUTH PLAIN before sending.
STORED_MESSAGE is a message as the SMTP sink stored it; the headers the sink added (X-Peer, X-MailFrom, X-RcptTo)
are taken off, so that the client sends what the server under test sent. Prints "start <CLOCK_MONOTONIC ns>" just
before the first connection and "sent <count>" at the end.
"""

import smtplib
import ssl
import sys
import time

ADDED_BY_SINK = (b"X-Peer:", b"X-MailFrom:", b"X-RcptTo:")


def message_as_sent(path):
    with open(path, "rb") as stored:
        text = stored.read().replace(b"\r\n", b"\n")
    head, _, body = text.partition(b"\n\n")
    headers = [line for line in head.split(b"\n") if not line.startswith(ADDED_BY_SINK)]
    return b"\r\n".join(headers) + b"\r\n\r\n" + body.replace(b"\n", b"\r\n")


def main():
    host, port, count, sender, recipients, stored = sys.argv[1:7]
    tls = sys.argv[7:10]
    context = ssl.create_default_context(cafile=tls[0]) if tls else None
    message = message_as_sent(stored)
    to = recipients.split(",")
    print("start", time.clock_gettime_ns(time.CLOCK_MONOTONIC), flush=True)
    for _ in range(int(count)):
        with smtplib.SMTP(host, int(port), timeout=10) as client:
            if context:
                client.starttls(context=context)
                client.login(tls[1], tls[2])  # smtplib picks AUTH PLAIN when the server offers it first
            client.sendmail(sender, to, message)
    print("sent", count, flush=True)


if __name__ == "__main__":
    main()
