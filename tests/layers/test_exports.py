#!/usr/bin/env python3
"""test_exports.py LIBRARY: the plug-in defines exactly its two entry points for others, and nothing else."""

import subprocess
import sys

EXPECTED = {"getPluginDefinition", "getSDKVersion"}


def main(library):
    output = subprocess.run(["nm", "-D", "--defined-only", library], check=True, stdout=subprocess.PIPE, text=True).stdout
    names = {line.split()[-1] for line in output.splitlines()}
    for name in sorted(names ^ EXPECTED):
        print(("missing: " if name in EXPECTED else "also exported: ") + name)
    return 0 if names == EXPECTED else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
