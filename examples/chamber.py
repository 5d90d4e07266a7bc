#!/usr/bin/python3
"""A chamber program in Python: create an alert object (which starts the server), link, hand in one alert,
print the events that come back, and unlink. Needs Debian's python3-dbus-next."""

import argparse
import asyncio

from dbus_next import BusType, Variant
from dbus_next.aio import MessageBus

SERVICE = "org.osprel.EmailFax"
FACTORY = "org.osprel.EmailFax.Factory"
ALERT = "org.osprel.EmailFax.clsAlertCls"

SAMPLE = "1|4;Chamber 4;Walk-in chamber;On;QLM V;T/H;Running;Yes|999;CH1 actual high alarm|200;210;100;0|100;95;100;0|5|9:55 pm"


async def main(address: str, form: str) -> None:
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
    print("sent:", await alert.call_send_alert(SAMPLE), flush=True)
    await asyncio.wait_for(ready.wait(), timeout=10)

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
    args = parser.parse_args()
    asyncio.run(main(args.bus, args.form))
