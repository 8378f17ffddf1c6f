"""Closing the window ends the program, whatever it is doing."""

import unittest

import documents
from session import wait_until
from window_test_case import WindowTestCase


class Closing(WindowTestCase):
    def test_during_a_search_ends_the_program_at_once(self):
        # Several minutes of searching; the program has to be gone long before.
        long = self.session.write("long.pdf", documents.letter(400, 600, 800))
        process, tree = self.started(long)
        tree.press("Auto-Detect", "push button")
        tree.press("All Pages", "radio button")
        tree.press("Detect & Redact", "push button")
        wait_until(lambda: tree.find("Auto-Detect", "push button").get_description() == "Scanning…",
                   "the search")
        self.quit(process, tree)

    def test_with_unsaved_work_is_not_asked_about(self):
        letter = self.session.write("letter.pdf", documents.letter(2))
        process, tree = self.started(letter)
        window = self.session.window_of(process)
        tree.await_node("Page 1 of 2")
        self.session.drag(window, (500, 200), (600, 300))
        tree.await_node("Unsaved changes")
        self.session.press(window, "ctrl+q")
        self.assert_ends(process)


if __name__ == "__main__":
    unittest.main()
