"""A time stamp authority on the loopback, for as long as a command runs.

stamp_server.py AUTHORITY_FOLDER COMMAND ...   "PORT" in the command stands for the server's

The last part of an address says how it behaves: "stamp" as it should, all others in their own way.
"""
import http.server
import os
import pathlib
import subprocess
import sys
import tempfile
import threading
import time

AUTHORITY = pathlib.Path(__file__).parent / "authority"
STAMP = "application/timestamp-reply"


class Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        request = self.rfile.read(int(self.headers["Content-Length"]))
        way = self.path.strip("/")
        if way == "stamp" and self.headers["Content-Type"] == "application/timestamp-query":
            self.answer(200, STAMP, self.stamp(request))
        elif way == "silent":
            time.sleep(3)
        elif way == "endless":
            self.send_response(200)
            self.send_header("Content-Type", STAMP)
            self.end_headers()
            self.pour()
        else:
            self.answer(*{"busy": (503, "text/plain", b"later"), "moved": (302, "text/plain", b""),
                          "page": (200, "text/html", b"<p>Hello</p>"), "huge": (200, STAMP, b"x" * 1_000_000),
                          "nonsense": (200, STAMP + "; charset=binary", b"nonsense")}[way])

    def answer(self, status, kind, content):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(content)))
        self.send_header("Location", "/stamp")
        self.end_headers()
        try:
            self.wfile.write(content)
        except OSError:
            pass  # It was too much for whoever asked.

    def pour(self):
        try:
            while True:
                self.wfile.write(b"x" * 1000)
        except OSError:
            pass

    def stamp(self, request):
        with tempfile.TemporaryDirectory() as folder:
            query, reply = pathlib.Path(folder, "query"), pathlib.Path(folder, "reply")
            query.write_bytes(request)
            subprocess.run(["sh", AUTHORITY, "answer", sys.argv[1], query, reply], check=True, capture_output=True)
            return reply.read_bytes()

    def log_message(self, *_):
        pass


def main():
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    command = [part.replace("PORT", str(server.server_port)) for part in sys.argv[2:]]
    environment = {**os.environ, "no_proxy": "127.0.0.1"}
    return subprocess.run(command, check=False, env=environment).returncode


if __name__ == "__main__":
    sys.exit(main())
