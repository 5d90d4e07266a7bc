#!/usr/bin/python3
"""A chamber program in Python: create an alert object (which starts the server), link, hand in one alert,
print the events that come back, and unlink. Needs Debian's python3-dbus-next.

With --heartbeat SECONDS it promises the server a heartbeat within that many seconds and keeps the promise (every
--every seconds, a third of the promise by default) for as long as it runs; with --stay it stays linked until it is
stopped, as a chamber program in the lab does. The server notices a chamber program that stops without unlinking,
and one that breaks its heartbeat promise."""

import argparse
import asyncio

from dbus_next import BusType, Variant
from dbus_next.aio import MessageBus

SERVICE = "org.osprel.EmailFax"
FACTORY = "org.osprel.EmailFax.Factory"
ALERT = "org.osprel.EmailFax.clsAlertCls"

SAMPLE = "1|4;Chamber 4;Walk-in chamber;On;QLM V;T/H;Running;Yes|999;CH1 actual high alarm|200;210;100;0|100;95;100;0|5|9:55 pm"


async def main(address: str, form: str, send: bool, stay: bool, heartbeat: int, every: float) -> None:
    bus = MessageBus(bus_address=address) if address else MessageBus(bus_type=BusType.SESSION)
    await bus.connect()

    factory = bus.get_proxy_object(SERVICE, "/", await bus.introspect(SERVICE, "/")).get_interface(FACTORY)
    path = await factory.call_create_object()
    alert = bus.get_proxy_object(SERVICE, path, await bus.introspect(SERVICE, path)).get_interface(ALERT)

    ready = asyncio.Event()

    def on_alert_ready(text: str) -> None:
        print("AlertReady:", text, flush=True)
        ready.set()

    alert.on_alert_ready(on_alert_ready)
    alert.on_server_status(lambda busy, email, fax: print("ServerStatus:", busy, email, fax, flush=True))
    alert.on_alert_status(lambda alert_id, via, ok: print("AlertStatus:", alert_id, via, ok, flush=True))
    alert.on_server_closing(lambda: print("ServerClosing", flush=True))

    # intCmd is a 16-bit integer ("n") and CustomStr a variant.
    print("linked:", await alert.call_server_cmd(form, 1, Variant("s", "")), flush=True)
    if send:
        print("sent:", await alert.call_send_alert(SAMPLE), flush=True)
        await asyncio.wait_for(ready.wait(), timeout=10)

    if heartbeat or stay:
        # The heartbeat loop: each call promises the next one within `heartbeat` seconds.
        while True:
            if heartbeat:
                await alert.call_heartbeat(heartbeat)
            await asyncio.sleep(every or heartbeat / 3 or 1)

    # Command 2 unlinks only while nothing is being sent; try again until it does.
    for _ in range(60):
        if await alert.call_server_cmd(form, 2, Variant("s", "")):
            print("unlinked: True", flush=True)
            break
        await asyncio.sleep(0.5)
    else:
        print("unlinked:", await alert.call_server_cmd(form, 3, Variant("s", "")), flush=True)
    bus.disconnect()


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bus", default="", help="bus address (default: the session bus)")
    parser.add_argument("--form", default="PyChamber", help="form name to link with")
    parser.add_argument("--no-alert", action="store_true", help="link without sending the sample alert")
    parser.add_argument("--stay", action="store_true", help="stay linked until stopped")
    parser.add_argument("--heartbeat", type=int, default=0, help="promise a heartbeat within SECONDS, and keep it")
    parser.add_argument("--every", type=float, default=0, help="seconds between heartbeats")
    args = parser.parse_args()
    asyncio.run(main(args.bus, args.form, not args.no_alert, args.stay, args.heartbeat, args.every))
