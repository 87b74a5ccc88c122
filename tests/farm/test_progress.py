#!/usr/bin/env python3
"""A batch run shows how far it is where standard error is a terminal, and nowhere else."""

import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
RYHOST = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLE = ROOT / "resources/samples/mannequin.glb"


def run_on_terminal(arguments, term="xterm"):
    """Exit code and what a terminal got."""
    ours, theirs = pty.openpty()
    environment = dict(os.environ, TERM=term)
    process = subprocess.Popen([RYHOST, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=theirs,
                               env=environment)
    os.close(theirs)
    text = b""
    while True:
        try:
            block = os.read(ours, 4096)
        except OSError:  # the other end is closed
            break
        if not block:
            break
        text += block
    os.close(ours)
    return process.wait(), text.decode("utf-8", "replace")


def screen(text):
    """The lines that stay on a terminal."""
    lines = []
    for line in text.split("\n"):
        lines.append(re.split(r"\r\x1b\[K", line.rstrip("\r"))[-1])
    return [line for line in lines if line]


class ProgressTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.files = []
        for name in ("a.glb", "b.glb"):
            path = pathlib.Path(self.folder.name, name)
            path.write_bytes(SAMPLE.read_bytes())
            self.files.append(str(path))
        self.long = pathlib.Path(self.folder.name, "n" * 200 + ".glb")

    def tearDown(self):
        self.folder.cleanup()

    def verbs(self):
        return ["--select", "lHand", "--save-to", self.folder.name + "/out"]

    def test_several_files_are_counted(self):
        code, text = run_on_terminal(["--batch", *self.files, *self.verbs()])
        self.assertEqual(code, 0, text)
        for words in ("[1/2] " + self.files[0], "[2/2] " + self.files[1], "1/2 --select lHand", "2/2 --save-to"):
            self.assertIn(words, text)
        self.assertEqual(screen(text), ["2 of 2 files done"])

    def test_one_file_shows_its_verbs(self):
        code, text = run_on_terminal(["--batch", self.files[0], *self.verbs()])
        self.assertEqual(code, 0, text)
        self.assertIn("1/2 --select lHand", text)
        self.assertEqual(screen(text), [])

    def test_messages_stand_on_lines_of_their_own(self):
        script = pathlib.Path(self.folder.name, "say.rsx")
        script.write_text("print('said by the script');")
        code, text = run_on_terminal(["--batch", self.files[0], "--script", str(script), "--select", "lhand"])
        self.assertEqual(code, 2, text)
        lines = screen(text)
        self.assertEqual(len(lines), 2, lines)
        self.assertEqual(lines[0], "said by the script")
        self.assertTrue(lines[1].startswith("--select: no node is called"), lines)

    def test_a_long_line_does_not_wrap(self):
        self.long.write_bytes(SAMPLE.read_bytes())
        code, text = run_on_terminal(["--batch", str(self.long), "--undo"])
        shown = [line for line in re.split(r"\r\x1b\[K", text) if "nnn" in line]
        self.assertTrue(shown)
        self.assertTrue(all(len(line) < 80 for line in shown), shown)
        self.assertEqual(code, 2)

    def test_logs_and_simple_terminals_get_none(self):
        done = subprocess.run([RYHOST, "--batch", *self.files, *self.verbs()], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                              env=dict(os.environ, TERM="xterm"))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b"2 of 2 files done\n"))
        code, text = run_on_terminal(["--batch", *self.files, *self.verbs()], term="dumb")
        self.assertEqual((code, text), (0, "2 of 2 files done\r\n"))


if __name__ == "__main__":
    unittest.main()
