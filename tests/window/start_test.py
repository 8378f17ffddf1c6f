"""How the program starts, whatever is missing around it."""

import os
import unittest

import documents
from accessibility import Tree
from gi.repository import GLib
from session import wait_until
from window_test_case import WindowTestCase


class WithoutDisplay(WindowTestCase):
    def run_without(self, *arguments):
        return self.session.run(*arguments, DISPLAY=None)

    def test_help_and_version_are_told(self):
        for option in ("--version", "--help"):
            result = self.run_without(option)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("murkwell", result.stdout)

    def test_wrong_usage_is_told_in_one_line(self):
        result = self.run_without("--unknown")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(len(result.stderr.splitlines()), 1)

    def test_the_window_is_refused_in_the_users_language(self):
        english = self.run_without("letter.pdf")
        german = self.session.run(DISPLAY=None, LANG="de_DE.UTF-8")
        for result, part in ((english, "needs a graphical desktop"), (german, "grafische")):
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(part, result.stderr)


class Start(WindowTestCase):
    def test_shows_the_empty_window(self):
        process, tree = self.started()
        tree.await_node("Choose File…", "push button")
        self.assertIsNone(tree.find("Export…", "push button"))
        self.quit(process, tree)

    def test_opens_the_file_given(self):
        letter = self.session.write("letter.pdf", documents.letter(3))
        for argument in (letter, letter.as_uri(), os.path.relpath(letter)):
            process, tree = self.started(argument)
            tree.await_node("Page 1 of 3", "label")
            self.quit(process, tree)

    def test_says_what_cannot_be_opened(self):
        broken = self.session.write("broken.pdf", b"no PDF")
        text = self.session.write("notes.txt", b"notes")
        for argument, message in (
                (broken, "Couldn’t open “broken.pdf”."),
                (self.session.folder / "gone.pdf", "Couldn’t open “gone.pdf”."),
                (text, "No supported file found. Drop an image or a PDF.")):
            process, tree = self.started(argument)
            tree.await_node(message)
            self.quit(process, tree)

    def test_does_without_a_session_bus(self):
        for address in (None, "unix:path=/nowhere"):
            process, _ = self.started(DBUS_SESSION_BUS_ADDRESS=address)
            self.session.press(self.session.window_of(process), "ctrl+q")
            self.assert_ends(process)

    def test_does_without_a_home_to_write_to(self):
        for home in ("/proc", "/dev/null"):
            process, tree = self.started(HOME=home, XDG_CONFIG_HOME=home, XDG_RUNTIME_DIR=None)
            tree.await_node("Choose File…", "push button")
            self.quit(process, tree)

    def test_opens_no_network_socket(self):
        letter = self.session.write("letter.pdf", documents.letter(1))
        process, tree = self.started(letter)
        tree.await_node("Auto-Detect", "push button")
        own = {os.readlink(f"/proc/{process.pid}/fd/{number}")
               for number in os.listdir(f"/proc/{process.pid}/fd")}
        self.assertTrue(any(name.startswith("socket:") for name in own), "the display has one")
        for protocol in ("tcp", "tcp6", "udp", "udp6", "raw", "raw6"):
            with open(f"/proc/{process.pid}/net/{protocol}") as table:
                inodes = {f"socket:[{line.split()[9]}]" for line in table.readlines()[1:]}
            self.assertEqual(own & inodes, set(), protocol)
        self.quit(process, tree)


class StartByTheBus(WindowTestCase):
    NAME = "com.tallowick.Murkwell"

    def setUp(self):
        self.process = self.enterContext(self.session.running("--gapplication-service"))
        wait_until(lambda: self.session.ask_bus(
            "org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner",
            GLib.Variant("(s)", (self.NAME,)))[0], "the program on the bus")

    def ask(self, member, arguments):
        self.session.ask_bus(self.NAME, "/com/tallowick/Murkwell",
                             f"org.freedesktop.Application.{member}", arguments)

    def test_shows_no_window_until_it_is_asked(self):
        self.assertEqual(self.session.windows(self.process), [])
        self.ask("Activate", GLib.Variant("(a{sv})", ({},)))
        self.session.window_of(self.process)

    def test_opens_the_files_that_the_desktop_names(self):
        letter = self.session.write("letter.pdf", documents.letter(2))
        self.ask("Open", GLib.Variant("(asa{sv})", ([letter.as_uri()], {})))
        Tree(self.process).await_node("Page 1 of 2", "label")


if __name__ == "__main__":
    unittest.main()
