#!/usr/bin/env python3
"""A file that is laid out differently is named; one that is laid out well is not."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

import check_format

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
GOOD = "int one()\n{\n    return 1;\n}\n"


@unittest.skipUnless(check_format.find_program(), "no clang-format of that version")
class CheckFormatTest(unittest.TestCase):
    def found_in(self, text):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(ROOT / ".clang-format", folder)
            subprocess.run(["git", "init", "-q", folder], check=True)
            pathlib.Path(folder, "good.cpp").write_text(GOOD)
            pathlib.Path(folder, "other.cpp").write_text(text)
            return check_format.main(folder)

    def test_good_layout(self):
        self.assertEqual(self.found_in(GOOD), 0)

    def test_other_layouts(self):
        for text in ("int one() {\n    return 1;\n}\n", "int one()\n{\n  return 1;\n}\n", "int  one = 1;\n"):
            with self.subTest(text):
                self.assertEqual(self.found_in(text), 1)


if __name__ == "__main__":
    unittest.main()
