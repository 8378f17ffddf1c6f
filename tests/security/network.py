"""Watches a program's sockets, and takes the network away from one."""

import os
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


def sockets_of(command, **options):
    """The result of a command, and the families of all sockets that it and its children made."""
    with tempfile.NamedTemporaryFile("r", suffix=".strace") as trace:
        result = subprocess.run(
            ["strace", "--follow-forks", "--quiet=all", "--trace=socket,socketpair",
             "--output", trace.name, *map(str, command)],
            capture_output=True, text=True, env={**os.environ, **TRACED}, **options)
        return result, set(re.findall(r"socket(?:pair)?\((\w+)", trace.read()))


def without_network(command):
    """The command, to be run where there is no network interface, not even the machine's own."""
    return ["unshare", "--map-root-user", "--net", *map(str, command)]


class Watching(unittest.TestCase):
    """That the watch would see what it is there for."""

    @unittest.skipUnless(CAN_TRACE, "strace is not allowed to trace here")
    def test_a_connection_of_a_child_is_seen(self):
        connecting = "import socket; socket.socket(socket.{}, socket.SOCK_DGRAM)"
        for family in ("AF_INET", "AF_INET6"):
            _, families = sockets_of(
                ["sh", "-c", f"python3 -c '{connecting.format(family)}'; true"])
            self.assertIn(family, families)
            self.assertNotIn(family, LOCAL)

    @unittest.skipUnless(CAN_ISOLATE, "network namespaces are not allowed here")
    def test_without_network_nobody_is_reached(self):
        reach = "import socket; socket.create_connection((\"127.0.0.1\", 9), 1)"
        result = subprocess.run(without_network(["python3", "-c", reach]), capture_output=True,
                                text=True)
        self.assertIn("Network is unreachable", result.stderr)
