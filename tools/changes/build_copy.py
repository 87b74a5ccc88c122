"""A copy of the tree with the changes in it, and its build."""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess

from .candidates import instrument

PREFIX = pathlib.Path(__file__).resolve().parent / "ryChange.h"
# An error in a header of a library is told after the place that needs the template.
ERROR = re.compile(r"^([^\s:][^:\n]*):(\d+):(?:\d+:)? +(?:(required from here)|(?:fatal )?error: )", re.M)


# Numbers of no change: the functions of a file ask for them.
FIRST_MARKER = 5000


def markers(numbered):
    """{path: marker} of the sources with changes that the start of the program reaches: their functions read what these are
    about. What a header says is read elsewhere too."""
    paths = {each.path for each in numbered.values() if each.at_start and not each.path.endswith(".h")}
    return {path: FIRST_MARKER + i for i, path in enumerate(sorted(paths))}


class BuildFailed(Exception):
    pass


class Verdicts:
    """Which changes compile, kept in the copy from run to run for files that stay as they are."""

    def __init__(self, copy, candidates):
        self.path = copy.folder / "compiling.json"
        self.known = json.loads(self.path.read_text()) if self.path.exists() else {}
        sums = {path: hashlib.sha256((copy.root / path).read_bytes()).hexdigest() for path in
                {each.path for each in candidates}}
        self.keys = {each: f"{sums[each.path]} {each.start} {each.kind} {each.after}" for each in candidates}

    def get(self, candidate):
        return self.known.get(self.keys[candidate])

    def update(self, found):
        self.known.update({self.keys[each]: verdict for each, verdict in found.items()})
        self.path.write_text(json.dumps({key: self.known[key] for key in self.keys.values() if key in self.known}))


class BuildCopy:
    """folder/tree is the copy, folder/build its build. Both stay between runs, so that only what differs is built."""

    def __init__(self, root, folder, jobs):
        self.root, self.folder, self.jobs = root, folder, jobs
        self.tree, self.build = folder / "tree", folder / "build"

    def files(self):
        """All files of the tree that git knows or would take."""
        done = subprocess.run(["git", "-C", str(self.root), "ls-files", "-coz", "--exclude-standard"], check=True,
                              stdout=subprocess.PIPE, text=True)
        return sorted(path for path in set(done.stdout.split("\0")) if path and (self.root / path).is_file())

    def fill(self, numbered):
        """Makes the copy equal to the tree, with {number: candidate} written into it."""
        wanted = self.files()
        marked, by_path = markers(numbered), {}
        for number, each in numbered.items():
            by_path.setdefault(each.path, {})[number] = each
        for path in wanted:
            data = (self.root / path).read_bytes()
            if path in by_path:
                text = instrument(data.decode(), by_path[path], marked.get(path))
                # Changes make a compiler warn; it is quiet about what it takes for a header of the system.
                quiet = "#pragma GCC system_header" if path.endswith(".h") else f'# 1 "{self.tree / path}" 3'
                if path.endswith(".h"):
                    quiet += f'\n# 1 "{self.tree / path}" 3'
                data = f'#include "ryChange.h"\n{quiet}\n{text}'.encode()
            self._write(path, data, self.root / path)
        self._write("src/ryChange.h", PREFIX.read_bytes(), PREFIX)
        known = set(wanted) | {"src/ryChange.h"}
        for path in self.tree.rglob("*"):
            name = str(path.relative_to(self.tree))
            if path.is_file() and not name.startswith("node_modules") and name not in known:
                path.unlink()
        modules = self.tree / "node_modules"
        if (self.root / "node_modules").is_dir() and not modules.exists():
            modules.symlink_to(self.root / "node_modules")

    def _write(self, path, data, origin):
        target = self.tree / path
        if target.exists() and target.read_bytes() == data:
            return
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(data)
        shutil.copymode(origin, target)

    def configure(self):
        models = os.environ.get("RY_MODELS", str((self.root / "../shared/models").resolve()))
        # The options of ./test: what it left in the cache of the compiler is taken from there.
        version = subprocess.run([os.environ.get("CXX", "g++"), "-dumpversion"], stdout=subprocess.PIPE, text=True, check=False)
        strict = "ON" if version.stdout.split(".")[0].strip() == "12" else "OFF"
        done = subprocess.run(["cmake", "-S", str(self.tree), "-B", str(self.build), "-G", "Ninja", f"-DRY_WERROR={strict}",
                               "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DRY_BENCHMARKS=OFF"], check=False, text=True,
                              env=dict(os.environ, RY_MODELS=models), stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode:
            raise BuildFailed(done.stdout)

    def check(self, candidates, paths):
        """The candidates that the compiler refuses in some of the files, and the files in which it refuses none."""
        self.fill(dict(enumerate(candidates, 1)))
        changed = set(paths)
        commands = self._commands()
        units = {path: [path] for path in sorted(changed) if path in commands}
        for header in sorted(changed - set(units)):
            name = header.removeprefix("src/")
            including = [path for path in sorted(commands) if f'#include "{name}"' in (self.root / path).read_text()]
            for path in including[:1]:
                units.setdefault(path, []).append(header)
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            outputs = list(pool.map(lambda path: self._compile(*commands[path]), units))
        bad = self.refused(candidates, "\n".join(outputs))
        if not bad and any(ERROR.search(output) for output in outputs):
            raise BuildFailed("\n".join(outputs)[-5000:])
        fine = {path for held, output in zip(units.values(), outputs) if not ERROR.search(output) for path in held}
        return bad, fine

    def refused(self, candidates, output):
        """The candidates on the lines that the compiler's errors name."""
        bad, needing = set(), None
        for found in ERROR.finditer(output):
            path, line = os.path.realpath(os.path.join(self.build, found.group(1))), int(found.group(2))
            if found.group(3):
                needing = path, line
                continue
            if not path.startswith(os.path.realpath(self.tree)) and needing:
                path, line = needing
            near = [each for each in candidates if os.path.realpath(self.tree / each.path) == path]
            if not near:
                continue
            distance = min(self._distance(each, line) for each in near)
            bad.update(each for each in near if self._distance(each, line) == distance)
        return bad

    @staticmethod
    def _distance(each, line):
        return max(each.first_line - line, line - each.last_line, 0)

    def _commands(self):
        """The compiler's words for each source of the tree, without what writes files."""
        commands = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            path = os.path.relpath(os.path.join(entry["directory"], entry["file"]), self.tree)
            words = shlex.split(entry["command"])
            start = next((i + 1 for i, word in enumerate(words[:8]) if word.endswith("ccache")), 0)
            kept, skip = [], False
            for word in words[start:]:
                if not skip and word not in ("-o", "-MD", "-MT", "-MF", "-c"):
                    kept.append(word)
                skip = word in ("-o", "-MT", "-MF")
            if not path.startswith(".."):
                commands.setdefault(path, (kept, entry["directory"]))
        return commands

    @staticmethod
    def _compile(words, folder):
        done = subprocess.run(words + ["-fsyntax-only", "-w", "-Werror=vla", "-fmax-errors=0"], cwd=folder, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              env=dict(os.environ, LC_ALL="C"))
        return done.stdout

    def uses(self, target, paths):
        """Whether the build makes a target from one of these files of the tree."""
        done = subprocess.run(["ninja", "-C", str(self.build), "-t", "inputs", target], check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        inputs = {os.path.relpath(os.path.join(self.build, line), self.tree) for line in done.stdout.splitlines()}
        return not inputs.isdisjoint(paths)

    def make(self, targets):
        """Builds; returns what the build said when it failed, else nothing."""
        done = subprocess.run(["ninja", "-C", str(self.build), "-k", "0", "-j", str(self.jobs), *targets], check=False,
                              text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=dict(os.environ, LC_ALL="C"))
        return done.stdout if done.returncode else ""
