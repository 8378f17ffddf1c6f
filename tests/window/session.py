"""A desktop session of a test's own: a display, a session bus, an accessibility tree, a home."""

import contextlib
import os
import pathlib
import random
import shutil
import signal
import subprocess
import tempfile
import time

from gi.repository import Gio

PROGRAM = os.environ["MURKWELL"]
# How long a test waits for what has to come, in seconds. It decides nothing but how long a failure
# takes.
PATIENCE = 60

BUS_CONFIGURATION = """
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir={folder}</listen>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
# Of all services of the machine, only the one that the accessibility tree needs.
ACCESSIBILITY_SERVICE = "/usr/share/dbus-1/services/org.a11y.Bus.service"


def wait_until(condition, what):
    """The first true answer of the condition."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        if answer := condition():
            return answer
        time.sleep(0.05)
    raise AssertionError(f"waited in vain: {what}")


class Session:
    """Ends with everything in it when the block does."""

    def __init__(self, screen="1280x900"):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="murkwell-"))
        self.resources = contextlib.ExitStack()
        self.resources.callback(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = self._environment()
        # Nobody else's number: a server that ends takes the socket of one that has just begun under
        # the same number with it.
        number = random.randrange(100, 50000)
        self.environment["DISPLAY"] = ":" + self._start(
            ["Xvfb", f":{number}", "-displayfd", "1", "-screen", "0", f"{screen}x24", "-nolisten",
             "tcp", "-noreset"])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start(
            ["dbus-daemon", f"--config-file={self._bus_configuration()}", "--nofork", "--nopidfile",
             "--print-address=1"])

    def close(self):
        self.resources.close()

    def _environment(self):
        environment = {
            name: value for name, value in os.environ.items()
            if not name.startswith(("DBUS_", "QT_", "WAYLAND_", "XDG_", "LC_", "DESKTOP_", "GTK_"))}
        for name in ("home", "run", "services"):
            (self.folder / name).mkdir(mode=0o700)
        # The models stay where they are, whatever the home.
        cache = os.environ.get("XDG_CACHE_HOME", os.path.expanduser("~/.cache"))
        environment.update({
            "HOME": str(self.folder / "home"), "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "XDG_CACHE_HOME": cache, "LANG": "C.UTF-8", "LANGUAGE": "",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        return environment

    def _bus_configuration(self):
        shutil.copy(ACCESSIBILITY_SERVICE, self.folder / "services")
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(folder=self.folder))
        return configuration

    def _start(self, command):
        """Starts a server; the first line that it prints says where it is."""
        process = subprocess.Popen(command, env=self.environment, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        self.resources.callback(process.stdout.close)
        self.resources.callback(process.wait)
        self.resources.callback(process.terminate)
        line = process.stdout.readline().strip()
        assert line, f"{command[0]} did not start"
        return line

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def run(self, *arguments, **environment):
        """A start that is expected to end by itself."""
        return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True,
                              env=self._with(environment), timeout=PATIENCE)

    @contextlib.contextmanager
    def running(self, *arguments, **environment):
        """A start that opens the window; gone at the end of the block."""
        with tempfile.TemporaryFile("w+") as said:
            process = subprocess.Popen([PROGRAM, *map(str, arguments)], stderr=said,
                                       env=self._with(environment))
            try:
                yield process
            finally:
                if process.poll() is None:
                    process.terminate()
                process.wait(PATIENCE)
                said.seek(0)
                print(said.read(), end="")
        # Ended by itself or by the test, but not by a fault.
        assert process.returncode in (0, -signal.SIGTERM), process.returncode

    def _with(self, changes):
        """None takes a variable away."""
        environment = {**self.environment, **changes}
        return {name: value for name, value in environment.items() if value is not None}

    def windows(self, process):
        """The numbers of the windows that the process shows under its own title."""
        return subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--all", "--pid", str(process.pid), "--name",
             "^Murkwell$"],
            capture_output=True, text=True, env=self.environment).stdout.split()

    def window_of(self, process):
        """Waits for it."""
        def visible():
            assert process.poll() is None, f"ended with {process.returncode}"
            return self.windows(process)
        return wait_until(visible, "the window")[0]

    def press(self, window, keys):
        self.act("windowfocus", "--sync", window, "key", keys)

    def drag(self, window, start, end):
        """With the left button, between two points of the window."""
        self.act("mousemove", "--window", window, *start, "mousedown", 1)
        middle = [(a + b) // 2 for a, b in zip(start, end)]
        self.act("mousemove", "--window", window, *middle)
        self.act("mousemove", "--window", window, *end, "mouseup", 1)

    def begin_drop(self, source, addresses, over):
        """Drags the addresses from another program, started here, to a point of the display, where
        the button stays pressed. Answers with that program's process."""
        process = subprocess.Popen([source, *addresses], env=self.environment,
                                   stdout=subprocess.PIPE, text=True)
        self.act("search", "--sync", "--onlyvisible", "--name", "^Drag source$")
        start = (1150, 800)  # inside its window
        self.act("mousemove", *start, "mousedown", 1)
        steps = 12
        for step in range(1, steps + 1):
            self.act("mousemove", *(round(a + (b - a) * step / steps)
                                    for a, b in zip(start, over)))
            time.sleep(0.05)
        return process

    def act(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], check=True, env=self.environment)

    def ask_bus(self, destination, path, method, arguments):
        """The answer; the method with its interface, the arguments as a GLib variant."""
        interface, _, member = method.rpartition(".")
        bus = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
            Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        try:
            return bus.call_sync(destination, path, interface, member, arguments, None,
                                 Gio.DBusCallFlags.NONE, PATIENCE * 1000, None).unpack()
        finally:
            bus.close_sync()
