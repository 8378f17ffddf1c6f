"""Files that are dragged onto the window from another program."""

import os
import unittest

import documents
from window_test_case import WindowTestCase

SOURCE = os.environ["MURKWELL_DRAG_SOURCE"]
OVER_THE_WINDOW = (500, 300)


class Drop(WindowTestCase):
    def setUp(self):
        self.process, self.tree = self.started()
        self.tree.await_node("Choose File…")

    def drop(self, *addresses):
        """How the drag has ended for the program that the addresses come from; it stays."""
        source = self.session.begin_drop(SOURCE, addresses, OVER_THE_WINDOW)
        self.addCleanup(source.stdout.close)
        self.addCleanup(source.wait)
        self.addCleanup(source.terminate)
        self.session.act("mouseup", 1)
        return source.stdout.readline().strip()

    def test_opens_the_first_that_can_be_opened(self):
        notes = self.session.write("notes.txt", b"")
        letter = self.session.write("letter.pdf", documents.letter(2))
        addresses = [notes.as_uri(), "https://example.org/a.pdf", letter.as_uri()]
        self.assertEqual(self.drop(*addresses), "taken")
        self.tree.await_node("letter.pdf")
        self.tree.await_node("Page 1 of 2")

    def test_without_a_file_is_refused(self):
        self.assertEqual(self.drop("https://example.org/a.pdf"), "refused")
        self.assertIsNotNone(self.tree.find("Choose File…"))

    def test_of_a_file_that_has_gone_is_told(self):
        self.assertEqual(self.drop("file:///nowhere/letter.pdf"), "taken")
        self.tree.await_node("Couldn’t open “letter.pdf”.")


if __name__ == "__main__":
    unittest.main()
