"""Test programs, and parts of them: what each reaches, how long it takes, and whether it passes with a change."""

import dataclasses
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import threading
import time

TESTED_CLASS = re.compile(r"^\*+ Start testing of (\w+)", re.M)
TESTED_FUNCTION = re.compile(r"^PASS   : (\w+)::(\w+)\(", re.M)
FAILURE = b"FAIL!  : "
SLOW = 2.0  # seconds; what takes longer is cut into parts


@dataclasses.dataclass
class Outcome:
    passed: bool
    seconds: float
    output: str
    reached: frozenset
    reason: str  # what failed


class Part:
    """A test program, one class of it or one function of that."""

    def __init__(self, test, arguments=()):
        self.test, self.arguments = test, tuple(arguments)
        self.seconds, self.reached = 0.0, frozenset()

    def __str__(self):
        return " ".join((self.test["name"],) + self.arguments)

    def run(self, change=0, limit=None, hasty=False):
        """Runs with one change on. A hasty run ends at the first failure."""
        properties = {each["name"]: each["value"] for each in self.test.get("properties", [])}
        with tempfile.TemporaryDirectory() as folder:
            reached = pathlib.Path(folder, "reached")
            environment = dict(os.environ, TMPDIR=folder, RY_SEED="1", RY_CHANGE=str(change))
            environment.update(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
            if not change:
                environment["RY_CHANGES_REACHED"] = str(reached)
            started = time.monotonic()
            process = subprocess.Popen(self.test["command"] + list(self.arguments), cwd=properties.get("WORKING_DIRECTORY"),
                                       env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                       stderr=subprocess.STDOUT, start_new_session=True)
            late = threading.Event()

            def give_up():
                if process.poll() is None:
                    late.set()
                    end(process)

            watch = threading.Timer(limit or properties.get("TIMEOUT", 600), give_up)
            watch.start()
            lines, failure = [], ""
            for line in process.stdout:
                lines.append(line)
                if line.startswith(FAILURE):
                    failure = failure or line.decode(errors="replace")[len(FAILURE):].strip()
                    if hasty:
                        break
            end_now = hasty and failure
            if end_now:
                end(process)
            process.stdout.close()
            code = process.wait()
            watch.cancel()
            end(process)
            seconds = time.monotonic() - started
            numbers = frozenset(map(int, reached.read_text().split())) if reached.exists() else frozenset()
        if late.is_set():
            reason = "runs too long"
        elif failure:
            reason = failure
        else:
            reason = f"ends with {code}" if code else ""
        return Outcome(not reason, seconds, b"".join(lines).decode(errors="replace"), numbers, reason)


def end(process):
    """Ends a program and all that it has started. An X server takes its lock away when it is asked to end."""
    for order in (signal.SIGTERM, signal.SIGKILL):
        try:
            os.killpg(process.pid, order)
            process.wait(timeout=3)
        except ProcessLookupError:
            return
        except subprocess.TimeoutExpired:
            pass


def find_targets(build, pattern):
    """{test: what the build calls its program}. ctest itself tells no command of a program that is not built yet."""
    targets = {}
    for path in build.rglob("CTestTestfile.cmake"):
        for name, command in re.findall(r"^add_test\(\[=\[(.*?)\]=\] (.*)\)$", path.read_text(), re.M):
            made = [os.path.relpath(word, build) for word in re.findall(r'"(/[^"]*)"', command)]
            made = [word for word in made if not word.startswith("..")]
            if made and re.search(pattern, name):
                targets[name] = made[0]
    return targets


def find_programs(build, names):
    done = subprocess.run(["ctest", "--test-dir", str(build), "--show-only=json-v1"], check=True, stdout=subprocess.PIPE,
                          text=True)
    return [Part(test) for test in json.loads(done.stdout)["tests"] if test["name"] in names and "command" in test]


def parts_of(part, output):
    """The parts of a program or class, as what it printed tells them."""
    if not part.arguments:
        names = list(dict.fromkeys(TESTED_CLASS.findall(output)))
        return [Part(part.test, (name,)) for name in names] if len(names) > 1 else []
    if len(part.arguments) == 1:
        names = [function for _, function in TESTED_FUNCTION.findall(output)
                 if function not in ("initTestCase", "cleanupTestCase")]
        names = list(dict.fromkeys(names))
        return [Part(part.test, part.arguments + (name,)) for name in names] if len(names) > 1 else []
    return []


def within(parts, patience):
    """The quickest parts, together no longer than patience says, but one at least."""
    taken, seconds = [], 0.0
    for part in parts:
        seconds += part.seconds
        if taken and seconds > patience:
            break
        taken.append(part)
    return taken


def attempt(number, parts):
    """Which of the parts sees the change, and how; None when none does."""
    for part in parts:
        outcome = part.run(number, limit=5 * part.seconds + 10, hasty=True)
        if not outcome.passed:
            return part, outcome.reason
    return None
