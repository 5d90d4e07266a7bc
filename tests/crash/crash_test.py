#!/usr/bin/python3
"""Kills the server at random moments and counts what it had accepted against what arrived.

Each run starts the server through a private bus (bus activation, as a chamber program does), with Debian's
aiosmtpd on loopback as the mail server, hands in alerts at full speed from a chamber program (pipelined SendAlert
calls), and kills the server with SIGKILL (or stops it with SIGTERM) at a random moment: during intake, while mail
is being delivered, or just after a restart while the queues are being restored. Then the bus starts it again and
the run waits until everything is delivered. Every alert answered true must reach the mail server (immediate
levels) or the held-alarm pool (levels held for a report): none lost. Duplicates are allowed after SIGKILL only for
a message in flight at the kill, and the copy sent again must carry the first one's Message-ID, so that the
recipient's mail system can know them as one; after SIGTERM none. PRAGMA integrity_check must say ok after every
run.

Usage: crash_test.py --build BUILD_DIR [--runs 30] [--alerts 1000] [--signal KILL|TERM] [--seed N]
                     [--time-scale 0.01]
Prints one line per run and the totals; exits 1 when anything was lost, duplicated beyond the rule, sent again
under a new Message-ID, or corrupt.
"""

import argparse
import asyncio
import os
import random
import re
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

from aiosmtpd.controller import Controller
from dbus_next import Variant
from dbus_next.aio import MessageBus
from dbus_next.errors import DBusError

SERVICE = "org.osprel.EmailFax"
FACTORY = "org.osprel.EmailFax.Factory"
ALERT = "org.osprel.EmailFax.clsAlertCls"
HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))
ALERT_ID = re.compile(rb"Alert ID: (\d+)")
MESSAGE_ID = re.compile(rb"^Message-ID: (\S+)", re.MULTILINE | re.IGNORECASE)
HIGH, LOW = 5, 3  # category 5 is sent at once; category 3 is held for the daily report


def alert_text(number, category):
    return (f"{number}|4;Chamber 4;Walk-in chamber;On;QLM V;T/H;Running;Yes|999;CH1 actual high alarm|"
            f"200;210;100;0|100;95;100;0|{category}|9:55 pm")


class Receiver:
    """The mail server's side: every alert number it received, as often as it received it, and the Message-IDs of
    its copies."""

    def __init__(self):
        self.counts = {}
        self.message_ids = {}

    async def handle_DATA(self, server, session, envelope):
        content = envelope.original_content or b""
        match = ALERT_ID.search(content)
        if match:
            number = int(match.group(1))
            self.counts[number] = self.counts.get(number, 0) + 1
            message_id = MESSAGE_ID.search(content)
            self.message_ids.setdefault(number, set()).add(message_id.group(1) if message_id else b"")
        return "250 OK"


class Bus:
    def __init__(self, build, work, home, time_scale):
        env = dict(os.environ)
        env.update(OSPREL_HOME=home, OSPREL_TIME_SCALE=str(time_scale), QT_QPA_PLATFORM="offscreen",
                   OSPREL_FAX_SYSTEM_PORTS="0", XDG_RUNTIME_DIR=work)
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "OSPREL_FAX_DEVICES"):
            env.pop(name, None)
        out = subprocess.run(["bash", os.path.join(SOURCE, "scripts/lib/private-bus.sh"),
                              os.path.join(build, "dbus-1/services"), os.path.join(work, "bus")],
                             env=env, check=True, capture_output=True, text=True).stdout.split()
        self.address, self.pid = out[0], int(out[1])

    def stop(self):
        os.kill(self.pid, signal.SIGTERM)


class Chamber:
    """A chamber program on the bus: one alert object, linked."""

    async def open(self, address):
        self.bus = await MessageBus(bus_address=address).connect()
        introspection = await self.bus.introspect(SERVICE, "/")
        factory = self.bus.get_proxy_object(SERVICE, "/", introspection).get_interface(FACTORY)
        path = await factory.call_create_object()
        self.alert = self.bus.get_proxy_object(SERVICE, path, await self.bus.introspect(SERVICE, path)) \
            .get_interface(ALERT)
        return await self.alert.call_server_cmd("Crash", 1, Variant("s", ""))

    async def server_pid(self):
        introspection = await self.bus.introspect("org.freedesktop.DBus", "/org/freedesktop/DBus")
        dbus = self.bus.get_proxy_object("org.freedesktop.DBus", "/org/freedesktop/DBus", introspection) \
            .get_interface("org.freedesktop.DBus")
        return await dbus.call_get_connection_unix_process_id(SERVICE)

    def close(self):
        self.bus.disconnect()


async def send(chamber, window, number, category, accepted):
    try:
        async with window:
            if await chamber.alert.call_send_alert(alert_text(number, category)):
                accepted[number] = category
    except (DBusError, EOFError, OSError, asyncio.CancelledError):
        pass  # no answer: not accepted


def configure(home, port):
    db = sqlite3.connect(os.path.join(home, "EMAILFAX.MDE"))
    db.execute("UPDATE SetupComm SET EmailServer = ?, EmailEnabledAtBoot = 1", (f"127.0.0.1:{port}",))
    db.execute("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName)"
               " VALUES ('Lab', 'Duty', 1, 0, 'duty@lab.example')")
    db.commit()
    db.close()


def held_numbers(home):
    db = sqlite3.connect(os.path.join(home, "EMAILFAX.MDE"))
    rows = db.execute("SELECT ErrID FROM AlarmMsgs WHERE OverWrite = 0").fetchall()
    db.close()
    return {int(r[0]) for r in rows if r[0] and r[0].isdigit()}


def integrity(home):
    db = sqlite3.connect(os.path.join(home, "EMAILFAX.MDE"))
    result = db.execute("PRAGMA integrity_check").fetchone()[0]
    db.close()
    return result


async def wait_gone(pid, seconds=10):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            os.kill(pid, 0)
        except ProcessLookupError:
            return True
        await asyncio.sleep(0.01)
    return False


async def one_run(args, run, rng, receiver, port):
    with tempfile.TemporaryDirectory(prefix="osprel-crash-") as work:
        home = os.path.join(work, "home")
        os.makedirs(home)
        bus = Bus(args.build, work, home, args.time_scale)
        try:
            # First start makes the database; the recipient and the mail server are set while it is stopped.
            chamber = Chamber()
            await chamber.open(bus.address)
            pid = await chamber.server_pid()
            await chamber.alert.call_server_cmd("Crash", 3, Variant("s", ""))
            chamber.close()
            await wait_gone(pid)
            configure(home, port)

            base = run * 100000
            accepted = {}
            chamber = Chamber()
            await chamber.open(bus.address)
            pid = await chamber.server_pid()
            # Pipelined: up to 64 calls on their way at once (dbus-next's writer fails on a full socket beyond that).
            window = asyncio.Semaphore(64)
            tasks = [asyncio.ensure_future(send(chamber, window, base + i, LOW if i % 20 == 0 else HIGH, accepted))
                     for i in range(1, args.alerts + 1)]
            moment = rng.choice(["intake", "delivery", "restore"])
            if moment == "intake":
                await asyncio.sleep(rng.uniform(0, 0.3))
            elif moment == "delivery":
                await asyncio.sleep(rng.uniform(0.3, 2.0))
            else:
                await asyncio.sleep(rng.uniform(0.2, 1.0))
            os.kill(pid, signal.SIGKILL if args.signal == "KILL" else signal.SIGTERM)
            await asyncio.gather(*tasks, return_exceptions=True)
            await wait_gone(pid)
            chamber.close()
            if moment == "restore":
                # Start it again and kill it again at once, while it puts the queues back.
                chamber = Chamber()
                try:
                    await chamber.open(bus.address)
                    pid = await chamber.server_pid()
                    await asyncio.sleep(rng.uniform(0, 0.05))
                    os.kill(pid, signal.SIGKILL if args.signal == "KILL" else signal.SIGTERM)
                    await wait_gone(pid)
                except (DBusError, EOFError, OSError):
                    pass
                chamber.close()

            # The bus starts it again; it must deliver everything it accepted.
            chamber = Chamber()
            await chamber.open(bus.address)
            high = {n for n, c in accepted.items() if c == HIGH}
            low = {n for n, c in accepted.items() if c == LOW}
            deadline = time.monotonic() + args.timeout
            while time.monotonic() < deadline:
                if all(n in receiver.counts for n in high) and low <= held_numbers(home):
                    break
                await asyncio.sleep(0.1)
            await asyncio.sleep(0.2)  # anything still arriving would be a duplicate
            pid = await chamber.server_pid()
            await chamber.alert.call_server_cmd("Crash", 3, Variant("s", ""))
            chamber.close()
            await wait_gone(pid)

            lost = len([n for n in high if n not in receiver.counts]) + len(low - held_numbers(home))
            duplicates = sum(receiver.counts.get(n, 0) - 1 for n in high if receiver.counts.get(n, 0) > 1)
            renamed = len([n for n in high if len(receiver.message_ids.get(n, ())) > 1])
            check = integrity(home)
            print(f"run {run + 1:2}: kill {args.signal} during {moment:8} accepted {len(accepted):4} "
                  f"(held {len(low):3}) lost {lost} duplicates {duplicates} (under a new Message-ID {renamed}) "
                  f"integrity {check}", flush=True)
            return len(accepted), lost, duplicates, check == "ok" and renamed == 0
        finally:
            bus.stop()


async def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    parser.add_argument("--runs", type=int, default=30)
    parser.add_argument("--alerts", type=int, default=1000)
    parser.add_argument("--signal", choices=["KILL", "TERM"], default="KILL")
    parser.add_argument("--seed", type=int, default=None)
    parser.add_argument("--timeout", type=float, default=300)
    # At 0.01 a second of the server's timers lasts 10 ms. Much faster, and the e-mail's give-up limit (counted in
    # status ticks) falls below what an SMTP session takes on a loaded machine: mail would be retried although it
    # arrived, which is not what this test is about.
    parser.add_argument("--time-scale", type=float, default=0.01)
    args = parser.parse_args()
    args.build = os.path.abspath(args.build)
    # Calls cut off by a kill end in errors nobody waits for; they are counted as not accepted, not reported.
    asyncio.get_running_loop().set_exception_handler(lambda loop, context: None)
    seed = args.seed if args.seed is not None else random.randrange(1 << 30)
    print(f"seed {seed}", flush=True)
    rng = random.Random(seed)

    receiver = Receiver()
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        port = probe.getsockname()[1]
    controller = Controller(receiver, hostname="127.0.0.1", port=port)
    controller.start()
    totals = [0, 0, 0]
    failed = False
    try:
        for run in range(args.runs):
            accepted, lost, duplicates, ok = await one_run(args, run, rng, receiver, port)
            totals[0] += accepted
            totals[1] += lost
            totals[2] += duplicates
            # After SIGKILL only the message in flight may arrive twice; after SIGTERM nothing.
            allowed = 1 if args.signal == "KILL" else 0
            failed |= lost > 0 or duplicates > allowed * 2 or not ok
    finally:
        controller.stop()
    print(f"total: {args.runs} runs, {totals[0]} alerts accepted, {totals[1]} lost, {totals[2]} duplicates",
          flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(asyncio.run(main()))
