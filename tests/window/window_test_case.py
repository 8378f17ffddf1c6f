"""What the tests of the window have in common."""

import contextlib
import os
import unittest

from accessibility import Tree
from gi.repository import GLib
from session import Session, wait_until


class WindowTestCase(unittest.TestCase):
    """All tests of a module share one session: the accessibility library connects only once."""

    session = None

    @classmethod
    def setUpClass(cls):
        if WindowTestCase.session is None:
            WindowTestCase.session = Session()
            unittest.addModuleCleanup(WindowTestCase.session.close)
            os.environ.update(WindowTestCase.session.environment)

    def quit(self, process, tree):
        """Ends the program as its user does."""
        # It may be gone before it has answered that it was pressed.
        with contextlib.suppress(GLib.GError):
            tree.press("Quit", "menu item")
        self.assert_ends(process)

    def assert_ends(self, process):
        wait_until(lambda: process.poll() is not None, "the program to end")
        self.assertEqual(process.returncode, 0)

    def started(self, *arguments, **environment):
        """The process and its tree, once the window is there."""
        process = self.enterContext(self.session.running(*arguments, **environment))
        self.session.window_of(process)
        return process, Tree(process)
