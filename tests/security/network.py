"""Watches what a program reaches beyond itself, and takes the network away from one."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

# Sockets that stay on the machine: those of the desktop, and questions to the kernel.
LOCAL = {"AF_UNIX", "AF_LOCAL", "AF_NETLINK"}
# Two sanitizers cannot work on a traced program; what they look for is looked for elsewhere.
TRACED = {"ASAN_OPTIONS": "detect_leaks=0"}


def works(*command):
    return subprocess.run(command, capture_output=True).returncode == 0


CAN_TRACE = works("strace", "-f", "-o", "/dev/null", "true")
CAN_ISOLATE = works("unshare", "--map-root-user", "--net", "true")


class Trace:
    """What programs do that are run with its prefix, and their children, until it is closed."""

    def __init__(self):
        self.file = tempfile.NamedTemporaryFile("r", suffix=".strace")
        self.prefix = ["strace", "--follow-forks", "--quiet=all", "--output", self.file.name,
                       "--trace=socket,socketpair,open,openat,creat,mkdir,mkdirat"]
        self.environment = TRACED

    def __enter__(self):
        return self

    def __exit__(self, *_):
        calls = self.file.read()
        self.file.close()
        # Families of sockets.
        self.families = set(re.findall(r"socket(?:pair)?\((\w+)", calls))
        # Files and folders that were made or opened for writing, but for devices.
        made = re.findall(r'(?:mkdir|creat)\w*\((?:AT_FDCWD, )?"([^"]+)".*\) += 0', calls)
        made += re.findall(r'open\w*\((?:AT_FDCWD, )?"([^"]+)", [^)]*O_(?:RDWR|WRONLY|CREAT)\b'
                           r'[^)]*\) += \d', calls)
        self.written = {pathlib.Path(path) for path in made
                        if not path.startswith(("/dev/", "/proc/"))}


def run(command, prefix=(), environment=None):
    return subprocess.run([*prefix, *map(str, command)], capture_output=True, text=True,
                          env={**os.environ, **(environment or {})})


def run_traced(command):
    """The result of a command and its trace."""
    with Trace() as trace:
        result = run(command, trace.prefix, trace.environment)
    return result, trace


# Where there is no network interface, not even the machine's own.
WITHOUT_NETWORK = ["unshare", "--map-root-user", "--net"]


class Watching(unittest.TestCase):
    """That the watch would see what it is there for."""

    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_a_connection_of_a_child_is_seen(self):
        connecting = "import socket; socket.socket(socket.{}, socket.SOCK_DGRAM)"
        for family in ("AF_INET", "AF_INET6"):
            _, trace = run_traced(["sh", "-c", f"python3 -c '{connecting.format(family)}'; true"])
            self.assertIn(family, trace.families)
            self.assertNotIn(family, LOCAL)

    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_a_file_that_a_child_writes_is_seen(self):
        with tempfile.TemporaryDirectory() as folder:
            _, trace = run_traced(
                ["sh", "-c", f"mkdir {folder}/a; echo x >{folder}/a/b; cat {folder}/a/b"])
            self.assertEqual({path for path in trace.written if str(path).startswith(folder)},
                             {pathlib.Path(folder, "a"), pathlib.Path(folder, "a", "b")})

    @unittest.skipUnless(CAN_ISOLATE, "network namespaces are not allowed here")
    def test_without_network_nobody_is_reached(self):
        reach = "import socket; socket.create_connection((\"127.0.0.1\", 9), 1)"
        result = run(["python3", "-c", reach], WITHOUT_NETWORK)
        self.assertIn("Network is unreachable", result.stderr)
