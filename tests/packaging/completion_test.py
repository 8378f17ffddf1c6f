"""What the shell proposes for murkwell-cli."""

import subprocess

from places import SOURCE, options_of, run
from program import TestInFolder

COMPLETION = SOURCE / "packaging" / "murkwell-cli.bash"
COMPLETE = """
source /usr/share/bash-completion/bash_completion
source "$1"
shift
COMP_LINE="$*" COMP_POINT=${#COMP_LINE} COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
compopt() { :; }
_murkwell_cli
printf '%s\\n' "${COMPREPLY[@]}"
"""


class Completion(TestInFolder):
    def proposals(self, *words):
        result = subprocess.run(
            ["bash", "--norc", "-c", COMPLETE, "bash", str(COMPLETION), "murkwell-cli", *words],
            capture_output=True, text=True, cwd=self.folder)
        self.assertEqual(result.stderr, "")
        return set(result.stdout.split())

    def test_the_shell_checker_has_nothing_to_say(self):
        result = run("shellcheck", "--shell=bash", COMPLETION)
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_commands_come_first(self):
        self.assertEqual(self.proposals(""),
                         {"redact", "scan", "text", "info", "--help", "--version"})
        self.assertEqual(self.proposals("sc"), {"scan"})

    def test_a_command_has_the_options_that_the_program_takes(self):
        for command in ("redact", "scan", "text", "info"):
            self.assertEqual(self.proposals(command, "--"), options_of(command), command)

    def test_values_are_those_that_the_program_knows(self):
        self.assertEqual(self.proposals("redact", "--style", "solid"), {"solidBlack", "solidWhite"})
        self.assertEqual(self.proposals("scan", "--detect", "e"), {"email"})
        self.assertEqual(self.proposals("scan", "--detect", "email,pho"), {"email,phone"})
        self.assertNotIn("email,all", self.proposals("scan", "--detect", "email,"))
        self.assertEqual(self.proposals("text", "--page", ""), {"all"})

    def test_only_sources_and_folders_are_proposed(self):
        for name in ("letter.pdf", "work.murkwell", "notes.txt"):
            self.write(name, b"")
        (self.folder / "inbox").mkdir()
        self.assertEqual(self.proposals("redact", ""), {"letter.pdf", "work.murkwell", "inbox"})
        self.assertEqual(self.proposals("redact", "letter.pdf", "--save", ""),
                         {"work.murkwell", "inbox"})
