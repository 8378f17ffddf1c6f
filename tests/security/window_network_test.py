"""The window on its whole road: open, draw, search, save, export."""

import pathlib
import sys
import unittest

import documents
from network import CAN_ISOLATE, CAN_TRACE, LOCAL, WITHOUT_NETWORK, Trace, run
from program import TestInFolder

DRIVER = pathlib.Path(__file__).with_name("window.py")
WANTED = {"letter.murkwell", "letter-redacted.pdf"}
# What may be kept at home: the one setting, what fonts and drawing libraries remember, the folder
# of the desktop's own sockets.
KEPT = ("config/murkwell", "cache/fontconfig", "cache/mesa_shader_cache", "run")


def note():
    page = documents.stream("BT /F 24 Tf 1 0 0 1 40 150 Tm (Call 555-123-4567 before noon) Tj ET")
    return documents.pdf([
        b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 400 200] /Contents 4 0 R "
        b"/Resources << /Font << /F 5 0 R >> >> >>",
        page, b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"], 1)


class Road(TestInFolder):
    def setUp(self):
        super().setUp()
        self.write("letter.pdf", note())

    def assert_all_was_done(self, result):
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual({path.name for path in self.folder.iterdir()} - {"home", "letter.pdf"},
                         WANTED)

    def is_expected(self, path):
        home = self.folder / "home"
        places = {path, *path.parents}
        # Beside the source only what is wanted stays; files are written under another name first.
        return (path.parent == self.folder or path == home / "config"
                or any(home / kept in places for kept in KEPT))

    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_no_socket_leaves_the_machine_and_only_what_was_asked_for_is_written(self):
        with Trace() as trace:
            result = run([sys.executable, DRIVER, self.folder, *trace.prefix],
                         environment=trace.environment)
        self.assert_all_was_done(result)
        self.assertIn("AF_UNIX", trace.families)
        self.assertLessEqual(trace.families, LOCAL)
        unexpected = {path for path in trace.written if not self.is_expected(path)}
        self.assertEqual(unexpected, set())

    @unittest.skipUnless(CAN_ISOLATE, "network namespaces are not allowed here")
    def test_everything_works_without_a_network(self):
        self.assert_all_was_done(run([sys.executable, DRIVER, self.folder], WITHOUT_NETWORK))
