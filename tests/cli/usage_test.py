"""What the program says and answers when something is off."""

import json
import os
import unittest

import documents
from program import TestInFolder, murkwell

BOX = ("--box", "1:0.1,0.1,0.3,0.05")


class WrongUsage(unittest.TestCase):
    def test_is_answered_with_2_and_one_line(self):
        for arguments in (
                [],
                ["unknown"],
                ["info"],
                ["redact"],
                ["redact", "a.pdf"],
                ["redact", *BOX],
                ["redact", "a.pdf", *BOX, "--unknown"],
                ["redact", "a.pdf", "b.pdf", *BOX, "-o", "c.pdf"],
                ["redact", "a.pdf", *BOX, "-o", "c.pdf", "--out-dir", "d"],
                ["redact", "a.pdf", *BOX, "--style", "Noise"],
                *(["redact", "a.pdf", *BOX, "--save", name]
                  for name in ("work.pdf", "folder/", ".", "..")),
                *(["redact", "a.pdf", *BOX, option, ""]
                  for option in ("--find", "-o", "--out-dir", "--save", "--password-file")),
                *(["scan", "a.pdf", "--find", text] for text in ("", " \t", "\u2003", "\udce9")),
                *(["redact", "a.pdf", "--box", box] for box in (
                    "", "1", "1:", "0:0,0,1,1", "-1:0,0,1,1", "x:0,0,1,1", "1:0,0,1", "1:0,0,1,1,1",
                    "1:0,0,1,1:", "1:0,0,1,1:blur", "1:0,0,1,1:NOISE", "1:0,0,nan,1", "1:0,0,inf,1",
                    "1:0,0,0,1", "1:0,0,-1,1", "1:1,0,1,1", "1:-2,0,1,1", "1:0x1,0,1,1", "1:0 ,0,1,1",
                    "99999999999:0,0,1,1"))):
            with self.subTest(arguments):
                result = murkwell(*arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)

    def test_help_and_version_are_no_mistakes(self):
        for arguments in (["--help"], ["--version"], ["redact", "--help"], ["info", "--help"]):
            result = murkwell(*arguments)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertTrue(result.stdout)


class Files(TestInFolder):
    def setUp(self):
        super().setUp()
        self.source = self.write("a.pdf", documents.letter(2))
        self.picture = self.write("b.png", documents.png(8, 6, lambda x, y: (x, y, 0)))

    def assert_fails(self, message, *arguments):
        result = murkwell(*arguments)
        self.assertEqual((result.returncode, result.stderr), (1, message + "\n"))

    def test_info_says_what_a_file_is(self):
        result = murkwell("info", self.source, self.picture)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual([json.loads(line) for line in result.stdout.splitlines()], [
            {"file": str(self.source), "isPDF": True, "imageType": "com.adobe.pdf",
             "pages": [[600, 400], [600, 400]]},
            {"file": str(self.picture), "isPDF": False, "imageType": "public.png", "pages": [[8, 6]]}])

    def test_a_bad_file_does_not_stop_the_others(self):
        bad = self.write("bad.pdf", b"\x89PNG no PDF")
        result = murkwell("redact", bad, self.folder / "missing.png", self.source, *BOX, "--json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr.splitlines(),
                         ["Couldn’t open “bad.pdf”.", "Couldn’t open “missing.png”."])
        self.assertEqual([json.loads(line) for line in result.stdout.splitlines()],
                         [{"file": str(self.source), "output": str(self.folder / "a-redacted.pdf"),
                           "redactions": 1}])

    def test_places_that_cannot_be_written(self):
        (self.folder / "folder.pdf").mkdir()
        for destination in ("folder.pdf", "missing/out.pdf"):
            self.assert_fails(f"Couldn’t write to “{os.path.basename(destination)}”.",
                              "redact", self.source, *BOX, "-o", self.folder / destination, "--force")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["a.pdf", "b.png", "folder.pdf"])

    def test_a_box_for_a_page_that_is_not_there_fails_before_anything_is_written(self):
        self.assert_fails("“a.pdf” has no page 3; its last page is 2.",
                          "redact", self.source, "--box", "3:0,0,1,1")
        self.assertFalse((self.folder / "a-redacted.pdf").exists())


if __name__ == "__main__":
    unittest.main()
