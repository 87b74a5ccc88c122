#!/usr/bin/env python3
"""The manual page says all that the documentation says, and reads well in a terminal."""

import gzip
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
MAKER = ROOT / "packaging" / "make_man_page"
SAMPLE = """# Title

`ryhost [FILE...]` runs `--a-b` and **stops**, see [there](there.md).
`ryhost --batch FILE` goes on.

.Dots at the start; 'quotes' and back\\slash stay.

## Tables and Lists

| verb | meaning |
|---|---|
| `--set A=B`, `--none` | sets \\| or not |

- first
  goes on
- second

```
ryhost --batch 'in.glb'
.hidden ~ ^
```

After.
"""


def make(text, version="1.2.3", name="page.1"):
    with tempfile.TemporaryDirectory() as folder:
        source, out = pathlib.Path(folder, "in.md"), pathlib.Path(folder, name)
        source.write_text(text, encoding="utf-8")
        done = subprocess.run([sys.executable, "-B", str(MAKER), str(source), version, str(out)], capture_output=True,
                              text=True, check=False)
        return done, out.read_bytes() if out.exists() else b""


def show(page, width=200):
    """The page as a terminal shows it, and what the formatter complains of."""
    done = subprocess.run(["groff", "-man", "-Tascii", "-ww", "-P-c", "-P-b", "-P-u", f"-rLL={width}n"], input=page,
                          capture_output=True, check=True)
    return re.sub(r" +", " ", re.sub(r"\n +", "\n", done.stdout.decode("ascii"))), done.stderr.decode()


class ManPageTest(unittest.TestCase):
    def test_shows_every_kind_of_text(self):
        done, page = make(SAMPLE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text, complaints = show(page)
        self.assertEqual(complaints, "")
        self.assertIn("RyJointTools 1.2.3", text)
        for paragraph in ("\nSYNOPSIS\nryhost [FILE...]\nryhost --batch FILE\n",
                          "\nryhost [FILE...] runs --a-b and stops, see there. ryhost --batch FILE goes on.\n\n.Dots at the start; 'quotes' and back\\slash stay.\n",
                          "\nTABLES AND LISTS\n", "\n--set A=B, --none\nsets | or not\n", "first goes on\n", "second\n",
                          "\nryhost --batch 'in.glb'\n.hidden ~ ^\n", "\nAfter.\n"):
            self.assertIn(paragraph, text)
        self.assertNotIn("meaning", text)
        self.assertNotIn("Title", text)

    def test_refuses_a_table_that_it_would_shorten(self):
        done, page = make("# T\n\nAs `ryhost x`.\n\n| a | b | c |\n|---|---|---|\n| 1 | 2 | 3 |\n")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("3 columns", done.stderr)
        self.assertEqual(page, b"")

    def test_wants_to_know_how_the_program_is_called(self):
        done, page = make("# T\n\nNo word of it.\n\n## S\n\n`ryhost --late`\n")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("how the program is called", done.stderr)
        self.assertEqual(page, b"")

    def test_is_the_same_every_time(self):
        first, second = make(SAMPLE, name="page.1.gz")[1], make(SAMPLE, name="page.1.gz")[1]
        self.assertEqual(first, second)
        self.assertEqual(gzip.decompress(first), make(SAMPLE)[1])

    def test_of_the_program(self):
        documentation = (ROOT / "docs" / "command-line.md").read_text(encoding="utf-8")
        done, page = make(documentation)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text, complaints = show(page)
        self.assertEqual(complaints, "")
        words = text.split()
        for verb in re.findall(r"--[a-z][a-z-]*", documentation):
            self.assertTrue(any(verb in word for word in words), verb)
        headings = [f"\n{heading.upper()}\n" for heading in re.findall(r"^## (.*)$", documentation, re.M)]
        self.assertGreater(len(headings), 1)
        for heading in headings:
            self.assertIn(heading, text)


if __name__ == "__main__":
    unittest.main()
