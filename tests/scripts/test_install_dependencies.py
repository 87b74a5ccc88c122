#!/usr/bin/env python3
"""What the installer does on other machines, told by stand-ins for the package tools that only write down their arguments."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent.parent.parent / "scripts" / "install_dependencies"

DPKG_QUERY = """#!/bin/bash
for missing in $MISSING; do
    if [ "${!#}" = "$missing" ]; then exit 1; fi
done
echo "install ok installed"
"""
APT_GET = """#!/bin/bash
echo "$*" >>"$RECORD"
[ "$1" = update ] && exit "$UPDATE_STATUS"
for missing in $UNAVAILABLE; do
    case " $* " in *" $missing "*) exit 100 ;; esac
done
exit 0
"""
SUDO = "#!/bin/bash\nexec \"$@\"\n"


def install(missing="", unavailable="", update_status=0):
    with tempfile.TemporaryDirectory() as folder:
        for name, text in (("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET), ("sudo", SUDO)):
            path = pathlib.Path(folder, name)
            path.write_text(text)
            path.chmod(0o755)
        record = pathlib.Path(folder, "record")
        record.touch()
        environment = dict(os.environ, PATH=folder + ":" + os.environ["PATH"], MISSING=missing, UNAVAILABLE=unavailable,
                           UPDATE_STATUS=str(update_status), RECORD=str(record))
        done = subprocess.run(["bash", str(SCRIPT)], env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, check=False)
        return done.returncode, record.read_text().splitlines()


class InstallDependenciesTest(unittest.TestCase):
    def test_asks_for_nothing_where_nothing_is_missing(self):
        self.assertEqual(install(), (0, []))

    def test_installs_only_what_is_missing(self):
        code, calls = install(missing="xdotool qtscript5-dev")
        self.assertEqual(code, 0)
        self.assertEqual(len(calls), 2)
        self.assertEqual(calls[1].split()[-2:], ["qtscript5-dev", "xdotool"])

    def test_goes_on_when_the_lists_cannot_be_fetched(self):
        self.assertEqual(install(missing="xdotool", update_status=100)[0], 0)

    def test_fails_without_a_package_that_is_needed(self):
        self.assertNotEqual(install(missing="xdotool", unavailable="xdotool")[0], 0)

    def test_goes_on_without_a_comfort(self):
        self.assertEqual(install(missing="ccache", unavailable="ccache")[0], 0)


if __name__ == "__main__":
    unittest.main()
