"""Work saved from the command line, and taken up again."""

import json
import os
import plistlib
import unittest

import documents
from program import TestInFolder, murkwell

BOX = ("--box", "1:0.1,0.1,0.3,0.05:noise")


class SavedDocument(TestInFolder):
    def setUp(self):
        super().setUp()
        self.source = self.write("a.pdf", documents.letter(2))
        self.work = self.folder / "work.murkwell"

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    def test_saved_work_is_exported_after_its_source_has_gone(self):
        original = self.source.read_bytes()
        self.redact(self.source, *BOX, "--detect", "email,ssn", "--save", self.work)
        self.assertEqual(self.names(), ["a.pdf", "work.murkwell"])
        self.source.unlink()
        document = plistlib.loads(self.work.read_bytes())
        self.assertEqual((document["version"], document["sourceFilename"]), (1, "a.pdf"))
        self.assertEqual(document["sourceData"], original)
        self.assertEqual(document["pages"][0][-1],
                         {"rect": [[0.1, 0.1], [0.3, 0.05]], "style": "noise", "detected": False})
        result = self.redact(self.work, "--json")
        self.assertEqual(json.loads(result.stdout),
                         {"file": str(self.work), "output": str(self.folder / "a-redacted.pdf"),
                          "redactions": sum(map(len, document["pages"]))})
        self.assertEqual(self.names(), ["a-redacted.pdf", "work.murkwell"])

    def test_with_a_place_for_the_export_both_are_written(self):
        self.redact(self.source, *BOX, "--save", self.work, "-o", self.folder / "out.pdf")
        self.assertEqual(self.names(), ["a.pdf", "out.pdf", "work.murkwell"])

    def test_every_command_takes_a_saved_document(self):
        self.redact(self.source, *BOX, "--save", self.work)
        information = json.loads(murkwell("info", self.work).stdout)
        self.assertEqual(information, {"file": str(self.work), "isPDF": True,
                                       "imageType": "com.adobe.pdf", "pages": [[600, 400]] * 2})
        boxes = murkwell("scan", self.work, "--detect", "ssn").stdout.splitlines()
        self.assertIn({"file": str(self.work), "page": 1, "rect": [0.1, 0.1, 0.3, 0.05],
                       "style": "noise", "detected": False}, [json.loads(box) for box in boxes])

    def test_saved_work_is_saved_again(self):
        self.redact(self.source, *BOX, "--save", self.work)
        self.redact(self.work, "--box", "2:0,0,1,1", "--save", self.work, "--force")
        self.assertEqual(list(map(len, plistlib.loads(self.work.read_bytes())["pages"])), [1, 1])

    def test_a_damaged_document_does_not_stop_the_others(self):
        self.redact(self.source, *BOX, "--save", self.work)
        damaged = self.write("damaged.murkwell", self.work.read_bytes()[:-1])
        result = murkwell("redact", damaged, self.work)
        self.assertEqual((result.returncode, result.stderr),
                         (1, "Couldn’t open “damaged.murkwell”.\n"))
        self.assertIn("a-redacted.pdf", self.names())

    def test_wrong_usage(self):
        for arguments in ([self.source], [self.source, self.work, *BOX, "--save", "x.murkwell"]):
            self.assertEqual(murkwell("redact", *arguments).returncode, 2)

    def test_the_models_messages(self):
        self.assertEqual(murkwell("redact", self.source, "--find", "nowhere to be found").stderr,
                         "“a.pdf”: Add at least one redaction first.\n")
        self.assertEqual(murkwell("scan", self.write("a.txt", b"")).stderr,
                         "“a.txt”: No supported file found. Drop an image or a PDF.\n")

    def test_a_source_whose_name_has_no_kind_is_written_where_told(self):
        picture = documents.png(8, 6, lambda x, y: (x, y, 0))
        box = {"rect": [[0, 0], [1, 1]], "style": "solidBlack", "detected": False}
        for name in ("photo", "photo.xyz", "", "..", "photo.murkwell"):
            self.work.write_bytes(plistlib.dumps(
                {"version": 1, "sourceFilename": name, "sourceData": picture, "pages": [[box]]},
                fmt=plistlib.FMT_BINARY))
            before = self.names()
            result = murkwell("redact", self.work)
            self.assertEqual((result.returncode, self.names()), (1, before), name)
            self.assertIn("-o", result.stderr)
            self.redact(self.work, "-o", self.folder / "out.png")
            os.remove(self.folder / "out.png")

    def test_messages_are_in_the_users_language(self):
        result = murkwell("info", self.folder / "fehlt.pdf",
                          env={"LANG": "de_AT.UTF-8", "PATH": "/usr/bin"})
        self.assertEqual(result.stderr, "„fehlt.pdf“ konnte nicht geöffnet werden.\n")


if __name__ == "__main__":
    unittest.main()
