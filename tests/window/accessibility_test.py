"""Whether the program can be used through the accessibility tree."""

import unittest

import documents
from session import wait_until
from window_test_case import WindowTestCase

CONTROLS = {"push button", "check box", "radio button", "toggle button", "text", "menu item", "menu",
            "list", "list item", "dialog", "combo box"}


class AccessibilityTree(WindowTestCase):
    def assert_controls_are(self, tree, expected):
        """These and maybe others, none without a name."""
        wait_until(lambda: expected <= {name for _, name in tree.shown()}, str(expected))
        nameless = [role for role, name in tree.shown() if role in CONTROLS and not name]
        self.assertEqual(nameless, [])

    def test_of_the_empty_window(self):
        _, tree = self.started()
        self.assert_controls_are(tree, {"Open…", "Choose File…"})

    def test_of_a_document(self):
        _, tree = self.started(self.session.write("letter.pdf", documents.letter(3)))
        self.assert_controls_are(
            tree, {"Export…", "Find & Redact", "Auto-Detect", "Delete", "Clear", "Close", "Pages",
                   "Page 1", "Page 3", "Black bar", "White bar", "Noise"})

    def test_menus_are_complete(self):
        _, tree = self.started()
        tree.await_node("Choose File…", "push button")
        commands = {node.get_name() for node in tree.nodes() if node.get_role_name() == "menu item"}
        self.assertLessEqual({"Open…", "Save", "Save As…", "Quit", "Undo", "Redo", "Murkwell Help",
                              "About Murkwell", "Check for Updates…"}, commands)

    def test_boxes_are_in_it_and_can_be_undone(self):
        process, tree = self.started(self.session.write("letter.pdf", documents.letter(1)))
        tree.await_node("Export…", "push button")
        self.session.drag(self.session.window_of(process), (400, 200), (520, 300))
        tree.await_node("Redaction 1, black bar", "list item")
        tree.press("Undo Add Redaction", "menu item")
        tree.await_absence("Redaction 1, black bar", "list item")

    def test_the_open_panel_can_be_cancelled(self):
        process, tree = self.started()
        tree.press("Choose File…", "push button")
        tree.await_node("Open", "dialog")
        tree.press("Cancel", "push button")
        tree.await_absence("Open", "dialog")
        tree.await_node("Choose File…", "push button")
        self.quit(process, tree)

    def test_the_language_is_the_users(self):
        _, tree = self.started(LANG="de_DE.UTF-8")
        tree.press("Datei auswählen …", "push button")
        tree.await_node("Öffnen", "dialog")
        # Of Qt's own dialog.
        tree.press("Abbrechen", "push button")
        tree.await_absence("Öffnen", "dialog")


if __name__ == "__main__":
    unittest.main()
