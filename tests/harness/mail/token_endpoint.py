#!/usr/bin/python3
"""An OAuth2 token endpoint for the client-credentials grant on loopback, for the XOAUTH2 tests.

Run as: /usr/bin/python3 token_endpoint.py --port-file F --tokens F --requests F --expires-in SECONDS
It writes the port it listens on to --port-file, appends every token it issues to --tokens (the file the SMTP
server accepts tokens from) and one line per request to --requests. A request without grant_type=client_credentials
or with a wrong client_secret ("secret" is right) gets 400 with an error."""

import argparse
import json
import urllib.parse
from http.server import BaseHTTPRequestHandler, HTTPServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--port-file", required=True)
    parser.add_argument("--tokens", required=True)
    parser.add_argument("--requests", required=True)
    parser.add_argument("--expires-in", type=int, default=3599)
    args = parser.parse_args()
    issued = [0]

    class Handler(BaseHTTPRequestHandler):
        def do_POST(self):
            length = int(self.headers.get("Content-Length", 0))
            form = urllib.parse.parse_qs(self.rfile.read(length).decode())
            with open(args.requests, "a") as f:
                f.write(json.dumps(form) + "\n")
            if form.get("grant_type") != ["client_credentials"] or form.get("client_secret") != ["secret"]:
                body, status = {"error": "invalid_client", "error_description": "wrong client secret"}, 400
            else:
                issued[0] += 1
                token = "token-%d" % issued[0]
                with open(args.tokens, "a") as f:
                    f.write(token + "\n")
                body, status = {"access_token": token, "token_type": "Bearer", "expires_in": args.expires_in}, 200
            data = json.dumps(body).encode()
            self.send_response(status)
            self.send_header("Content-Type", "application/json")
            self.send_header("Content-Length", str(len(data)))
            self.end_headers()
            self.wfile.write(data)

        def log_message(self, *args):
            pass

    server = HTTPServer(("127.0.0.1", 0), Handler)
    with open(args.port_file + ".tmp", "w") as f:
        f.write(str(server.server_port))
    import os
    os.rename(args.port_file + ".tmp", args.port_file)
    server.serve_forever()


if __name__ == "__main__":
    main()
