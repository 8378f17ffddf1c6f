"""The program as those see it who use it without eyes: through the accessibility tree.

Looks at the session that is in os.environ when it is first asked.
"""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from session import wait_until  # noqa: E402


def walk(node):
    """The node and all below it. Nodes that go while one looks are left out."""
    yield node
    try:
        children = [node.get_child_at_index(i) for i in range(node.get_child_count())]
    except GLib.GError:
        return
    for child in children:
        if child is not None:
            yield from walk(child)


def is_shown(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def is_enabled(node):
    return node.get_state_set().contains(Atspi.StateType.ENABLED)


class Tree:
    """What one process shows."""

    def __init__(self, process):
        self.process = process

    def application(self):
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child is not None and child.get_process_id() == self.process.pid:
                return child
        return None

    def nodes(self):
        application = self.application()
        return [] if application is None else walk(application)

    def shown(self):
        """Role and name of everything shown."""
        found = []
        for node in self.nodes():
            try:
                if is_shown(node):
                    found.append((node.get_role_name(), node.get_name()))
            except GLib.GError:
                continue
        return found

    def find(self, name, role=None):
        """What is shown under the name, or None."""
        for node in self.nodes():
            try:
                if node.get_name() == name and is_shown(node) and role in (None, node.get_role_name()):
                    return node
            except GLib.GError:
                continue
        return None

    def await_node(self, name, role=None):
        return wait_until(lambda: self.find(name, role), f"“{name}” in the accessibility tree")

    def await_absence(self, name, role=None):
        wait_until(lambda: self.find(name, role) is None, f"“{name}” to go")

    def press(self, name, role=None):
        """Does what a click does. Menu commands can be pressed while their menu is closed."""
        def node():
            found = self.find(name, role)
            if found is None:
                found = next((each for each in self.nodes() if each.get_name() == name and
                              each.get_role_name() == "menu item"), None)
            return found if found is not None and is_enabled(found) else None
        wait_until(node, f"“{name}” to be pressed").do_action(0)
