"""murkwell-cli on its whole road: search, export, save, open what was saved."""

import unittest

import documents
from network import (CAN_ISOLATE, CAN_TRACE, LOCAL, TRACED, WITHOUT_NETWORK,  # noqa: F401
                     Watching, run, run_traced)
from program import CLI, TestInFolder


class Road(TestInFolder):
    def setUp(self):
        super().setUp()
        pixels = documents.png(64, 48, lambda x, y: (x * 4 % 256, y * 5 % 256, 128))
        self.letter = self.write("letter.pdf", documents.letter(2))
        self.picture = self.write("picture.png", pixels)
        self.saved = self.folder / "work.murkwell"
        self.exports = self.folder / "exports"
        self.exports.mkdir()
        # Where the models could not be fetched, faces cannot be looked for.
        finds_faces = run((CLI, "scan", self.picture, "--detect", "faces")).returncode == 0
        self.kinds = "all" if finds_faces else "email,ssn,phone,creditCard,ipAddress"

    def commands(self):
        box = ("--box", "1:0.1,0.1,0.3,0.1")
        yield CLI, "scan", self.letter, self.picture, "--detect", self.kinds, "--find", "SECRET"
        yield CLI, "text", self.letter
        yield CLI, "redact", self.letter, "--detect", self.kinds, *box, "--save", self.saved
        yield CLI, "redact", self.saved, self.picture, *box, "--out-dir", self.exports
        yield CLI, "info", self.saved

    def assert_all_was_done(self):
        self.assertEqual({path.name for path in self.exports.iterdir()},
                         {"letter-redacted.pdf", "picture-redacted.png"})
        self.assertTrue(self.saved.is_file())

    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_no_socket_leaves_the_machine_and_only_what_was_asked_for_is_written(self):
        for command in self.commands():
            result, trace = run_traced(command)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertLessEqual(trace.families, LOCAL)
            elsewhere = {path for path in trace.written if self.folder not in path.parents}
            self.assertEqual(elsewhere, set())
        self.assert_all_was_done()

    @unittest.skipUnless(CAN_ISOLATE, "network namespaces are not allowed here")
    def test_everything_works_without_a_network(self):
        for command in self.commands():
            result = run(command, WITHOUT_NETWORK)
            self.assertEqual(result.returncode, 0, result.stderr)
        self.assert_all_was_done()


class Walls(TestInFolder):
    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_one_that_the_system_lacks_is_named_once(self):
        letter = self.write("letter.pdf", documents.letter(2))
        lacking = ["strace", "--follow-forks", "--quiet=all", "--output=/dev/null",
                   "--trace=landlock_create_ruleset",
                   "--inject=landlock_create_ruleset:error=ENOSYS"]
        result = run([CLI, "info", letter, letter], lacking, TRACED)
        self.assertEqual((result.returncode, result.stderr),
                         (0, "Files are opened with less protection than usual: this system lacks "
                             "Landlock.\n"))
