#!/usr/bin/env python3
"""http_test.py DRIVER FAKE_CORE FAKE_COMPILER [EMULATOR...]: a cache on servers that work and on those that don't.

Runs the driver with the stand-ins of the end-to-end tests, those of Windows by the emulator, against nginx, as WebDAV
set up for PUT, and against a server of our own that is slow, fails, lies, cuts its answers short, or wants a token.
"""
import http.server
import os
import pathlib
import random
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import project
from project import UNITS


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Behaviour:
    """What the server of our own does; changed by the tests."""
    entries = {}
    mode = "right"
    tokens = []
    requests = 0
    asked = 0
    put = 0
    late = {}  # entries that others put there behind the first look in vain


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def answer(self, status, body=b"", told=None):
        self.send_response(status)
        self.send_header("Content-Length", str(len(body) if told is None else told))
        self.end_headers()
        self.wfile.write(body)

    def misbehave(self):
        Behaviour.requests += 1
        Behaviour.tokens.append(self.headers.get("Authorization"))
        if Behaviour.mode == "slow":
            time.sleep(20)
        if Behaviour.mode == "failing":
            self.answer(500)
            return True
        return False

    def do_GET(self):
        if self.misbehave():
            return
        body = Behaviour.entries.get(self.path)
        if body is None:
            Behaviour.entries.update(Behaviour.late)
            self.answer(404)
        elif Behaviour.mode == "lying":
            self.answer(200, body[:-1] + bytes([body[-1] ^ 1]))
        elif Behaviour.mode == "truncating":
            self.close_connection = True
            self.answer(200, body[:len(body) // 2], len(body))
        else:
            self.answer(200, body)

    def do_HEAD(self):
        if not self.misbehave():
            Behaviour.asked += 1
            self.answer(200 if self.path in Behaviour.entries else 404)

    def do_PUT(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        if self.misbehave():
            return
        Behaviour.entries[self.path] = body
        Behaviour.put += 1
        self.answer(201)


class HttpCacheTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.project = project.Project(folder.name, *sys.argv[1:4], sys.argv[4:])
        self.expected = self.project.analyze()[2]
        Behaviour.entries, Behaviour.mode, Behaviour.tokens = {}, "right", []
        Behaviour.requests, Behaviour.asked, Behaviour.put, Behaviour.late = 0, 0, 0, {}

    def start_server(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.daemon_threads = True
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}/cache"

    def expect(self, run, known, says=""):
        code, output, report = run
        self.assertEqual(code, 0, output)
        self.assertEqual(report, self.expected)
        self.assertIn(f"Result cache: {known} of {UNITS} files were known", output)
        self.assertIn(says, output)
        self.assertEqual("Warning: the cache" in output, bool(says), output)

    def test_nginx(self):
        nginx = shutil.which("nginx", path=os.environ.get("PATH", "") + ":/usr/sbin")
        if nginx is None:
            self.skipTest("nginx is not installed")
        with tempfile.TemporaryDirectory() as folder:
            os.chmod(folder, 0o777)
            port = free_port()
            config = pathlib.Path(folder) / "nginx.conf"
            config.write_text(f"""
daemon off; master_process off; pid {folder}/pid; error_log {folder}/error.log;
events {{ worker_connections 64; }}
http {{
    access_log off; client_body_temp_path {folder}/body; proxy_temp_path {folder}/p; fastcgi_temp_path {folder}/f;
    uwsgi_temp_path {folder}/u; scgi_temp_path {folder}/s;
    server {{
        listen 127.0.0.1:{port}; root {folder}/root; client_max_body_size 100m;
        location /cache {{ dav_methods PUT; create_full_put_path on; }}
    }}
}}
""", encoding="ascii")
            (pathlib.Path(folder) / "root").mkdir()
            with subprocess.Popen([nginx, "-c", str(config), "-p", folder], stderr=subprocess.DEVNULL) as server:
                try:
                    self.wait_for(port)
                    address = f"http://127.0.0.1:{port}/cache/"
                    self.expect(self.project.analyze("--cache", address), 0)
                    self.expect(self.project.analyze("--cache", address), UNITS)
                finally:
                    server.terminate()

    def wait_for(self, port):
        for _ in range(100):
            try:
                socket.create_connection(("127.0.0.1", port)).close()
                return
            except OSError:
                time.sleep(0.05)
        self.fail("nginx does not listen")

    def test_a_token_goes_with_each_request_and_is_kept_from_others(self):
        token = self.project.folder / "token"
        token.write_text("secret\n", encoding="ascii")
        address = self.start_server()
        if not self.project.emulator:  # which shows all files as those of their reader
            token.chmod(0o644)
            code, output, _ = self.project.analyze("--cache", address, "--cache-token-file", str(token))
            self.assertEqual(code, 1)
            self.assertIn("can be read by others", output)
            self.assertEqual(Behaviour.requests, 0)
        token.chmod(0o600)
        self.expect(self.project.analyze("--cache", address, "--cache-token-file", self.project.seen(token)), 0)
        self.assertEqual(set(Behaviour.tokens), {"Bearer secret"})
        self.expect(self.project.analyze("--cache", address, "--cache-readonly"), UNITS)

    def test_a_large_result_is_sent_once(self):
        chooser = random.Random(1)
        findings = "".join(f"finding V501 1 {line} {chooser.getrandbits(400):x}\n" for line in range(1, 101))
        self.project.write("u0.c.script", findings)
        self.expected = self.project.analyze()[2]
        address = self.start_server()
        self.expect(self.project.analyze("--cache", address), 0)
        self.assertEqual((Behaviour.asked, Behaviour.put), (1, UNITS))
        entries = dict(Behaviour.entries)
        large = max(entries, key=lambda path: len(entries[path]))
        # It comes there between the look and the end of the analysis.
        del Behaviour.entries[large]
        Behaviour.late = {large: entries[large]}
        self.expect(self.project.analyze("--cache", address), UNITS - 1)
        self.assertEqual((Behaviour.asked, Behaviour.put), (2, UNITS))
        # What is there and damaged is no reason to keep the right one back.
        Behaviour.entries = {**entries, large: entries[large][:-1]}
        self.expect(self.project.analyze("--cache", address), UNITS - 1)
        self.assertEqual(Behaviour.entries, entries)

    def test_a_server_that_fails_is_asked_three_times(self):
        address = self.start_server()
        Behaviour.mode = "failing"
        self.expect(self.project.analyze("--cache", address), 0, "failed 3 times and was asked no more")
        self.assertLessEqual(Behaviour.requests, 3 + 1)  # one more may be under way

    def test_nobody_listens(self):
        address = f"http://127.0.0.1:{free_port()}"
        self.expect(self.project.analyze("--cache", address), 0, "failed 3 times")

    def test_wrong_answers_are_misses(self):
        address = self.start_server()
        self.expect(self.project.analyze("--cache", address), 0)
        Behaviour.mode = "lying"
        self.expect(self.project.analyze("--cache", address), 0)
        Behaviour.mode = "truncating"
        self.expect(self.project.analyze("--cache", address), 0, "failed 3 times")
        Behaviour.mode = "right"
        self.expect(self.project.analyze("--cache", address), UNITS)

    def test_a_slow_server_does_not_hold_a_run_up_for_ever(self):
        address = self.start_server()
        Behaviour.mode = "slow"
        begin = time.monotonic()
        self.expect(self.project.analyze("--cache", address), 0, "failed 3 times")
        self.assertLess(time.monotonic() - begin, 60)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
