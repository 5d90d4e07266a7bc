#!/usr/bin/python3
"""Puts two e-mail recipients and a local mail server into a data folder's EMAILFAX.MDE (the demo's settings)."""

import sqlite3
import sys

database, mail_server = sys.argv[1], sys.argv[2]
with sqlite3.connect(database) as db:
    db.execute("DELETE FROM Contacts")
    db.executemany(
        "INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName) VALUES (?, ?, 1, 0, ?)",
        [("Nguyen", "Lan", "lan.nguyen@lab.example"), ("O'Hara", "Pat", "pat.ohara@lab.example")],
    )
    db.execute("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?, EmailEnabledAtBoot = 1",
               (mail_server, "emailfax@lab.example"))
