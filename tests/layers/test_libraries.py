#!/usr/bin/env python3
"""test_libraries.py PROGRAM NAME...: the program links exactly these libraries."""

import re
import subprocess
import sys


def main(program, *expected):
    output = subprocess.run(["readelf", "-dW", program], check=True, stdout=subprocess.PIPE, text=True).stdout
    names = set(re.findall(r"\(NEEDED\).*\[([^.\]]*)", output))
    for name in sorted(names ^ set(expected)):
        print(("not linked: " if name in expected else "also linked: ") + name)
    return 0 if names == set(expected) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
