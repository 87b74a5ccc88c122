#!/usr/bin/env python3
"""Runs the commands of docs/farm.md word by word: 20 characters, of which one is broken and one is killed."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
RYHOST = pathlib.Path(sys.argv.pop(1)).resolve()
SAMPLE = ROOT / "resources/samples/mannequin.glb"
GUIDE = (ROOT / "docs/farm.md").read_text(encoding="utf-8")

# The one character never ends by itself.
FIX = """
var nodes = Scene.getNodes();
for (var i = 0; i < nodes.length; ++i) {
    if (nodes[i].getName() == 'endless') { while (true) {} }
}
var bone = Scene.find('lForearm');
Undo.step('Fix', function () { bone.setValue('endX', bone.getValue('endX') + 1); });
"""
# Runs the tasks of an array one after the other, as a cluster of one processor would.
SBATCH = """#!/bin/bash
status=0
while [ "${1#--}" != "$1" ]; do
    case "$1" in --array=*) range=${1#--array=} ;; esac
    shift
done
script=$(command -v "$1")
cp "$script" spooled
shift
for ((task = ${range%-*}; task <= ${range#*-}; ++task)); do
    SLURM_ARRAY_TASK_ID=$task bash spooled "$@" >farm-$task.log 2>&1 || status=1
done
exit $status
"""


def commands_of(heading):
    """The lines of the shell block below a heading."""
    section = GUIDE.split(f"\n## {heading}\n", 1)[1].split("\n## ", 1)[0]
    return re.search(r"^```sh\n(.*?)^```$", section, re.M | re.S).group(1).splitlines()


def processes_of(file):
    """{id: parent's id} of the programs that work on a file."""
    found = {}
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            words = (folder / "cmdline").read_bytes().split(b"\0")
            here = os.readlink(folder / "exe") == str(RYHOST) and os.readlink(folder / "cwd") == str(file.parent.parent)
            if here and b"characters/" + file.name.encode() in words:
                found[int(folder.name)] = int((folder / "stat").read_text().rsplit(")", 1)[1].split()[1])
        except OSError:  # gone, or not ours
            continue
    return found


class FarmGuideTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name).resolve()
        (self.folder / "characters").mkdir()
        (self.folder / "bin").mkdir()
        for name, target in (("farm", ROOT / "scripts/farm"), ("farm_array", ROOT / "scripts/farm_array"),
                             ("ryhost", RYHOST)):
            (self.folder / "bin" / name).symlink_to(target)
        (self.folder / "bin/sbatch").write_text(SBATCH)
        (self.folder / "bin/sbatch").chmod(0o755)
        (self.folder / "fix.rsx").write_text(FIX)
        for number in range(1, 21):
            shutil.copy(SAMPLE, self.character(number))
        self.character(19).write_bytes(b"")
        (self.folder / "name.rsx").write_text("Scene.find('lHand').setName('endless');")
        self.shell(f"ryhost --batch {SAMPLE} --script name.rsx --save characters/c20.glb", expected=0)

    def character(self, number):
        return self.folder / f"characters/c{number:02}.glb"

    def shell(self, command, expected=None):
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith("SLURM") and name not in ("RYHOST", "DISPLAY", "PARALLEL")}
        environment.update(PATH=f"{self.folder}/bin:{os.environ['PATH']}", PARALLEL_HOME=str(self.folder / "parallel"),
                           LC_ALL="C.UTF-8", RYHOST_SETTINGS_DIR=str(self.folder / "settings"))
        done = subprocess.run(["bash", "-c", command], cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if expected is not None:
            self.assertEqual(done.returncode, expected, f"{command}\n{done.stdout}")
        return done.stdout

    def kill_the_last(self, killed):
        """Kills what works on the endless character, as a machine without memory would."""
        while not killed.is_set():
            processes = processes_of(self.character(20))
            workers = [each for each, parent in processes.items() if parent in processes]
            if workers:
                os.kill(processes[workers[0]], signal.SIGKILL)
                killed.set()
            time.sleep(0.02)

    def run_once(self, run):
        """Runs the command while the endless character is killed. Gives what it said."""
        killed = threading.Event()
        killer = threading.Thread(target=self.kill_the_last, args=[killed])
        killer.start()
        try:
            said = self.shell(run, expected=2 if run.startswith("parallel") else 1)
            self.assertTrue(killed.is_set())
        finally:
            killed.set()
            killer.join()
            left = processes_of(self.character(20))
            for process in left:
                os.kill(process, signal.SIGKILL)
        self.assertEqual(left, {}, "the worker outlived what started it")
        return said

    def table(self):
        rows = [line.split("\t") for line in (self.folder / "table.txt").read_text().splitlines()]
        self.assertEqual(rows[0], ["file", "state", "code", "reason"])
        return {row[0]: row[1:] for row in rows[1:]}

    def results(self):
        """What a second run must not touch."""
        paths = list((self.folder / "fixed").glob("*.glb")) + list((self.folder / "fixed/reports").glob("*.json"))
        return {path.name: path.stat().st_mtime_ns for path in paths if path.name[1:3] not in ("19", "20")}

    def check(self, heading):
        prepare, run, table = commands_of(heading)
        self.shell(prepare, expected=0)
        self.run_once(run)
        self.assertIn("farm: 20 files: 18 done, 1 refused, 1 killed", self.shell(table, expected=1))
        states = self.table()
        self.assertEqual(len(states), 20)
        for number in range(1, 19):
            self.assertEqual(states[f"characters/c{number:02}.glb"], ["done", "0", ""])
            self.assertNotEqual((self.folder / f"fixed/c{number:02}.glb").read_bytes(), SAMPLE.read_bytes())
        shown = re.search(r"^```\n(characters.*?)^```$", GUIDE, re.M | re.S).group(1).splitlines()
        self.assertEqual(shown, (self.folder / "table.txt").read_text().splitlines()[-2:])
        self.assertEqual(len(self.results()), 36)

        # Somebody mends the one that took too long; the second run takes nothing up that is done.
        before = self.results()
        shutil.copy(SAMPLE, self.character(20))
        self.shell(prepare, expected=0)
        said = self.shell(run, expected=1)
        said += "".join(log.read_text() for log in self.folder.glob("farm-*.log"))
        self.assertEqual(said.count("is done already"), 18, said)
        self.assertEqual(self.results(), before)
        self.assertIn("farm: 20 files: 19 done, 1 refused\n", self.shell(table, expected=1))
        self.assertEqual(self.table()["characters/c20.glb"], ["done", "0", ""])

        # With nothing missing nothing is done, and all is well.
        shutil.copy(SAMPLE, self.character(19))
        self.shell(run, expected=0)
        self.shell(table, expected=0)
        everything = self.results()
        self.shell(run, expected=0)
        self.assertEqual(self.results(), everything)

    def test_one_machine(self):
        self.check("One machine: GNU parallel")

    def test_many_machines(self):
        self.check("Many machines: Slurm")

    def test_every_command_is_run_here(self):
        self.assertEqual(len(re.findall(r"^```sh$", GUIDE, re.M)), 2)


if __name__ == "__main__":
    unittest.main()
