"""Where results go: nothing is lost, nothing is replaced unasked, nobody reads what is not for them."""

import os
import pathlib
import shutil
import subprocess
import unittest

import documents
from program import CLI, TestInFolder, murkwell

BOX = ("--box", "1:0,0,0.5,0.5")
CAN_INJECT = shutil.which("strace") and subprocess.run(
    ["strace", "-o", "/dev/null", "-e", "inject=fsync:delay_enter=1", "true"],
    capture_output=True).returncode == 0


class Targets(TestInFolder):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)
        for name in ("a.png", "a-redacted.png", "more/a.png"):
            (self.folder / name).parent.mkdir(exist_ok=True)
            self.write(name, documents.png(8, 6, lambda x, y: (x, y, len(name))))
        (self.folder / "out").mkdir()
        (self.folder / "link").symlink_to("more")
        (self.folder / "again.png").hardlink_to("a.png")
        self.redact("a.png", *BOX, "--save", "work")

    def contents(self):
        return {path: path.read_bytes() for path in self.folder.rglob("*") if path.is_file()}

    def test_no_target_is_a_source_or_another_target(self):
        before = self.contents()
        for arguments in (
                ["a.png", "-o", "a.png"],
                ["a.png", "-o", "more/../a.png"],
                ["a.png", "-o", "again.png"],
                ["a.png", "a-redacted.png"],
                ["a-redacted.png", "a.png"],
                ["more/a.png", "link/a.png"],
                ["a.png", "more/a.png", "--out-dir", "out"],
                ["work.murkwell", "a.png"],
                ["work.murkwell", "-o", "work.murkwell"],
                ["a.png", "--save", "new", "-o", "out/../new.murkwell"],
                ["missing.png", "a.png", "a-redacted.png"]):
            with self.subTest(arguments):
                result = murkwell("redact", *arguments, *BOX, "--force")
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertIn("nothing was written", result.stderr)
                self.assertEqual(self.contents(), before)

    def test_a_file_is_replaced_only_when_forced(self):
        for name, arguments in (("out/x.png", ["-o", "out/x.png"]), ("w.murkwell", ["--save", "w"])):
            path = self.write(name, b"precious")
            result = murkwell("redact", "a.png", *BOX, *arguments)
            self.assertEqual((result.returncode, path.read_bytes()), (1, b"precious"))
            self.assertIn("--force", result.stderr)
            self.redact("a.png", *BOX, *arguments, "--force")
            self.assertNotEqual(path.read_bytes(), b"precious")

    def test_an_option_takes_one_value_and_no_source(self):
        for option in (BOX, ("--find", "Kowalski", *BOX), (*BOX, "--find", "[x,y]")):
            self.redact(*option, "more/a.png", "again.png", "--out-dir", "out", "--force")
            self.assertEqual(sorted(os.listdir("out")), ["a-redacted.png", "again-redacted.png"])
            shutil.rmtree("out")
            os.mkdir("out")

    def test_standard_output_and_pipes_are_written_to(self):
        # As /dev/stdout is one; a program that replaces it shall not do so to the machine's.
        os.symlink("/proc/self/fd/1", "stdout")
        for name in ("stdout", "/dev/fd/1"):
            result = subprocess.run([CLI, "redact", "a.png", *BOX, "-o", name], capture_output=True)
            self.assertEqual((result.returncode, result.stdout[:4]), (0, b"\x89PNG"), result.stderr)
        with open("log", "wb") as log:
            log.write(b"before")
            log.flush()
            subprocess.run([CLI, "redact", "a.png", *BOX, "-o", "stdout"], stdout=log, check=True)
        self.assertEqual(pathlib.Path("log").read_bytes()[:10], b"before\x89PNG")
        self.assertTrue(os.path.islink("stdout"))

    def test_results_that_nobody_gets_are_failures(self):
        unread, closed = os.pipe()
        os.close(unread)
        full = os.open("/dev/full", os.O_WRONLY)
        commands = (["info", "a.png", "more/a.png"], ["scan", "work.murkwell"], ["--version"],
                    ["redact", "a.png", *BOX, "--json", "--force"])
        for place in (closed, full, None):
            for command in commands:
                ending = (lambda: os.close(1)) if place is None else None
                result = subprocess.run([CLI, *command], stdout=place, stderr=subprocess.PIPE,
                                        preexec_fn=ending)
                self.assertEqual(result.returncode, 1, (place, command))
                self.assertLessEqual(result.stderr.count(b"\n"), 1)
        os.close(closed)
        os.close(full)

    @unittest.skipUnless(CAN_INJECT, "strace is not allowed to trace here")
    def test_what_comes_meanwhile_stays_and_what_is_half_written_goes(self):
        command = ["strace", "-qq", "-o", "/dev/null", "-e", "inject=fsync:delay_enter=3000000", CLI,
                   "redact", "a.png", *BOX, "-o", "out/x.png"]
        for signal, ending in (("", 1), ("TERM", -15)):
            running = subprocess.Popen(command, stderr=subprocess.DEVNULL)
            while not os.listdir("out"):
                pass
            (temporary,) = pathlib.Path("out").iterdir()
            self.assertEqual(temporary.stat().st_mode & 0o777, 0o600)
            if signal:
                child, = pathlib.Path(f"/proc/{running.pid}/task/{running.pid}/children").read_text().split()
                os.kill(int(child), 15)
            else:
                self.write("out/x.png", b"precious")
            self.assertIn(running.wait(), (ending, 128 - ending))
            if not signal:
                self.assertEqual((self.folder / "out/x.png").read_bytes(), b"precious")
                os.remove("out/x.png")
            self.assertEqual(os.listdir("out"), [])

    def test_names_reach_a_terminal_without_control_characters(self):
        name = "\x1b]0;x\x07\x7f\x9b\n.png"
        self.write(name, self.contents()[self.folder / "a.png"])
        for arguments in (["info", name], ["info", "no" + name], ["redact", name, *BOX, "--json"],
                          ["redact", name, *BOX], ["redact", "--" + name], [name],
                          ["redact", name, "--find", name, *BOX, "-o", name]):
            result = murkwell(*arguments)
            shown = (result.stdout + result.stderr).replace("\n", "")
            self.assertTrue(shown.isprintable() and name[:-4] not in shown, (arguments, shown))


if __name__ == "__main__":
    unittest.main()
