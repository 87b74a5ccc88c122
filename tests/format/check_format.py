#!/usr/bin/env python3
"""check_format.py ROOT: every C++ file that git knows is laid out as .clang-format says. Mend: clang-format -i FILE...

Skipped with a message where there is no clang-format of the version that the tree is laid out with: others break lines
differently.
"""

import pathlib
import re
import shutil
import subprocess
import sys

VERSION = "14"


def find_program():
    for name in (f"clang-format-{VERSION}", "clang-format"):
        program = shutil.which(name)
        if program:
            text = subprocess.run([program, "--version"], stdout=subprocess.PIPE, text=True, check=False).stdout
            found = re.search(r"version (\d+)\.", text)
            if found and found.group(1) == VERSION:
                return program
    return None


def unformatted(program, files):
    """Those of the files that the program would change, with what it says of each."""
    done = subprocess.run([program, "--dry-run", "-Werror", "--ferror-limit=1", *map(str, files)], check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    found = sorted(set(re.findall(r"^(\S+?:\d+):\d+: error:", done.stdout, re.M)))
    if done.returncode and not found:
        return [done.stdout.strip() or f"{program} ended with {done.returncode}"]
    return found


def main(root):
    program = find_program()
    if not program:
        print(f"SKIP : check_format() no clang-format of version {VERSION}")
        return 0
    known = subprocess.run(["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h"],
                           stdout=subprocess.PIPE, text=True, check=True).stdout.split("\0")
    files = [pathlib.Path(root, name) for name in known if name and pathlib.Path(root, name).exists()]
    found = []
    for start in range(0, len(files), 50):
        found += unformatted(program, files[start:start + 50])
    for place in found:
        print(f"{place}: not as .clang-format says")
    print(f"{len(files)} files, {len(found)} not formatted")
    return 1 if found or not files else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
