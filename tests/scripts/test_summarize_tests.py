#!/usr/bin/env python3
"""The last line of ./test tells the truth about passes, failures, crashes and skips."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent.parent.parent / "scripts" / "summarize_tests"


def section(name, output, verdict):
    return f"1/9 Testing: {name}\n1/9 Test: {name}\nOutput:\n{output}<end of output>\n{verdict}\n"


GOOD = section("tst_a", "Totals: 5 passed, 0 failed, 1 skipped, 0 blacklisted, 3ms\n"
                        "SKIP   : A::b() no file\n   Loc: [a.cpp(1)]\nTotals: 2 passed, 0 failed, 0 skipped\n", "Test Passed.")
SCRIPT_TEST = section("check", "fine\n", "Test Passed.")
BAD = section("tst_c", "RY_SEED=17\nPASS   : C::c()\nFAIL!  : C::d() differ\n   Actual   : 1\n   Loc: [c.cpp(3)]\n"
                       "QINFO  : C::d() more\nFAIL!  : C::e()\nTotals: 4 passed, 2 failed, 0 skipped\n", "Test Failed.")
CRASHED = section("tst_e", "Totals: 3 passed, 0 failed, 0 skipped\nSegmentation fault\n", "Test Failed.")
NEVER_RAN = "Unable to find executable: /gone\n" + section("tst_f", "", "Test Passed.")


def summarize(*sections, failed=()):
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder, "LastTest.log")
        log.write_text("Start testing\n----\n" + "".join(sections))
        if failed:
            pathlib.Path(folder, "LastTestsFailed.log").write_text("".join(f"7:{name}\n" for name in failed))
        done = subprocess.run([sys.executable, str(SCRIPT), str(log)], stdout=subprocess.PIPE, text=True, check=False)
    return done.returncode, done.stdout.splitlines()


class SummarizeTest(unittest.TestCase):
    def test_all_good(self):
        code, lines = summarize(GOOD, SCRIPT_TEST)
        self.assertEqual((code, lines[-1]), (0, "8 passed, 0 failed"))
        self.assertIn("    A::b() no file", lines)

    def test_failures(self):
        code, lines = summarize(GOOD, BAD, failed=["tst_c"])
        self.assertEqual((code, lines[-1]), (1, "11 passed, 2 failed"))
        self.assertEqual(lines[:5], ["tst_c failed RY_SEED=17", "    FAIL!  : C::d() differ", "       Actual   : 1",
                                     "       Loc: [c.cpp(3)]", "    FAIL!  : C::e()"])

    def test_crash_counts_as_a_failure(self):
        code, lines = summarize(CRASHED, failed=["tst_e"])
        self.assertEqual((code, lines[-1]), (1, "3 passed, 1 failed"))
        self.assertIn("    Segmentation fault", lines)

    def test_program_that_never_ran_counts_as_a_failure(self):
        code, lines = summarize(GOOD, NEVER_RAN, failed=["tst_f"])
        self.assertEqual((code, lines[-1]), (1, "7 passed, 1 failed"))

    def test_no_test_is_no_success(self):
        code, lines = summarize()
        self.assertEqual((code, lines[-1]), (1, "0 passed, 0 failed"))


if __name__ == "__main__":
    unittest.main()
