"""Runs murkwell-cli and the programs that judge what it wrote."""

import os
import pathlib
import subprocess
import tempfile
import unittest

CLI = os.environ["MURKWELL_CLI"]

# What the program says first where the models could not be fetched.
MISSING_ENGINES = ("Text is read by Tesseract alone, which misses more: ONNX Runtime or its models are "
                   "missing.\n", "Faces are not found: ONNX Runtime or its model is missing.\n")


def murkwell(*arguments, **options):
    """The program's result, without the lines that depend on whether there are models."""
    result = subprocess.run([CLI, *map(str, arguments)], capture_output=True, text=True, **options)
    for notice in MISSING_ENGINES:
        result.stderr = result.stderr.replace(notice, "")
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
