"""What a second start does while the program runs."""

import subprocess
import unittest

import documents
from session import PROGRAM, wait_until
from window_test_case import WindowTestCase


class SecondStart(WindowTestCase):
    def setUp(self):
        self.first, self.tree = self.started()
        self.tree.await_node("Choose File…")

    def test_hands_its_file_over(self):
        letter = self.session.write("letter.pdf", documents.letter(3))
        result = self.session.run(letter)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.tree.await_node("letter.pdf")
        self.tree.await_node("Page 1 of 3")

    def test_hands_over_any_name_from_any_folder(self):
        for name in ("an odd % name#1?.pdf", "Ünïcode 文書.pdf"):
            self.session.write(name, documents.letter(2))
            result = subprocess.run([PROGRAM, name], cwd=self.session.folder,
                                    env=self.session.environment)
            self.assertEqual(result.returncode, 0)
            self.tree.await_node(name)

    def test_replaces_what_is_open(self):
        for name in ("first.pdf", "second.pdf"):
            self.session.run(self.session.write(name, documents.letter(1)))
            self.tree.await_node(name)
        self.assertIsNone(self.tree.find("first.pdf"))

    def test_without_files_leaves_the_document_alone(self):
        self.session.run(self.session.write("letter.pdf", documents.letter(1)))
        self.tree.await_node("letter.pdf")
        self.assertEqual(self.session.run().returncode, 0)
        self.assertIsNotNone(self.tree.find("letter.pdf"))

    def test_waits_until_a_panel_is_gone(self):
        self.tree.press("Choose File…", "push button")
        self.tree.await_node("Open", "dialog")
        letter = self.session.write("letter.pdf", documents.letter(1))
        self.assertEqual(self.session.run(letter).returncode, 0)
        self.assertIsNone(self.tree.find("letter.pdf"))
        self.session.act("key", "Escape")
        self.tree.await_node("letter.pdf")


class ManyStarts(WindowTestCase):
    def test_at_once_leave_one_window(self):
        starts = [self.enterContext(self.session.running()) for _ in range(5)]
        running = wait_until(
            lambda: len(left := [each for each in starts if each.poll() is None]) == 1 and left,
            "all but one to end")
        self.session.window_of(running[0])
        self.assertEqual({each.returncode for each in starts if each is not running[0]}, {0})


if __name__ == "__main__":
    unittest.main()
