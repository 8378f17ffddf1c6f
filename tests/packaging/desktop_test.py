"""What tells the desktop about the program: entry, service, software centre, content type."""

import configparser
import plistlib
import struct
import unittest
from xml.etree import ElementTree

from places import BUILT, ID, SOURCE, run
from program import CLI, TestInFolder
import documents

PACKAGING = SOURCE / "packaging"
OWN_TYPE = "application/vnd.tallowick.murkwell"


def keyfile(text):
    parser = configparser.ConfigParser(interpolation=None, delimiters="=")
    parser.optionxform = str
    parser.read_string(text)
    return parser


def png_size(path):
    header = path.read_bytes()[:24]
    assert header[:8] == b"\x89PNG\r\n\x1a\n", path
    return struct.unpack(">II", header[16:24])


class Entry(TestInFolder):
    def setUp(self):
        super().setUp()
        self.path = PACKAGING / f"{ID}.desktop"
        self.entry = keyfile(self.path.read_text())["Desktop Entry"]

    def test_the_validator_has_nothing_to_say(self):
        result = run("desktop-file-validate", self.path)
        self.assertEqual((result.returncode, result.stdout + result.stderr), (0, ""))

    def test_every_kind_of_file_that_loads_is_offered(self):
        offered = set(self.entry["MimeType"].strip(";").split(";"))
        for extension in ("pdf", "png", "jpg", "jpeg", "tif", "tiff", "bmp", "gif", "heic", "heif"):
            with self.subTest(extension):
                guess = run("gio", "info", "--attributes=standard::fast-content-type",
                            self.write(f"x.{extension}", b"\0")).stdout
                self.assertIn(guess.split("standard::fast-content-type: ")[1].split()[0], offered)
        self.assertIn(OWN_TYPE, offered)

    def test_a_bus_that_starts_the_program_starts_it_without_a_window(self):
        service = keyfile((BUILT / "packaging" / f"{ID}.service").read_text())["D-BUS Service"]
        self.assertEqual(self.entry["DBusActivatable"], "true")
        self.assertEqual(service["Name"], ID)
        program, argument = service["Exec"].split()
        self.assertTrue(program.startswith("/"), program)
        self.assertTrue(program.endswith("/bin/murkwell"), program)
        self.assertEqual(argument, "--gapplication-service")


class Metainfo(unittest.TestCase):
    def test_the_validator_has_nothing_to_say(self):
        result = run("appstreamcli", "validate", "--no-net", "--no-color",
                     BUILT / "packaging" / f"{ID}.metainfo.xml")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        # The bare mark of a found issue; a passed validation has none of any severity.
        self.assertNotRegex(result.stdout, r"(?m)^[EWIP]: ")

    def test_the_version_is_that_of_the_program(self):
        metainfo = (BUILT / "packaging" / f"{ID}.metainfo.xml").read_text()
        version = run(CLI, "--version").stdout.split()[-1]
        self.assertIn(f'<release version="{version}"', metainfo)


    def test_its_pictures_are_there_in_the_sizes_that_it_states(self):
        images = ElementTree.parse(BUILT / "packaging" / f"{ID}.metainfo.xml").findall(".//image")
        self.assertGreater(len(images), 1)
        for image in images:
            picture = SOURCE / "docs" / "screenshots" / image.text.split("/")[-1]
            self.assertEqual(png_size(picture), (int(image.get("width")), int(image.get("height"))))


class OwnType(TestInFolder):
    def setUp(self):
        super().setUp()
        packages = self.folder / "data" / "mime" / "packages"
        packages.mkdir(parents=True)
        (packages / f"{ID}.xml").write_bytes((PACKAGING / f"{ID}.mime.xml").read_bytes())
        self.environment = {"XDG_DATA_HOME": str(self.folder / "data"), "PATH": "/usr/bin:/bin"}
        result = run("update-mime-database", self.folder / "data" / "mime", env=self.environment)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def type_of(self, path):
        output = run("gio", "info", "--attributes=standard::content-type", path,
                     env=self.environment).stdout
        return output.split("standard::content-type: ")[1].split()[0]

    def saved(self, name):
        source = self.write("letter.pdf", documents.letter(1))
        self.redact(source, "--box", "1:0.1,0.1,0.3,0.1", "--save", self.folder / "work.murkwell")
        return (self.folder / "work.murkwell").rename(self.folder / name)

    def test_a_saved_document_is_known_by_its_extension(self):
        self.assertEqual(self.type_of(self.write("other.murkwell", b"<plist/>")), OWN_TYPE)

    def test_one_that_lost_its_extension_is_known_by_its_content(self):
        self.assertEqual(self.type_of(self.saved("work")), OWN_TYPE)

    def test_another_property_list_is_not_claimed(self):
        for content in ({"version": 1, "name": "x"}, {"sourceFilename": "x"}):
            path = self.write("other", plistlib.dumps(content, fmt=plistlib.FMT_BINARY))
            self.assertNotEqual(self.type_of(path), OWN_TYPE)


class Icon(unittest.TestCase):
    def test_there_is_a_picture_of_every_size(self):
        for size in (16, 24, 32, 48, 64, 128, 256, 512):
            picture = BUILT / "packaging" / "icons" / f"{size}.png"
            self.assertEqual(png_size(picture), (size, size))
