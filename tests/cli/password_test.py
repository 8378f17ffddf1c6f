"""PDFs that ask for a password."""

import contextlib
import os
import plistlib
import pty
import subprocess
import termios
import unittest

import documents
from program import CLI, TestInFolder, murkwell, output_of

BOX = ("--box", "1:0.1,0.1,0.3,0.05")
PASSWORD = "grün und blau"


class Password(TestInFolder):
    def setUp(self):
        super().setUp()
        plain = self.write("plain.pdf", documents.letter(1))
        self.source = self.folder / "locked.pdf"
        output_of("qpdf", "--encrypt", PASSWORD, "the owner", "256", "--", plain, self.source)
        self.right = self.write("right", f"{PASSWORD}\r\nanother line\n".encode())
        self.exported = self.folder / "locked-redacted.pdf"

    def without_terminal(self, *arguments):
        return murkwell(*arguments, start_new_session=True, stdin=subprocess.DEVNULL)

    def at_terminal(self, *answers):
        """Exit code and all that the terminal showed, and whether it shows what is typed again."""
        child, terminal = pty.fork()
        if child == 0:
            os.execv(CLI, [CLI, "redact", str(self.folder / "plain.pdf"), str(self.source), *BOX, "--force"])
        shown = b""
        for count, answer in enumerate(answers, 1):
            while shown.count("”: ".encode()) < count:
                shown += os.read(terminal, 1000)
            self.assertFalse(termios.tcgetattr(terminal)[3] & termios.ECHO)
            os.write(terminal, answer)
        with contextlib.suppress(OSError):  # which is how the terminal of a process ends with it
            while True:
                shown += os.read(terminal, 1000)
        status = os.waitpid(child, 0)[1]
        echoes = bool(termios.tcgetattr(terminal)[3] & termios.ECHO)
        os.close(terminal)
        return os.waitstatus_to_exitcode(status), shown.decode(), echoes

    def test_from_a_file(self):
        for password, reason in ((self.right, None),
                                 (self.write("owner", b"the owner"), None),
                                 (self.write("wrong", b"wrong\n"), "The password of “locked.pdf” is wrong.\n"),
                                 (self.write("empty", b"\n"), "Couldn’t read a password from “empty”.\n"),
                                 (self.folder / "none", "Couldn’t read a password from “none”.\n")):
            self.exported.unlink(missing_ok=True)
            result = self.without_terminal("redact", self.source, *BOX, "--password-file", password)
            self.assertEqual((result.returncode, result.stderr), (1 if reason else 0, reason or ""))
            self.assertEqual(self.exported.exists(), reason is None)
        self.redact(self.source, self.folder / "plain.pdf", *BOX, "--password-file", self.right, "--force")
        self.assertIn(b"File is not encrypted", output_of("qpdf", "--show-encryption", self.exported))

    def test_without_terminal_or_file_is_told(self):
        for command in ("info", "scan", "text"):
            result = self.without_terminal(command, self.source)
            self.assertEqual((result.returncode, result.stdout, result.stderr), (
                1, "", "“locked.pdf” needs a password. Give it with --password-file.\n"))
            result = self.without_terminal(command, self.source, "--password-file", self.right)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(murkwell("info", self.source, "--password", PASSWORD).returncode, 2)

    def test_is_asked_for_at_the_terminal(self):
        right = PASSWORD.encode() + b"\n"
        for answers, code in (((b"wrong\n", right), 0), ((b"1\n", b"2\n", b"3\n"), 1),
                              ((b"\n",), 1), ((b"gr\x03",), -2)):
            self.exported.unlink(missing_ok=True)
            exit_code, shown, echoes = self.at_terminal(*answers)
            self.assertEqual((exit_code, self.exported.exists()), (code, code == 0), shown)
            self.assertTrue(echoes)
            self.assertNotIn("gr", shown)
            self.assertEqual(shown.count("Password of “locked.pdf”: "), len(answers))
            self.assertNotIn("locked.pdfP", shown)  # the progress is taken away for the question

    def test_saved_work_keeps_the_bytes_and_asks_again(self):
        work = self.folder / "work.murkwell"
        self.redact(self.source, *BOX, "--save", work, "--password-file", self.right)
        self.assertEqual(plistlib.loads(work.read_bytes())["sourceData"], self.source.read_bytes())
        self.assertNotIn(PASSWORD.encode(), work.read_bytes())
        self.assertEqual(self.without_terminal("redact", work).stderr,
                         "“work.murkwell” needs a password. Give it with --password-file.\n")
        self.redact(work, "--password-file", self.right)
        self.assertTrue(self.exported.exists())


if __name__ == "__main__":
    unittest.main()
