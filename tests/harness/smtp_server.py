#!/usr/bin/python3
"""A real SMTP server for the tests and benches: Debian's aiosmtpd on loopback, storing each message it accepts in
a maildir and logging when it was received.

Run as: /usr/bin/python3 smtp_server.py --listen 127.0.0.1:PORT --maildir DIR --receipts FILE [options]
Each accepted message adds one line to the receipts file:
"<CLOCK_MONOTONIC ns at the end of its data> <alert number, or - when the body names none> <bytes of data>".
With --raw DIR, every message that reaches the end of its data (accepted or not) is also kept as DIR/N.eml, the
bytes exactly as received, and DIR/N.json, its envelope.
Options for TLS (--cert, --key with --tls starttls|starttls-required|implicit), AUTH (--user NAME:PASSWORD, any
number, and --xoauth2-tokens FILE holding one accepted token a line) and broken servers (--greylist N answers 451 to
the first N messages, --refuse-rcpt TEXT refuses recipients holding TEXT, --quit-reply LINE answers QUIT with LINE,
--hostile silent|endless speaks no SMTP at all).
The server runs until it is sent SIGTERM.
"""

import argparse
import asyncio
import base64
import json
import os
import re
import signal
import ssl
import threading
import time

from aiosmtpd.controller import Controller
from aiosmtpd.handlers import Mailbox
from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

ALERT_NUMBER = re.compile(rb"Alert ID: (\d+)")


class Recorder(Mailbox):
    def __init__(self, args):
        super().__init__(args.maildir)
        self.args = args
        self.receipts = open(args.receipts, "a", buffering=1)
        self.greylist = args.greylist
        self.count = 0
        if args.raw:
            os.makedirs(args.raw, exist_ok=True)

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if self.args.refuse_rcpt and self.args.refuse_rcpt in address:
            return "550 5.1.1 no such user here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        received = time.clock_gettime_ns(time.CLOCK_MONOTONIC)
        data = envelope.original_content or b""
        if self.args.raw:
            self.count += 1
            name = os.path.join(self.args.raw, "%04d" % self.count)
            with open(name + ".json", "w") as f:
                json.dump({"mail_from": envelope.mail_from, "rcpt_tos": envelope.rcpt_tos,
                           "host_name": session.host_name, "authenticated": bool(session.authenticated),
                           "tls": session.ssl is not None}, f)
            with open(name + ".eml", "wb") as f:
                f.write(data)
        if self.greylist > 0:
            self.greylist -= 1
            return "451 4.7.1 greylisted, try again in 5 minutes"
        reply = await super().handle_DATA(server, session, envelope)
        match = ALERT_NUMBER.search(data)
        number = match.group(1).decode() if match else "-"
        self.receipts.write(f"{received} {number} {len(data)}\n")
        return reply

    async def auth_XOAUTH2(self, server, args):
        try:
            fields = base64.b64decode(args[1]).split(b"\x01")
            token = next(f[len(b"auth=Bearer "):] for f in fields if f.startswith(b"auth=Bearer "))
            with open(self.args.xoauth2_tokens, "rb") as f:
                ok = token in f.read().split()
        except Exception:
            ok = False
        if not ok:
            # As the big providers do: a 334 challenge with the error, then 535 after the client's empty line.
            await server.challenge_auth(challenge="eyJzdGF0dXMiOiI0MDEifQ==", encode_to_b64=False)
        return AuthResult(success=ok, handled=False)


class QuirkySMTP(SMTP):
    quit_reply = None

    async def smtp_QUIT(self, arg):
        if self.quit_reply is None:
            return await super().smtp_QUIT(arg)
        await self.push(self.quit_reply)
        self.transport.close()


def authenticator_for(users):
    def authenticate(server, session, envelope, mechanism, data):
        if isinstance(data, LoginPassword):
            return AuthResult(success=users.get(data.login.decode()) == data.password.decode(), handled=False)
        return AuthResult(success=False, handled=False)
    return authenticate


async def hostile(mode, reader, writer):
    try:
        if mode == "endless":
            while True:
                writer.write(b"220-still greeting you\r\n" * 50)
                await writer.drain()
                await asyncio.sleep(0.001)
        else:
            await reader.read()  # silent: never a byte back
    except Exception:
        pass
    finally:
        writer.close()


def run_hostile(mode, host, port, stop):
    loop = asyncio.new_event_loop()
    server = loop.run_until_complete(
        asyncio.start_server(lambda r, w: hostile(mode, r, w), host=host, port=port))
    threading.Thread(target=lambda: (stop.wait(), loop.call_soon_threadsafe(loop.stop)), daemon=True).start()
    print("listening", flush=True)
    loop.run_forever()
    server.close()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--listen", required=True, help="HOST:PORT")
    parser.add_argument("--maildir", required=True)
    parser.add_argument("--receipts", required=True)
    parser.add_argument("--raw")
    parser.add_argument("--tls", choices=["none", "starttls", "starttls-required", "implicit"], default="none")
    parser.add_argument("--cert")
    parser.add_argument("--key")
    parser.add_argument("--user", action="append", default=[])
    parser.add_argument("--xoauth2-tokens")
    parser.add_argument("--greylist", type=int, default=0)
    parser.add_argument("--refuse-rcpt")
    parser.add_argument("--quit-reply")
    parser.add_argument("--hostile", choices=["silent", "endless"])
    args = parser.parse_args()
    host, port = args.listen.rsplit(":", 1)

    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    if args.hostile:
        run_hostile(args.hostile, host, int(port), stop)
        return

    kwargs = {}
    context = None
    if args.tls != "none":
        context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        context.load_cert_chain(args.cert, args.key)
    if args.tls in ("starttls", "starttls-required"):
        kwargs["tls_context"] = context
        kwargs["require_starttls"] = args.tls == "starttls-required"
    if args.user or args.xoauth2_tokens:
        kwargs["authenticator"] = authenticator_for(dict(u.split(":", 1) for u in args.user))
        kwargs["auth_required"] = True
        # aiosmtpd does not count an implicit TLS connection as encrypted; it is.
        kwargs["auth_require_tls"] = args.tls in ("starttls", "starttls-required")
    QuirkySMTP.quit_reply = args.quit_reply
    handler = Recorder(args)

    class Quirky(Controller):
        def factory(self):
            return QuirkySMTP(self.handler, **self.SMTP_kwargs)

    controller = Quirky(handler, hostname=host, port=int(port),
                        ssl_context=context if args.tls == "implicit" else None, **kwargs)
    controller.start()
    print("listening", flush=True)
    stop.wait()
    controller.stop()


if __name__ == "__main__":
    main()
