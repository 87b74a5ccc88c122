#!/usr/bin/env python3
"""tools/try_changes: finds the right places, and what it writes there is a change behind a switch and nothing else."""

import argparse
import contextlib
import importlib.machinery
import importlib.util
import io
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools"))

from changes import build_copy, candidates, programs, survivors  # noqa: E402
from changes.candidates import ARGUMENTS, CALL, CONDITION, CONSTANT, choose, find_candidates, instrument, rank  # noqa: E402


def changes(body, kind=None, head="void f()"):
    """The (before, after) of all changes of a function, or those of one kind."""
    found = find_candidates({"a.cpp": head + "\n{\n" + body + "\n}\n"})
    return [(each.before, each.after) for each in found if kind in (None, each.kind)]


class FindingTest(unittest.TestCase):
    def test_conditions_are_negated(self):
        self.assertEqual(changes("if (a) g();", CONDITION), [("a", "!(a)")])
        self.assertEqual(changes("while (h(a, b)) ++a;", CONDITION), [("h(a, b)", "!(h(a, b))")])
        self.assertEqual(changes("return isIt() ? a : b;", CONDITION), [("isIt()", "!(isIt())")])
        self.assertEqual(changes("x = a ? b : c ? d : e;", CONDITION), [("a", "!(a)"), ("c", "!(c)")])
        self.assertEqual(changes("if (const T *x = find()) g();", CONDITION), [("const T *x = find()", "const T *x = find(); !x")])
        self.assertEqual(changes("if (int i = g(); i) g();", CONDITION), [("i", "!(i)")])
        self.assertEqual(changes("if constexpr (a) g(); while (T *x = next()) h(); if (T *x = find(); T *y = x->y) h();", CONDITION), [])

    def test_operators_are_turned(self):
        for before, after in (("<", "<="), ("<=", "<"), (">", ">="), (">=", ">"), ("==", "!="), ("!=", "==")):
            self.assertEqual(changes(f"return a {before} b;", CONDITION), [(f"a {before} b", f"a {after} b")])
        self.assertEqual(changes("return a && b;", CONDITION), [("a && b", "(a) || (b)")])
        self.assertEqual(changes("return a || b;", CONDITION), [("a || b", "(a) && (b)")])

    def test_operands_go_as_far_as_they_bind(self):
        self.assertEqual(changes("x = y + &b == *p - 2 && q;", CONDITION),
                         [("y + &b == *p - 2", "y + &b != *p - 2"), ("y + &b == *p - 2 && q", "(y + &b == *p - 2) || (q)")])
        self.assertIn(("cast<const T *>(n) != m", "cast<const T *>(n) == m"), changes("g(1, cast<const T *>(n) != m, 2);"))
        self.assertEqual(changes("return a && b || c;", CONDITION),
                         [("a && b", "(a) || (b)"), ("a && b || c", "(a && b) && (c)")])
        self.assertEqual(changes("return a && b && c;", CONDITION),
                         [("a && b", "(a) || (b)"), ("a && b && c", "(a && b) || (c)")])

    def test_templates_and_references_are_no_operators(self):
        self.assertEqual(changes("std::vector<int> v; auto &&r = v; std::map<A *, B<C>> m; std::cout << a;", CONDITION), [])

    def test_arguments_are_exchanged(self):
        self.assertEqual(changes("x = p->q.g(a, h(b), c);", ARGUMENTS),
                         [("p->q.g(a, h(b), c)", "p->q.g(h(b), a, c)"), ("p->q.g(a, h(b), c)", "p->q.g(a, c, h(b))")])
        self.assertEqual(changes("auto *w = new W(a, b);", ARGUMENTS), [("new W(a, b)", "new W(b, a)")])
        self.assertEqual(changes("return N::make<T>()->g(a, b);", ARGUMENTS),
                         [("N::make<T>()->g(a, b)", "N::make<T>()->g(b, a)")])

    def test_arguments_that_say_the_same_are_left(self):
        self.assertEqual(changes("g(a, a); std::min(a, b); W w(a, b); if (g(a)) return;", ARGUMENTS), [])

    def test_calls_are_removed(self):
        self.assertEqual(changes("p->q(1).r(); if (x) g(); else h<T>(2); N::k();", CALL),
                         [("p->q(1).r();", ";"), ("g();", ";"), ("h<T>(2);", ";"), ("N::k();", ";")])
        self.assertEqual(changes("switch (x) { case A: g(); break; default: h(); }", CALL), [("g();", ";"), ("h();", ";")])

    def test_other_statements_are_no_calls(self):
        self.assertEqual(changes("x = g(); return g(); T t(a); delete p; v.reserve(3); ++x; int i{g()}; throw E(); "
                                 "b = c ? D() : E();", CALL), [])

    def test_constants_are_moved(self):
        self.assertEqual(changes("x = 0; y = 1; b = true; c = false;", CONSTANT),
                         [("0", "1"), ("1", "0"), ("true", "false"), ("false", "true")])
        for text, allowed in (("7", {"8", "6", "14"}), ("2.5f", {"2.5f + 1", "2.5f - 1", "2.5f * 2"}), ("0.0", {"0.0 + 1"}),
                              ("0x1Fu", {"0x1Fu + 1", "0x1Fu - 1", "0x1Fu * 2"})):
            [(before, after)] = changes(f"x = {text};", CONSTANT)
            self.assertEqual(before, text)
            self.assertIn(after, allowed)

    def test_a_zero_becomes_another_number(self):
        for text in ("0.0f", "0.", ".0"):
            for name in "abcdefgh":
                self.assertEqual(changes(f"{name} = {text};", CONSTANT), [(text, text + " + 1")])

    def test_constants_outside_of_functions(self):
        text = """static constexpr int n = 3;
                  enum E { A = 4 };
                  struct S : T { int a = 5; int b{6}; virtual int c() = 0; void d(int e = 7); bool f() const { return 8; } };
                  namespace N { const R r[] = {{9, "x"}}; }
                  template<int I = 10> int h(int j = 11);
                  S::S() : a(12), b{13} { }"""
        self.assertEqual([each.before for each in find_candidates({"a.h": text})], ["3", "5", "6", "8", "9", "12", "13"])

    def test_what_is_no_code_is_left(self):
        self.assertEqual(changes('// if (a < b) g(1, 2);\n/* g(); */ x = "if (a < 1) g();"; y = R"(g(1); ")"; z = \'1\';'), [])
        self.assertEqual(changes("static_assert(a < 1); Q_ASSERT(g(a, 1)); qWarning() << h(1, 2) << (a < b);\n#define X g(1)\n"), [])
        self.assertEqual(changes("switch (x) { case 4: return; case A + 5: default: return; }"), [])
        self.assertEqual(changes('x = tr("a", "b", 1); y = QCoreApplication::translate("c", "d");'), [])

    def test_lines_are_those_of_the_change(self):
        [one, two] = find_candidates({"a.cpp": "void f()\n{\n    // why\n    if (a &&\n        b)\n        return;\n}\n"})
        self.assertEqual([(each.line, each.after, each.line_text) for each in (one, two)],
                         [(4, "!(a && b)", "if (a &&"), (4, "(a) || (b)", "if (a &&")])


class ChoosingTest(unittest.TestCase):
    TEXT = "void f()\n{\n" + "".join(f"    if (a{i} == {i})\n        g(a{i}, {i});\n    h({i});\n" for i in range(2, 40)) + "}\n"

    def chosen(self, files, count=20, seed=1):
        return [(each.kind, each.line_text, each.after) for each in choose(rank(find_candidates(files), seed), count)]

    def test_a_seed_gives_one_list(self):
        files = {"a.cpp": self.TEXT}
        self.assertEqual(self.chosen(files), self.chosen(files))
        self.assertNotEqual(self.chosen(files), self.chosen(files, seed=2))

    def test_the_list_depends_on_no_file_name_and_begins_alike(self):
        self.assertEqual(self.chosen({"a.cpp": self.TEXT}), self.chosen({"moved/z.cpp": "\n\n" + self.TEXT}))
        self.assertEqual(self.chosen({"a.cpp": self.TEXT}), self.chosen({"a.cpp": self.TEXT}, count=30)[:20])

    def test_kinds_are_mixed_and_lines_taken_once(self):
        found = choose(rank(find_candidates({"a.cpp": self.TEXT}), 1), 40)
        self.assertEqual([sum(each.kind == kind for each in found) for kind in candidates.KINDS], [10, 10, 10, 10])
        self.assertEqual(len({each.line for each in found}), 40)


PROGRAM = """#include <cstdio>
#include <string>
static constexpr int limit = 3;
struct Counter { int count = 0; void add(int a, int b) { count += 10 * a + b; } };
static const char *sign(int x) { return x < 0 ? "minus" : "plus"; }
static int *find(bool there) { static int value = 7; return there ? &value : nullptr; }
static void show(int a, int b) { std::puts((std::to_string(a) + " " + std::to_string(b)).c_str()); }
int main()
{
    Counter counter;
    for (int i = 0; i < limit; ++i) // some
        counter.add(i,
                    5);
    if (counter.count > 44 && !find(false))
        std::puts(sign(counter.count));
    else
        std::puts("other");
    if (const int *found = find(true))
        show(1, *found);
    show(counter.count, int(sizeof(limit)));
}
"""
OUTPUT = "plus\n1 7\n45 4\n"


@unittest.skipUnless(shutil.which("g++"), "needs a compiler")
class RunningTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        numbered = dict(enumerate(find_candidates({"a.cpp": PROGRAM}), 1))
        cls.numbers = {(each.line, each.after): number for number, each in numbered.items()}
        source = pathlib.Path(cls.folder.name, "a.cpp")
        cls.text = instrument(PROGRAM, numbered)
        source.write_text(cls.text)
        cls.program = str(source.with_suffix(""))
        subprocess.run(["g++", "-std=c++20", "-w", "-include", str(ROOT / "tools/changes/ryChange.h"), str(source), "-o",
                        cls.program], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def output(self, *change):
        number = self.numbers[change] if change else 0
        done = subprocess.run([self.program], env=dict(os.environ, RY_CHANGE=str(number)), stdout=subprocess.PIPE, text=True,
                              check=False)
        return done.stdout

    def test_no_change_is_no_change(self):
        self.assertEqual(self.output(), OUTPUT)
        self.assertEqual(self.text.count("\n"), PROGRAM.count("\n"))

    def test_each_change_does_what_it_says(self):
        [limit] = [after for line, after in self.numbers if line == 3]
        self.assertEqual(self.output(3, limit), {"2": "other\n1 7\n20 4\n", "4": OUTPUT.replace("45", "80"),
                                                 "6": OUTPUT.replace("45", "180")}[limit])
        self.assertEqual(self.output(4, "1"), OUTPUT.replace("45", "46"))
        self.assertEqual(self.output(5, "!(x < 0)"), OUTPUT.replace("plus", "minus"))
        self.assertEqual(self.output(11, "i <= limit"), OUTPUT.replace("45", "80"))
        self.assertEqual(self.output(12, "counter.add(5, i)"), OUTPUT.replace("45", "153"))
        self.assertEqual(self.output(12, ";"), "other\n1 7\n0 4\n")
        self.assertEqual(self.output(14, "!(counter.count > 44 && !find(false))"), "other\n1 7\n45 4\n")
        self.assertEqual(self.output(14, "(counter.count > 44) || (!find(false))"), OUTPUT)
        self.assertEqual(self.output(14, "true"), "other\n1 7\n45 4\n")
        self.assertEqual(self.output(15, ";"), "1 7\n45 4\n")
        self.assertEqual(self.output(17, ";"), OUTPUT)
        self.assertEqual(self.output(18, "const int *found = find(true); !found"), "plus\n45 4\n")

    def test_switches_note_that_they_were_asked(self):
        reached = pathlib.Path(self.folder.name, "reached")
        subprocess.run([self.program], env=dict(os.environ, RY_CHANGES_REACHED=str(reached)), stdout=subprocess.DEVNULL,
                       check=True)
        numbers = set(map(int, reached.read_text().split()))
        self.assertIn(self.numbers[15, ";"], numbers)
        self.assertNotIn(self.numbers[17, ";"], numbers)


class BuildCopyTest(unittest.TestCase):
    TEXT = "void f()\n{\n    g(1);\n    if (a)\n        h();\n}\n"

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        root = pathlib.Path(self.folder.name, "root")
        root.mkdir()
        subprocess.run(["git", "init", "-q", str(root)], check=True)
        (root / ".gitignore").write_text("/build*/\n")
        (root / "a.cpp").write_text(self.TEXT)
        (root / "old.cpp").write_text("int i;\n")
        self.root, self.copy = root, build_copy.BuildCopy(root, root / "build-changes", 1)
        self.found = find_candidates({"a.cpp": self.TEXT})

    def tearDown(self):
        self.folder.cleanup()

    def test_the_copy_equals_the_tree_but_for_the_changes(self):
        self.copy.fill({5: self.found[0]})
        tree = self.copy.tree
        self.assertIn("ryChange(5)", (tree / "a.cpp").read_text())
        self.assertEqual((tree / "old.cpp").read_text(), "int i;\n")
        self.assertEqual((self.root / "a.cpp").read_text(), self.TEXT)
        before = (tree / "old.cpp").stat().st_mtime_ns
        self.copy.fill({})
        self.assertEqual((tree / "a.cpp").read_text(), self.TEXT)
        self.assertEqual((tree / "old.cpp").stat().st_mtime_ns, before)
        (self.root / "old.cpp").unlink()
        self.copy.fill({})
        self.assertFalse((tree / "old.cpp").exists())

    def test_functions_tell_that_they_read_what_the_start_reaches(self):
        text = "static const int a = 1;\nnamespace {\nint b = 2;\n}\nstruct S { int c = 3; int d() { return 4; } };\n" \
               "constexpr int e() { return 5; }\nint f() {\n    if (b) { return a; }\n    return 6;\n}\n"
        found = {each.before: each for each in find_candidates({"a.cpp": text})}
        self.assertEqual([name for name, each in sorted(found.items()) if each.at_start], ["1", "2"])
        self.assertEqual(build_copy.markers({1: found["3"], 2: found["4"]}), {})
        self.assertEqual(build_copy.markers({1: found["1"], 2: found["6"]}), {"a.cpp": build_copy.FIRST_MARKER})
        marked = instrument(text, {1: found["1"]}, 77)
        self.assertEqual([line for line in marked.splitlines() if "77" in line],
                         ["struct S { int c = 3; int d() { ryChange(77); return 4; } };", "int f() { ryChange(77);"])

    def test_errors_tell_which_changes_do_not_compile(self):
        self.copy.fill({})
        self.assertEqual([each.line for each in self.found], [3, 3, 4, 5])
        for line, lines in ((3, {3}), (4, {4}), (6, {5})):
            output = f"{self.copy.tree}/a.cpp:{line}:7: error: no\n{self.copy.tree}/a.cpp:5:1: note: yes\n"
            self.assertEqual({each.line for each in self.copy.refused(self.found, output)}, lines)
        self.assertEqual(self.copy.refused(self.found, "/elsewhere/a.cpp:3:1: error: no\n"), set())

    def test_an_error_in_a_library_belongs_to_the_place_that_needs_it(self):
        self.copy.fill({})
        output = f"/usr/include/x.h:9:1:   required from 'y'\n{self.copy.tree}/a.cpp:4:9:   required from here\n" \
                 "/usr/include/x.h:3:7: error: no\n"
        self.assertEqual({each.line for each in self.copy.refused(self.found, output)}, {4})
        self.assertEqual(self.copy.refused(self.found, "\n".join(output.splitlines()[:2])), set())

    def test_verdicts_are_kept_while_the_file_stays(self):
        self.copy.fill({})
        build_copy.Verdicts(self.copy, self.found).update({self.found[0]: True, self.found[2]: False})
        again = build_copy.Verdicts(self.copy, self.found)
        self.assertEqual([again.get(each) for each in self.found], [True, None, False, None])
        (self.root / "a.cpp").write_text(self.TEXT + "int i;\n")
        changed = build_copy.Verdicts(self.copy, self.found)
        self.assertEqual([changed.get(each) for each in self.found], [None] * 4)


class PartTest(unittest.TestCase):
    def part(self, script):
        return programs.Part({"name": "t", "command": ["sh", "-c", script, "sh"]})

    def test_outcomes(self):
        self.assertTrue(self.part("echo fine").run().passed)
        self.assertEqual(self.part("exit 3").run().reason, "ends with 3")
        self.assertEqual(self.part("echo 'FAIL!  : A::b() no'").run().reason, "A::b() no")
        self.assertEqual(self.part("sleep 60").run(limit=0.2).reason, "runs too long")

    def test_a_hasty_run_ends_at_the_first_failure(self):
        outcome = self.part("echo 'FAIL!  : A::b() no'; sleep 60").run(4, hasty=True)
        self.assertEqual(outcome.reason, "A::b() no")
        self.assertLess(outcome.seconds, 30)

    def test_the_switch_is_in_the_environment(self):
        self.assertEqual(self.part("echo $RY_CHANGE").run(17).output, "17\n")
        outcome = self.part("echo 5 >> $RY_CHANGES_REACHED").run()
        self.assertEqual(outcome.reached, {5})

    def test_programs_are_found_before_they_are_built(self):
        with tempfile.TemporaryDirectory() as folder:
            build = pathlib.Path(folder)
            (build / "tests").mkdir()
            (build / "tests/CTestTestfile.cmake").write_text(
                f'add_test([=[tst_a]=] "/elsewhere/with_display" "{folder}/bin/tst_a")\n'
                f'set_tests_properties([=[tst_a]=] PROPERTIES  TIMEOUT "600")\n'
                f'add_test([=[tst_b]=] "/bin/python3" "-B")\nadd_test([=[other]=] "{folder}/bin/other")\n')
            self.assertEqual(programs.find_targets(build, "^tst_"), {"tst_a": "bin/tst_a"})

    def test_parts(self):
        output = "\n".join(f"********* Start testing of {name} *********\nPASS   : {name}::initTestCase()\n"
                           f"PASS   : {name}::one(data)\nPASS   : {name}::one(more)\nPASS   : {name}::two()"
                           for name in ("A", "B"))
        classes = programs.parts_of(self.part(""), output)
        self.assertEqual([part.arguments for part in classes], [("A",), ("B",)])
        functions = programs.parts_of(classes[0], output.split("********* Start testing of B")[0])
        self.assertEqual([part.arguments for part in functions], [("A", "one"), ("A", "two")])
        self.assertEqual(programs.parts_of(functions[0], output), [])
        alone = "********* Start testing of A *********\nPASS   : A::one(data)\nPASS   : A::one(more)\n"
        self.assertEqual(programs.parts_of(self.part(""), alone), [])
        self.assertEqual(programs.parts_of(classes[0], alone), [])


    def test_patience_goes_to_the_quick_parts(self):
        parts = [self.part("") for _ in range(4)]
        for part, seconds in zip(parts, (1, 2, 4, 8)):
            part.seconds = seconds
        self.assertEqual(programs.within(parts, 7), parts[:3])
        self.assertEqual(programs.within(parts, 0.5), parts[:1])
        self.assertEqual(programs.within([], 7), [])

    def test_an_attempt_ends_at_the_first_part_that_sees_the_change(self):
        with tempfile.TemporaryDirectory() as folder:
            blind, seeing, late = self.part("exit 0"), self.part("test $RY_CHANGE != 3"), self.part(f"touch {folder}/ran")
            self.assertEqual(programs.attempt(3, [blind, seeing, late]), (seeing, "ends with 1"))
            self.assertEqual(os.listdir(folder), [])
            self.assertIsNone(programs.attempt(4, [blind, seeing, late]))
            self.assertEqual(os.listdir(folder), ["ran"])


class SurvivorsTest(unittest.TestCase):
    def setUp(self):
        [self.candidate] = find_candidates({"new.cpp": "void f()\n{\n    if (a)\n        return;\n}\n"})
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name, "survivors.txt")

    def tearDown(self):
        self.folder.cleanup()

    def test_a_written_entry_is_known(self):
        self.path.write_text("# why: so\n\n" + survivors.paragraph(self.candidate, "nobody looks"))
        [entry] = survivors.read(self.path)
        self.assertEqual(entry["reason"], "nobody looks")
        self.assertTrue(survivors.known(self.candidate, [entry], {"new.cpp"}))

    def test_an_entry_counts_for_its_file_while_that_is_there(self):
        self.path.write_text(survivors.paragraph(self.candidate, "x").replace("new.cpp", "old.cpp"))
        [entry] = survivors.read(self.path)
        self.assertTrue(survivors.known(self.candidate, [entry], {"new.cpp"}))
        self.assertFalse(survivors.known(self.candidate, [entry], {"new.cpp", "old.cpp"}))
        entry["after"] = "a"
        self.assertFalse(survivors.known(self.candidate, [entry], {"new.cpp"}))

    def test_an_entry_needs_a_reason(self):
        self.path.write_text(survivors.paragraph(self.candidate, ""))
        self.assertRaises(ValueError, survivors.read, self.path)


class ReportTest(unittest.TestCase):
    """The whole script on numbers that are known: changes 1 and 4 killed, 2 accepted, 3 survived."""

    setUp, tearDown, TEXT = BuildCopyTest.setUp, BuildCopyTest.tearDown, BuildCopyTest.TEXT

    def report(self, accepted=(1,)):
        loader = importlib.machinery.SourceFileLoader("try_changes", str(ROOT / "tools/try_changes"))
        script = importlib.util.module_from_spec(importlib.util.spec_from_loader("try_changes", loader))
        loader.exec_module(script)
        part = programs.Part({"name": "tst_x", "command": []})
        numbered = dict(enumerate(self.found, 1))
        script.ACCEPTED = self.root / "accepted.txt"
        script.ACCEPTED.write_text("\n".join(survivors.paragraph(self.found[i], "so") for i in accepted))
        self.copy.fill({})
        text = io.StringIO()
        with contextlib.redirect_stdout(text):
            code = script.report(self.copy, numbered, {1: (part, "A::b() no"), 2: None, 3: None, 4: (part, "no")},
                                 {1: [part], 2: [part], 3: [], 4: [part]}, argparse.Namespace(seed=1, patience=40))
        return code, text.getvalue()

    def test_new_survivors_are_told(self):
        code, text = self.report()
        self.assertEqual(code, 1)
        self.assertIn("SURVIVED  a.cpp:4: condition (change 3)\n    before: a\n    after:  !(a)\n    no test program reaches it", text)
        self.assertIn("4 changes, seed 1: 2 killed, 1 accepted survivors, 1 new survivors; the tests see 66.7 %", text)
        self.assertIn("by tst_x: A::b() no", (self.copy.folder / "report.txt").read_text())
        written = (self.copy.folder / "survivors.txt").read_text()
        self.assertEqual(written, survivors.paragraph(self.found[2], "?"))

    def test_accepted_survivors_are_no_fault(self):
        code, text = self.report(accepted=(1, 2))
        self.assertEqual(code, 0)
        self.assertIn("accepted  a.cpp:4", text)


class AcceptedTest(unittest.TestCase):
    def test_the_list_of_the_tree_reads(self):
        for entry in survivors.read(ROOT / "tools/changes/survivors.txt"):
            self.assertIn(entry["kind"], candidates.KINDS)


if __name__ == "__main__":
    unittest.main()
