"""PDF in, PDF out: nothing of the source is left but pixels, and those under a box are gone."""

import json
import unittest

import documents
from program import TestInFolder, murkwell, output_of


class RedactPdf(TestInFolder):
    # On pages of 600 x 400 pixels: x 60, y 40, 300 x 80 pixels.
    BOX = "0.1,0.1,0.5,0.2"
    BOX_PIXELS = (60, 40, 300, 80)

    def setUp(self):
        super().setUp()
        self.source = self.write("letter.pdf", documents.letter())
        self.output = self.folder / "letter-redacted.pdf"

    def rendered_pages(self):
        """The source as another program on the same engine draws it."""
        output_of("mutool", "draw", "-q", "-r", "144", "-o", self.folder / "source-%d.ppm", self.source)
        return [documents.read_netpbm(path.read_bytes())
                for path in sorted(self.folder.glob("source-*.ppm"))]

    def exported_pages(self):
        output_of("pdfimages", self.output, self.folder / "out")
        return [documents.read_netpbm(path.read_bytes())
                for path in sorted(self.folder.glob("out-*.p?m"))]

    def test_only_the_pixels_under_the_box_change(self):
        self.redact(self.source, "--box", f"2:{self.BOX}")
        source, exported = self.rendered_pages(), self.exported_pages()
        self.assertEqual(len(exported), 3)
        self.assertEqual(source[0].rows, exported[0].rows)
        self.assertEqual(source[2].rows, exported[2].rows)
        self.assertEqual(source[1].outside(*self.BOX_PIXELS), exported[1].outside(*self.BOX_PIXELS))
        self.assertIn((0, 0, 0), source[1].inside(*self.BOX_PIXELS))
        self.assertEqual(set(exported[1].inside(*self.BOX_PIXELS)), {(0, 0, 0)})

    def test_pages_measure_one_point_per_pixel(self):
        self.redact(self.source, "--box", f"1:{self.BOX}")
        information = output_of("pdfinfo", "-l", "3", self.output).decode()
        self.assertEqual(information.count("600 x 400 pts"), 3)
        self.assertIn("Pages:           3\n", information)

    def test_no_other_reader_finds_anything_but_pictures(self):
        self.redact(self.source, "--box", f"1:{self.BOX}")
        output_of("qpdf", "--check", self.output)
        self.assertEqual(output_of("pdftotext", self.output, "-").strip(b"\f\n"), b"")
        self.assertEqual(len(output_of("pdffonts", self.output).splitlines()), 2)  # the heading
        self.assertIn(b"0 embedded files", output_of("pdfdetach", "-list", self.output))
        unpacked = output_of("qpdf", "--qdf", "--object-streams=disable", self.output, "-")
        for unwanted in (b"SECRET", b"/Info", b"/Metadata", b"/Annots", b"/Outlines", b"/Names",
                         b"Date"):
            self.assertFalse(unwanted in unpacked, unwanted)
        tags = json.loads(output_of("exiftool", "-json", "-G", "-PDF:all", "-XMP:all", self.output))[0]
        self.assertEqual(set(tags), {"SourceFile", "PDF:PDFVersion", "PDF:Linearized", "PDF:PageCount"})

    def test_noise_knows_nothing_of_what_it_covers(self):
        self.redact(self.source, "--box", f"1:{self.BOX}:noise")
        source, exported = self.rendered_pages()[0], self.exported_pages()[0]
        x, y, width, height = self.BOX_PIXELS
        # Means of the source over each 5 x 5 block of noise, against that block's grey.
        pairs = []
        for j in range(y, y + height, 5):
            for i in range(x, x + width, 5):
                block = exported.inside(i, j, 5, 5)
                self.assertEqual(len(set(block)), 1)
                self.assertEqual(len(set(block[0])), 1)
                pairs.append((sum(pixel[0] for pixel in source.inside(i, j, 5, 5)) / 25, block[0][0]))
        means = [sum(column) / len(pairs) for column in zip(*pairs)]
        products = [sum((p[a] - means[a]) * (p[b] - means[b]) for p in pairs)
                    for a, b in ((0, 1), (0, 0), (1, 1))]
        # 960 blocks: independent ones correlate beyond a sixth once in some millions of runs.
        self.assertLess(abs(products[0]), (products[1] * products[2]) ** 0.5 / 6)

    def test_nothing_of_a_longer_older_file_is_left(self):
        self.redact(self.source, "--box", f"1:{self.BOX}")
        fresh = self.output.read_bytes()
        self.output.write_bytes(b"SECRET" * 100_000)
        self.redact(self.source, "--box", f"1:{self.BOX}", "--force")
        self.assertEqual(self.output.read_bytes(), fresh)
        self.assertTrue(fresh.endswith(b"%%EOF\n"))

    def test_what_did_not_come_whole_is_said(self):
        # Three pages: one without a size, one that names a picture that is none, one that is whole.
        objects = [b"<< /Type /Catalog /Pages 2 0 R >>",
                   b"<< /Type /Pages /Count 3 /Kids [3 0 R 4 0 R 6 0 R] >>",
                   b"<< /Type /Page /MediaBox [0 0 0 0] >>",
                   b"<< /Type /Page /MediaBox [0 0 99 99] /Contents 5 0 R /Resources << /XObject "
                   b"<< /I 7 0 R >> >> >>",
                   documents.stream("/I Do"),
                   b"<< /Type /Page /MediaBox [0 0 99 99] >>",
                   documents.stream("", "/Type /XObject /Subtype /Image /Width 9 /Height 0")]
        source = self.write("some.pdf", documents.pdf(objects, 1))
        said = ("some.pdf: 1 page could not be shown.\n"
                "some.pdf: Page 1 may be incomplete.\n")
        for arguments in (("info", source), ("redact", source, "--box", f"2:{self.BOX}")):
            result = murkwell(*arguments)
            self.assertEqual((result.returncode, result.stderr), (0, said), arguments)

    def test_the_source_stays_as_it_was(self):
        self.source.chmod(0o444)
        before = (self.source.read_bytes(), self.source.stat().st_mtime_ns)
        self.redact(self.source, "--box", f"1:{self.BOX}")
        self.assertEqual((self.source.read_bytes(), self.source.stat().st_mtime_ns), before)
        result = murkwell("redact", self.source, "--box", f"1:{self.BOX}", "-o", self.source, "--force")
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.startswith("Couldn’t write to “letter.pdf”. It is one of the sources"))
        self.assertEqual((self.source.read_bytes(), self.source.stat().st_mtime_ns), before)


if __name__ == "__main__":
    unittest.main()
