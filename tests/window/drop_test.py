"""Files that are dragged onto the window from another program."""

import os
import subprocess
import time
import unittest

import documents
from window_test_case import WindowTestCase

SOURCE = os.environ["MURKWELL_DRAG_SOURCE"]
START, OVER_THE_WINDOW = (1150, 800), (500, 300)


class Drop(WindowTestCase):
    def setUp(self):
        self.process, self.tree = self.started()
        self.tree.await_node("Choose File…")

    def drop(self, *addresses):
        """Drags from another program, which stays; answers with how it ended there."""
        source = subprocess.Popen([SOURCE, *addresses], env=self.session.environment,
                                  stdout=subprocess.PIPE, text=True)
        self.addCleanup(source.stdout.close)
        self.addCleanup(source.wait)
        self.addCleanup(source.terminate)
        self.session.act("search", "--sync", "--onlyvisible", "--name", "^Drag source$")
        self.session.act("mousemove", *START, "mousedown", 1)
        steps = 12
        for step in range(1, steps + 1):
            self.session.act("mousemove", *(round(a + (b - a) * step / steps)
                                            for a, b in zip(START, OVER_THE_WINDOW)))
            time.sleep(0.05)
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
