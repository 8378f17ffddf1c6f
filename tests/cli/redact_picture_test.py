"""Picture in, picture out: the same format and size, no metadata, pixels as stored."""

import json
import unittest

import documents
from program import TestInFolder, output_of

WIDTH, HEIGHT = 60, 40


def pattern(x, y):
    return (x * 4, y * 6, (x * y) % 256)


class RedactPicture(TestInFolder):
    BOX = "1:0.25,0.25,0.5,0.5"
    BOX_PIXELS = (15, 10, 30, 20)

    def test_png_keeps_every_pixel_outside_the_box_and_no_other_chunk(self):
        source = self.write("a.png", documents.png(WIDTH, HEIGHT, pattern,
                                                   [(b"tEXt", b"Comment\0SECRET"),
                                                    (b"tIME", b"\7\xe8\1\1\1\1\1")]))
        self.redact(source, "--box", self.BOX)
        data = (self.folder / "a-redacted.png").read_bytes()
        before, after = documents.read_png(source.read_bytes()), documents.read_png(data)
        self.assertEqual(before.outside(*self.BOX_PIXELS), after.outside(*self.BOX_PIXELS))
        self.assertEqual(set(after.inside(*self.BOX_PIXELS)), {(0, 0, 0)})
        for unwanted in (b"SECRET", b"tEXt", b"tIME", b"eXIf", b"iCCP", b"pHYs"):
            self.assertFalse(unwanted in data, unwanted)

    def test_bmp_comes_out_as_bmp(self):
        source = self.write("a.bmp", documents.bmp(WIDTH, HEIGHT, pattern))
        self.redact(source, "--box", self.BOX)
        data = (self.folder / "a-redacted.bmp").read_bytes()
        self.assertEqual(data[:2], b"BM")

    def tagged(self, option, name):
        """A page drawn by another program, with every kind of tag, turned by its orientation."""
        pdf = self.write("page.pdf", documents.letter(1))
        output_of("pdftoppm", option, "-singlefile", pdf, self.folder / "page")
        path = (self.folder / "page").with_suffix("." + name)
        output_of("exiftool", "-q", "-overwrite_original", "-n", "-Orientation=6", "-Artist=SECRET",
                  "-GPSLatitude=47.5", "-GPSLatitudeRef=N", "-XMP:Title=SECRET", "-IPTC:Keywords=SECRET",
                  path)
        return path

    def test_jpeg_and_tiff_lose_every_tag_and_are_not_turned(self):
        for option, extension, kind in (("-jpeg", "jpg", "JPEG"), ("-tiff", "tif", "TIFF")):
            with self.subTest(kind):
                source = self.tagged(option, extension)
                self.redact(source, "--box", self.BOX)
                output = self.folder / f"page-redacted.{extension}"
                before, after = (json.loads(output_of("exiftool", "-json", "-n", path))[0]
                                 for path in (source, output))
                self.assertEqual(before["Orientation"], 6)
                self.assertEqual(after["FileType"], kind)
                self.assertEqual((after["ImageWidth"], after["ImageHeight"]),
                                 (before["ImageWidth"], before["ImageHeight"]))
                self.assertFalse(b"SECRET" in output.read_bytes())
                for tag in ("Artist", "GPSLatitude", "Title", "Keywords", "Software", "ICCProfileName"):
                    self.assertNotIn(tag, after)
                self.assertEqual(after.get("Orientation", 1), 1)
                if kind == "TIFF":
                    self.assertEqual([after[tag] for tag in ("XResolution", "YResolution",
                                                             "ResolutionUnit")], [72, 72, 2])


if __name__ == "__main__":
    unittest.main()
