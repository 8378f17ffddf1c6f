"""The manual pages."""

import unittest

from places import BUILT, options_of, run

PAGES = [BUILT / "packaging" / name for name in ("murkwell.1", "murkwell-cli.1")]


class Pages(unittest.TestCase):
    def test_both_formatters_have_nothing_to_say(self):
        for page in PAGES:
            with self.subTest(page.name):
                groff = run("groff", "-t", "-man", "-ww", "-z", "-K", "utf8", page)
                self.assertEqual((groff.returncode, groff.stderr), (0, ""))
                mandoc = run("mandoc", "-T", "lint", page)
                self.assertEqual((mandoc.returncode, mandoc.stdout + mandoc.stderr), (0, ""))

    def test_every_option_of_the_program_is_described(self):
        text = run("mandoc", "-T", "utf8", PAGES[1]).stdout
        plain = "".join(text[i] for i in range(len(text))
                        if text[i] != "\b" and text[i + 1:i + 2] != "\b")
        for subcommand in ("redact", "scan", "text", "info"):
            for option in options_of(subcommand):
                self.assertIn(option, plain)
