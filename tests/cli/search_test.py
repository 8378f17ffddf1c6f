"""Searching a page: what is found is where it stands, and redacting covers it."""

import json
import os
import re
import subprocess
import unittest

import documents
from program import CLI, TestInFolder, murkwell, output_of

LINES = ["Call 555-123-4567 before noon", "Mail jane.roe@example.com instead",
         "Nothing to see in this line"]


def note():
    """Two equal pages of 300 x 200 points; line i has its baseline at 160 - 40 i."""
    text = "".join(f"1 0 0 1 20 {160 - 40 * i} Tm ({line}) Tj " for i, line in enumerate(LINES))
    page = b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Contents 4 0 R " \
           b"/Resources << /Font << /F 5 0 R >> >> >>"
    return documents.pdf([
        b"<< /Type /Catalog /Pages 2 0 R >>",
        b"<< /Type /Pages /Count 2 /Kids [3 0 R 6 0 R] >>",
        page,
        documents.stream(f"BT /F 14 Tf {text} ET"),
        b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
        page,
    ], 1)


class Search(TestInFolder):
    def setUp(self):
        super().setUp()
        self.source = self.write("note.pdf", note())

    def lines_of(self, *arguments):
        result = murkwell(*arguments)
        self.assertEqual(result.returncode, 0, result.stderr)
        return [json.loads(line) for line in result.stdout.splitlines()]

    def scan(self, *arguments):
        return self.lines_of("scan", self.source, *arguments)

    def assert_on_line(self, box, index):
        """The box is as high as the line and wider than a word, left in the page."""
        x, y, width, height = box["rect"]
        baseline = 1 - (160 - 40 * index) / 200
        self.assertTrue(baseline - 0.12 < y < baseline - 0.04, box)
        self.assertTrue(baseline - 0.01 < y + height < baseline + 0.08, box)
        self.assertTrue(0.1 < x < 0.3 and 0.1 < width < 0.7, box)

    def test_each_kind_is_found_in_its_line_of_every_page(self):
        for kind, line in (("phone", 0), ("email", 1)):
            boxes = self.scan("--detect", kind)
            self.assertEqual({box["page"] for box in boxes}, {1, 2})
            for box in boxes:
                self.assert_on_line(box, line)
                self.assertEqual((box["style"], box["detected"]), ("solidBlack", True))

    def test_only_the_chosen_page_is_searched(self):
        self.assertEqual({box["page"] for box in self.scan("--detect", "phone", "--pages", "2")},
                         {2})

    def test_find_looks_for_what_was_typed_and_fuzzy_for_what_is_close(self):
        self.assertEqual(self.scan("--find", "INSTEED"), [])
        for box in self.scan("--find", "INSTEED", "--fuzzy") + self.scan("--find", "mAIL JANE"):
            self.assertGreater(box["rect"][1], 0.3)
            self.assertLess(box["rect"][1], 0.45)
        self.assertTrue(self.scan("--find", "INSTEED", "--fuzzy"))
        self.assertTrue(self.scan("--find", "mAIL JANE"))

    def test_text_gives_a_box_for_every_character(self):
        lines = self.lines_of("text", self.source, "--page", "1")
        self.assertTrue(any("555-123-4567" in line["line"] for line in lines))
        for line in lines:
            self.assertEqual(len(line["chars"]), len(line["line"]))
            for box in filter(None, line["chars"]):
                self.assertTrue(0 <= box[0] < box[2] <= 600 and 0 <= box[1] < box[3] <= 400, line)

    def test_redacting_covers_the_match_and_leaves_the_other_lines(self):
        self.redact(self.source, "--detect", "phone,email", "--pages", "1")
        output_of("mutool", "draw", "-q", "-r", "144", "-o", self.folder / "in-%d.ppm", self.source)
        output_of("pdfimages", self.folder / "note-redacted.pdf", self.folder / "out")
        before = documents.read_netpbm((self.folder / "in-1.ppm").read_bytes())
        after = [documents.read_netpbm(path.read_bytes())
                 for path in sorted(self.folder.glob("out-*.p?m"))]
        for line in (0, 1):
            # From the second word's middle, 10 points above the baseline, 60 x 10 points.
            place = (150, 2 * (40 + 40 * line - 10), 120, 20)
            self.assertIn((255, 255, 255), before.inside(*place))
            self.assertEqual(set(after[0].inside(*place)), {(0, 0, 0)})
        self.assertEqual(before.inside(0, 220, 600, 180), after[0].inside(0, 220, 600, 180))
        self.assertEqual(before.rows, after[1].rows)

    def test_what_cannot_be_searched_fails_names_what_is_missing_and_writes_nothing(self):
        nothing = self.folder / "nothing"
        nothing.mkdir()
        no_models = {"MURKWELL_MODELS": nothing}
        no_text = {**no_models, "TESSDATA_PREFIX": nothing}
        for lacking, arguments, message in (
                (no_models, ("--detect", "faces"), "“note.pdf”: Faces cannot be found."),
                (no_models, ("--detect", "all"), "“note.pdf”: Faces cannot be found."),
                (no_models, ("--detect", "phone"), None),
                (no_text, ("--detect", "phone"), "“note.pdf”: Text cannot be found."),
                (no_text, ("--find", "noon"), "“note.pdf”: Text cannot be found.")):
            with self.subTest(arguments):
                output = self.folder / "out.pdf"
                result = subprocess.run(
                    [CLI, "redact", self.source, *arguments, "-o", output], capture_output=True,
                    text=True, env={**os.environ, **lacking})
                self.assertEqual(result.returncode, 1 if message else 0, result.stderr)
                self.assertEqual(output.exists(), message is None)
                self.assertRegex(result.stderr.splitlines()[-1],
                                 "^" + re.escape(message or "More text than usual will be missed."))
                self.assertRegex(result.stderr, r"Missing or damaged: [\w., -]*(onnx|ONNX)")
                output.unlink(missing_ok=True)
        # Where no file is written, what was found is worth having all the same.
        for lacking, command, lines in ((no_models, ("scan", "--detect", "phone,faces"), 2),
                                        (no_text, ("text",), 0)):
            result = subprocess.run([CLI, *command, self.source], capture_output=True, text=True,
                                    env={**os.environ, **lacking})
            self.assertEqual((result.returncode, len(result.stdout.splitlines())), (1, lines),
                             result.stderr)

    def test_wrong_kinds_and_pages_are_wrong_usage(self):
        for arguments in (["--detect", "passport"], ["--detect", ""], ["--detect", "email,"],
                          ["--pages", "0"], ["--pages", "some"]):
            result = murkwell("scan", self.source, *arguments)
            self.assertEqual(result.returncode, 2, arguments)
            self.assertEqual(result.stdout, "")
        self.assertEqual(murkwell("redact", self.source).returncode, 2)

    def test_a_page_that_is_not_there_fails(self):
        result = murkwell("scan", self.source, "--pages", "3")
        self.assertEqual(result.returncode, 1)
        self.assertIn("has no page 3; its last page is 2.", result.stderr)


if __name__ == "__main__":
    unittest.main()
