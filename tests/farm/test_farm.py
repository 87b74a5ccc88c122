#!/usr/bin/env python3
"""What scripts/farm makes of every way in which work on a character can end."""

import fcntl
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FARM = ROOT / "scripts/farm"
RYHOST = pathlib.Path(sys.argv.pop(1)).resolve()
MESH = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"
# Instead of the program: dies, or takes with it who started it.
DYING = """#!/bin/bash
case "$2" in
*segfault*) kill -SEGV $$ ;;
*silent*) exit 0 ;;
*half*) echo '{"code": 0,'; exit 0 ;;
*starter*) kill -KILL $PPID ;;
esac
"""


class FarmTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.dying = self.folder / "dying"
        self.dying.write_text(DYING)
        self.dying.chmod(0o755)

    def write(self, name, text=MESH):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return name

    def age(self, name, seconds):
        path = self.folder / name
        os.utime(path, (path.stat().st_atime, path.stat().st_mtime + seconds))

    def farm(self, *arguments, program=RYHOST, command=None):
        environment = dict(os.environ, RYHOST=str(program), RYHOST_SETTINGS_DIR=str(self.folder / "settings"),
                           PARALLEL_HOME=str(self.folder / "parallel"))
        return subprocess.run(command or [sys.executable, "-B", FARM, *arguments], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              check=False)

    def run_on(self, name, *verbs, program=RYHOST):
        return self.farm("run", "out", name, *verbs, program=program)

    def rows(self, *names, joblog=()):
        self.write("list.txt", "".join(name + "\n" for name in names))
        done = self.farm("table", "out", "list.txt", *joblog)
        return [tuple(line.split("\t")) for line in done.stdout.splitlines()[1:]], done

    def was_done(self, *arguments):
        """Whether a run found that there is nothing to do."""
        done = self.run_on(*arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return "is done already" in done.stderr

    def test_what_is_done_is_left_alone_until_something_changes(self):
        self.write("a.obj")
        self.write("fix.rsx", "print('fixed')")
        self.assertFalse(self.was_done("a.obj", "--script", "fix.rsx"))
        self.assertEqual((self.folder / "out/a.obj").read_text(), MESH)
        self.assertTrue(self.was_done("a.obj", "--script", "fix.rsx"))
        self.assertTrue(self.was_done("a.obj", "--script", "fix.rsx"))
        self.age("a.obj", 60)
        self.assertFalse(self.was_done("a.obj", "--script", "fix.rsx"))
        self.assertTrue(self.was_done("a.obj", "--script", "fix.rsx"))
        self.age("fix.rsx", 300)
        self.assertFalse(self.was_done("a.obj", "--script", "fix.rsx"))
        self.assertTrue(self.was_done("a.obj", "--script", "fix.rsx"))
        # An older one that was put in its place is another one, too.
        self.age("a.obj", -60)
        self.assertFalse(self.was_done("a.obj", "--script", "fix.rsx"))
        self.assertFalse(self.was_done("a.obj"))
        self.assertTrue(self.was_done("a.obj"))
        (self.folder / "out/a.obj").unlink()
        self.assertEqual(self.rows("a.obj")[0], [("a.obj", "missing", "-", "out/a.obj was written and is gone")])
        self.assertFalse(self.was_done("a.obj"))

    def test_what_changed_during_the_work_is_not_done(self):
        changing = self.folder / "changing"
        for changed, more in (("a.obj", "# more"), ("fix.rsx", "// more")):
            self.write("a.obj")
            self.write("fix.rsx", "print('fixed')")
            changing.write_text(f'#!/bin/bash\n"{RYHOST}" "$@"\necho "{more}" >>{changed}\nsleep 0.02\n')
            changing.chmod(0o755)
            arguments = ("a.obj", "--script", "fix.rsx")
            # It was changed before the report was written, and after the program had read it.
            self.assertEqual(self.run_on(*arguments, program=changing).returncode, 0)
            report = self.folder / "out/reports/a.obj.json"
            self.assertLess((self.folder / changed).stat().st_mtime_ns, report.stat().st_mtime_ns)
            self.assertFalse(self.was_done(*arguments), changed)
            self.assertTrue(self.was_done(*arguments), changed)

    def test_what_failed_is_tried_again(self):
        self.write("a.obj")
        self.assertFalse(self.was_done("a.obj"))
        # What was done before lies in the folder still.
        self.write("a.obj", "")
        self.age("a.obj", 60)
        for _ in range(2):
            self.assertEqual(self.run_on("a.obj").returncode, 1)
            self.age("out/reports/a.obj.json", 120)
        self.assertTrue((self.folder / "out/a.obj").exists())
        self.write("a.obj")
        self.age("a.obj", -3600)
        self.assertFalse(self.was_done("a.obj"))

    def test_every_exit_code_has_its_state(self):
        self.write("none.rsx", "throw 'on purpose'")
        verbs = {"done": [], "wrong": ["--select", "nobody"], "refused": ["--run", "RyJEAlignNodeAction"],
                 "unwritten": ["--save", "no/folder/a.obj"], "script": ["--script", "none.rsx"]}
        for name, each in verbs.items():
            self.run_on(self.write(name + ".obj"), *each)
        self.run_on("nowhere.obj")
        rows, done = self.rows(*(name + ".obj" for name in verbs), "nowhere.obj", "later.obj")
        self.assertEqual([row[1:3] for row in rows],
                         [("done", "0"), ("failed", "2"), ("refused", "3"), ("failed", "4"), ("failed", "5"),
                          ("refused", "1"), ("missing", "-")])
        for row, words in zip(rows[1:], ("nobody", "RyJEAlignNodeAction", "does not exist", "none.rsx",
                                         "there is no such file", "not begun yet")):
            self.assertIn(words, row[3])
        self.assertEqual(done.returncode, 1)
        self.assertIn("7 files: 1 done, 2 refused, 3 failed, 1 missing", done.stderr)
        self.assertEqual(self.rows("done.obj")[1].returncode, 0)

    def test_killed_is_told_from_refused(self):
        codes = [self.run_on(self.write(name), program=self.dying).returncode
                 for name in ("segfault.obj", "silent.obj", "half.obj", "starter.obj")]
        self.assertEqual(codes, [139, 128, 128, -9])
        rows, done = self.rows("segfault.obj", "silent.obj", "half.obj", "starter.obj")
        self.assertEqual(rows, [("segfault.obj", "killed", "139", "killed by signal 11"),
                                ("silent.obj", "killed", "128", "ended without a report"),
                                ("half.obj", "killed", "128", "ended without a report"),
                                ("starter.obj", "killed", "-", "it began and left no report")])
        self.assertIn("4 files: 4 killed", done.stderr)
        # All of them are tried again.
        for name in ("segfault.obj", "silent.obj", "half.obj", "starter.obj"):
            self.assertFalse(self.was_done(name))
        self.assertEqual(self.rows("segfault.obj", "starter.obj")[1].returncode, 0)

    def test_the_scheduler_tells_the_code_of_what_could_not(self):
        names = [self.write(name) for name in ("a.obj", "starter.obj", "b.obj")]
        self.rows(*names)
        done = self.farm(program=self.dying, command=["parallel", "--joblog", "jobs.log", str(FARM), "run", "out", "{}",
                                                      "::::", "list.txt"])
        self.assertEqual(done.returncode, 3, done.stderr)
        rows, _ = self.rows(*names, joblog=["--joblog", "jobs.log"])
        self.assertEqual([row[1:3] for row in rows], [("killed", "128"), ("killed", "137"), ("killed", "128")])

    def test_a_report_of_before_is_no_report_of_now(self):
        self.write("starter.obj")
        self.assertFalse(self.was_done("starter.obj"))
        self.run_on("starter.obj", "--undo", program=self.dying)
        self.assertEqual(self.rows("starter.obj")[0][0][1], "killed")

    def test_two_do_not_take_one_character(self):
        self.write("a.obj")
        (self.folder / "out/reports").mkdir(parents=True)
        with open(self.folder / "out/reports/a.obj.part", "wb") as part:
            fcntl.flock(part, fcntl.LOCK_EX)
            second = self.run_on("a.obj")
            self.assertEqual(second.returncode, 2)
            self.assertIn("out/a.obj is being worked on by another process", second.stderr)
            self.assertFalse((self.folder / "out/a.obj").exists())
            self.assertEqual(self.rows("a.obj")[0], [("a.obj", "running", "-", "")])
        self.assertEqual(self.rows("a.obj")[0][0][1], "killed")

    def test_two_of_one_name_are_refused(self):
        self.write("one/a.obj")
        self.write("two/a.obj", MESH + "v 3 3 3\n")
        self.assertFalse(self.was_done("one/a.obj"))
        second = self.run_on("two/a.obj")
        self.assertEqual(second.returncode, 2)
        self.assertIn("out holds the results of one/a.obj, and two/a.obj has the same name", second.stderr)
        self.assertEqual((self.folder / "out/a.obj").read_text(), MESH)
        rows, _ = self.rows("one/a.obj", "two/a.obj")
        self.assertEqual([row[1] for row in rows], ["done", "missing"])

    def test_two_that_would_become_one_file_are_refused(self):
        """A file that cannot be written in its own format takes the name that another one has."""
        joint = "HIERARCHY\nROOT hip\n{\nOFFSET 0 90 0\nCHANNELS 3 Zrotation Xrotation Yrotation\nEnd Site\n{\n" \
                "OFFSET 0 30 0\n}\n}\nMOTION\nFrames: 1\nFrame Time: 0.1\n0 0 0\n"
        self.write("hero.bvh", joint)
        self.write("hero.glb", "")
        first = self.run_on("hero.bvh")
        second = self.run_on("hero.glb")
        self.assertEqual(second.returncode, 2)
        self.assertIn("out holds the results of hero.bvh, and hero.glb has the same name once it is saved (hero.glb)",
                      second.stderr)
        rows, _ = self.rows("hero.bvh", "hero.glb")
        self.assertEqual([row[1] for row in rows], ["refused" if first.returncode else "done", "missing"])
        self.assertEqual(rows[1][3], "the results under this name are those of hero.bvh")
        # Nor while the first one is worked on.
        (self.folder / "out/reports/hero.glb.json").unlink()
        with open(self.folder / "out/reports/hero.glb.part", "wb") as part:
            fcntl.flock(part, fcntl.LOCK_EX)
            self.assertIn("out/hero.glb is being worked on by another process", self.run_on("hero.glb").stderr)

    def test_a_torn_log_of_the_scheduler(self):
        self.write("starter.obj")
        self.write("b.obj")
        for name in ("starter.obj", "b.obj"):
            self.run_on(name, program=self.dying)
        heading = "Seq\tHost\tStarttime\tJobRuntime\tSend\tReceive\tExitval\tSignal\tCommand\n"
        whole = "1\t:\t1.000\t0.1\t0\t0\t0\t9\tfarm run out starter.obj\n"
        for torn in ("2\t:\t1.0", "2\t:\t1.000\t0.1\t0\t0\t1", "nothing of the kind\n", "2\t\0\0\0\n"):
            self.write("jobs.log", heading + whole + torn)
            rows, done = self.rows("starter.obj", "b.obj", joblog=["--joblog", "jobs.log"])
            self.assertEqual(rows[0][:3], ("starter.obj", "killed", "137"))
            self.assertEqual(done.returncode, 1)
            self.assertIn("line 3 of jobs.log is no whole line of a log of GNU parallel", done.stderr)
            self.assertNotIn("Traceback", done.stderr)

    def test_names_with_blanks(self):
        self.write("a hero's.obj")
        self.assertFalse(self.was_done("a hero's.obj"))
        self.assertEqual(self.rows("a hero's.obj")[0], [("a hero's.obj", "done", "0", "")])

    def test_the_report_is_the_documents(self):
        self.write("a.obj")
        self.run_on("a.obj", "--undo")
        report = json.loads((self.folder / "out/reports/a.obj.json").read_text())
        self.assertEqual(report["code"], 2)
        self.assertEqual(report["files"][0]["verb"], "--undo")

    def test_wrong_use(self):
        for arguments in ([], ["run"], ["run", "out"], ["table", "out"], ["table", "out", "list", "--jobs", "x"], ["dance"]):
            done = self.farm(*arguments)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn("farm --help tells more", done.stderr)
        done = self.farm("table", "out", "nolist.txt")
        self.assertEqual(done.returncode, 2)
        self.assertIn("nolist.txt", done.stderr)
        self.assertEqual(self.farm("--help").returncode, 0)
        done = self.farm("run", "out", self.write("a.obj"), program=self.folder / "nowhere")
        self.assertEqual(done.returncode, 2)
        self.assertIn("nowhere", done.stderr)

    def test_the_array_script_says_what_is_wrong(self):
        self.write("list.txt", "a.obj\n")
        script = str(ROOT / "scripts/farm_array")
        without = self.farm(command=["env", "-u", "SLURM_ARRAY_TASK_ID", script, "list.txt", "out"])
        self.assertEqual(without.returncode, 2)
        self.assertIn("sbatch --array=1-N", without.stderr)
        beyond = self.farm(command=["env", "SLURM_ARRAY_TASK_ID=2", script, "list.txt", "out"])
        self.assertEqual(beyond.returncode, 2)
        self.assertIn("list.txt has no line 2", beyond.stderr)


if __name__ == "__main__":
    unittest.main()
