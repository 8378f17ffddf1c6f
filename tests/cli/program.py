"""Runs murkwell-cli and the programs that judge what it wrote."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

CLI = os.environ["MURKWELL_CLI"]

# What the program says first where the models could not be fetched.
MISSING_READER = re.compile("More text than usual will be missed. Missing or damaged: .*\\.\n")


def murkwell(*arguments, **options):
    """The program's result, without the lines that depend on whether there are models."""
    result = subprocess.run([CLI, *map(str, arguments)], capture_output=True, text=True, **options)
    result.stderr = MISSING_READER.sub("", result.stderr)
    return result


def output_of(*command):
    """Standard output of a judge, which must succeed."""
    return subprocess.run(list(map(str, command)), check=True, capture_output=True).stdout


class TestInFolder(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def redact(self, *arguments):
        """Runs `redact`, which must succeed."""
        result = murkwell("redact", *arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result
