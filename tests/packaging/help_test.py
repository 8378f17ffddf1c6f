"""The help pages: four languages that say the same, with the figures that were measured."""

import re
import unittest
import xml.etree.ElementTree

from places import BUILT, SOURCE

LANGUAGES = ("en", "de", "es", "fr")
FOLDER = BUILT / "share" / "murkwell" / "help"
# Rows of docs/recognition.md, in the order of the tables.
KINDS = ("e-mail addresses", "social security numbers", "phone numbers", "card numbers",
         "IP addresses", "names looked for with `--find`")
FACES = ("all", "photographs", "photographs in letters (grey, noise, fax, halftone)",
         "photographs in web pages", "photographs on identity cards", "14 to 24 pixels")


def page(language):
    text = (FOLDER / language / "index.html").read_text()
    return xml.etree.ElementTree.fromstring(text.replace("<!DOCTYPE html>", ""))


def measured():
    """Shares in percent, as the help pages round them."""
    text = (SOURCE / "docs" / "recognition.md").read_text()
    shares = [re.search(rf"^\| {re.escape(kind)} \|.*?\| ([\d.]+) %", text, re.M).group(1)
              for kind in KINDS]
    return shares + [f"{100 * float(share):.0f}" for share in
                     (re.search(rf"^\| {re.escape(row)} \|.*\| ([\d.]+) \|$", text, re.M).group(1)
                      for row in FACES)]


class Help(unittest.TestCase):
    def test_the_figures_are_those_that_were_measured(self):
        for language in LANGUAGES:
            cells = page(language).findall(".//table[@class='figures']//td[2]")
            figures = [cell.text.rstrip("%\N{NO-BREAK SPACE}").replace(",", ".") for cell in cells]
            self.assertEqual(figures, measured(), language)

    def test_all_languages_have_the_same_parts(self):
        def shape(element):
            inline = {"b", "kbd", "code"}
            return [element.tag, element.get("id")] + [shape(child) for child in element
                                                       if child.tag not in inline]

        def body(language):
            return [shape(element) for element in page(language).find("body")]

        for language in LANGUAGES[1:]:
            self.assertEqual(body(language), body("en"), language)

    def test_buttons_are_named_as_in_the_window(self):
        for language in LANGUAGES[1:]:
            catalogue = (SOURCE / "po" / f"{language}.po").read_text()
            for name in page(language).findall(".//ol//b"):
                self.assertIn(f'msgstr "{" ".join(name.text.split())}"', catalogue)

    def test_everything_that_is_loaded_lies_in_the_package(self):
        for language in LANGUAGES:
            root = page(language)
            self.assertEqual(root.get("lang"), language)
            self.assertEqual(list(root.iter("script")), [])
            for element in root.iter():
                for attribute in ("href", "src"):
                    if target := element.get(attribute):
                        self.assertTrue((FOLDER / language / target).is_file(), target)
        self.assertNotRegex((FOLDER / "style.css").read_text(), r"url\(|@import")
