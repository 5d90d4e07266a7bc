#!/usr/bin/python3
"""Reads one message as an SMTP server received it (the file named as the argument) with Python's email package
under email.policy.SMTP, and prints what a mail reader sees of it as JSON: the header names in order, the decoded
Subject, To, Date, Message-ID, the charset and transfer encoding, and the decoded body."""

import email
import email.policy
import email.utils
import json
import sys

raw = open(sys.argv[1], "rb").read()
msg = email.message_from_bytes(raw, policy=email.policy.SMTP)
date = msg.get("Date")
print(json.dumps({
    "headers": list(msg.keys()),
    "defects": [type(d).__name__ for d in msg.defects],
    "subject": str(msg.get("Subject", "")),
    "to": [a for _, a in email.utils.getaddresses([str(v) for v in msg.get_all("To", [])])],
    "date_valid": date is not None and email.utils.parsedate_to_datetime(str(date)) is not None,
    "message_id": str(msg.get("Message-ID", "")),
    "charset": msg.get_content_charset(),
    "encoding": str(msg.get("Content-Transfer-Encoding", "")),
    "body": msg.get_content().replace("\r\n", "\n"),
}))
