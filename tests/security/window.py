"""Works with the window as a user does: opens, draws, searches, saves, exports, quits.

usage: window.py FOLDER [PREFIX...]    FOLDER has letter.pdf; PREFIX runs the program, as strace does
"""

import os
import pathlib
import plistlib
import subprocess
import sys
import time

PATIENCE = 90  # seconds; a traced search in a sanitized build on a busy machine


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            sys.exit(f"{what}: waited in vain")
        time.sleep(0.2)


class Desktop:
    """A display and a session bus of its own, and a home where everything written stays."""

    def __init__(self, home):
        home.mkdir(exist_ok=True)
        models = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"))
        cache = home / "cache"
        cache.mkdir(exist_ok=True)
        if not (cache / "murkwell").exists():
            (cache / "murkwell").symlink_to(models / "murkwell")
        run_time = home / "run"
        run_time.mkdir(mode=0o700, exist_ok=True)
        self.environment = {
            **os.environ, "HOME": str(home), "XDG_CACHE_HOME": str(cache),
            "XDG_CONFIG_HOME": str(home / "config"), "XDG_DATA_HOME": str(home / "data"),
            "XDG_RUNTIME_DIR": str(run_time), "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8"}
        for name in ("LANGUAGE", "WAYLAND_DISPLAY", "QT_QPA_PLATFORMTHEME"):
            self.environment.pop(name, None)
        self.display = self.start("Xvfb", "-displayfd", "1", "-nolisten", "tcp",
                                  "-screen", "0", "1280x900x24")
        self.environment["DISPLAY"] = ":" + self.display.stdout.readline().strip()
        self.bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().strip()

    def start(self, *command):
        return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                text=True, env=self.environment)

    def close(self):
        for server in (self.bus, self.display):
            server.terminate()
            server.wait()
            server.stdout.close()

    def act(self, *actions):
        """What xdotool prints; empty when it fails."""
        return subprocess.run(["xdotool", *map(str, actions)], capture_output=True, text=True,
                              env=self.environment).stdout

    def window(self, title):
        return self.act("search", "--onlyvisible", "--name", title).split()

    def expect(self, title):
        """Waits for the window and gives it the keyboard, as there is no window manager."""
        wait_for(f"the window {title}", lambda: self.window(title))
        time.sleep(0.5)
        window = self.window(title)[-1]
        self.act("windowfocus", "--sync", window)
        return window

    def press(self, *keys):
        for key in keys:
            self.act("key", key)
            time.sleep(0.3)


def detected(document):
    try:
        pages = plistlib.loads(document.read_bytes())["pages"]
    except (OSError, plistlib.InvalidFileException):
        return []
    return [box["detected"] for page in pages for box in page]


def work(desktop, program, folder):
    """The road of a document; returns what the program said on standard error."""
    saved, exported = folder / "letter.murkwell", folder / "letter-redacted.pdf"
    running = subprocess.Popen([*program, str(folder / "letter.pdf")], env=desktop.environment,
                               stderr=subprocess.PIPE, text=True)
    main = desktop.expect("^Murkwell$")
    # The page stands in the middle.
    desktop.act("mousemove", "--window", main, 500, 300, "mousedown", 1)
    for x in (540, 580, 620):
        desktop.act("mousemove", "--window", main, x, 340)
    desktop.act("mouseup", 1)

    desktop.press("ctrl+shift+s")
    desktop.expect("^Save As$")
    desktop.press("Return")
    wait_for("the drawn box", lambda: detected(saved) == [False])

    desktop.expect("^Murkwell$")
    # Behind the six kinds stands what starts the search. The document says when that is done.
    desktop.press("ctrl+d", *["Tab"] * 6, "space")

    def saves_what_was_found():
        desktop.press("ctrl+s")
        return True in detected(saved)

    wait_for("found boxes", saves_what_was_found)

    desktop.press("ctrl+e", "Return")
    desktop.expect("^Save As$")
    desktop.press("Return")
    wait_for("the export", exported.is_file)
    desktop.expect("^Murkwell$")
    wait_for("the end of the program",
             lambda: desktop.press("ctrl+q") or running.poll() is not None)
    if running.returncode != 0:
        sys.exit(f"the program ended with {running.returncode}")
    return running.stderr.read()


def main():
    folder, prefix = pathlib.Path(sys.argv[1]), sys.argv[2:]
    desktop = Desktop(folder / "home")
    try:
        work(desktop, [*prefix, os.environ["MURKWELL"]], folder)
    finally:
        desktop.close()


if __name__ == "__main__":
    main()
