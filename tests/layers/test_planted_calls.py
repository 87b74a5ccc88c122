#!/usr/bin/env python3
"""Builds a tree of three layers with the build files of this project and plants what no layer may do.

A call that points up needs no include, only a declaration, and would link silently in one library: the layer's own
library must refuse it, and a call to a layer on another branch as well. A widget in a low layer must not even be found by
the compiler. A graph that does not fit the folders must not even be configured.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

PROJECT = f"""
cmake_minimum_required(VERSION 3.25)
project(Planted LANGUAGES CXX)
include({ROOT}/cmake/CompilerConfig.cmake)
include({ROOT}/cmake/RyLayers.cmake)
find_package(Qt5 REQUIRED COMPONENTS Core)
ry_layer(math LIBS Qt5::Core)
ry_layer(scene NEEDS math)
ry_layer(apart LIBS Qt5::Core)
"""

LOWER = "src/rycore/math/lower.cpp"
APART = "src/rycore/apart/apart.cpp"
UPPER = "src/rycore/scene/upper.cpp"
CLEAN = {
    "CMakeLists.txt": PROJECT,
    LOWER: "int lower()\n{\n    return 1;\n}\n",
    APART: "int apart()\n{\n    return 1;\n}\n",
    UPPER: "int lower();\nint upper()\n{\n    return lower() + 1;\n}\n",
}


class PlantedCallsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.environment = dict(os.environ, CCACHE_DISABLE="1")
        cls.write(CLEAN)
        subprocess.run(["cmake", "-S", cls.folder.name, "-B", cls.folder.name + "/build", "-G", "Ninja"], check=True,
                       stdout=subprocess.DEVNULL, env=cls.environment)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def write(cls, files):
        for name, text in files.items():
            path = pathlib.Path(cls.folder.name, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            if not path.exists() or path.read_text() != text:
                path.write_text(text)

    def build(self, files):
        self.write({**CLEAN, **files})
        done = subprocess.run(["cmake", "--build", self.folder.name + "/build"], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, env=dict(self.environment, LC_ALL="C"), check=False)
        return done.returncode, done.stdout

    def test_clean_tree_builds(self):
        code, output = self.build({})
        self.assertEqual(code, 0, output)

    def test_call_that_points_up_does_not_link(self):
        code, output = self.build({LOWER: "int upper();\nint lower()\n{\n    return upper();\n}\n"})
        self.assertNotEqual(code, 0, output)
        self.assertIn("undefined reference to `upper()'", output)

    def test_call_to_another_branch_does_not_link(self):
        code, output = self.build({UPPER: "int apart();\nint upper()\n{\n    return apart();\n}\n"})
        self.assertNotEqual(code, 0, output)
        self.assertIn("undefined reference to `apart()'", output)

    def test_widget_in_low_layer_does_not_compile(self):
        code, output = self.build({LOWER: "#include <QWidget>\nint lower()\n{\n    return 1;\n}\n"})
        self.assertNotEqual(code, 0, output)
        self.assertIn("QWidget: No such file", output)

    def test_graph_that_does_not_fit_is_not_configured(self):
        for line, reason in (
            ("ry_layer(empty NEEDS math)", "Layer empty has no sources in src/rycore/empty"),
            ("ry_layer(more NEEDS maths)", "Layer more needs maths, which is no layer declared before it"),
            ("ry_layer(math)", "Layer math is declared twice"),
            ("ry_layer(more NEEDS math WIDGET)", "more needs WIDGET"),
            ("ry_layer(more WIDGET)", "Layer more: what is WIDGET?"),
            ("ry_room(rycore/scene/empty)", "Room rycore/scene/empty has no sources"),
            ("ry_room(rycore/scene NEEDS apart)", "Room rycore/scene needs apart, which is no room declared before it"),
        ):
            with self.subTest(line), tempfile.TemporaryDirectory() as folder:
                for name, text in {**CLEAN, "CMakeLists.txt": PROJECT + line, "src/rycore/more/more.cpp": ""}.items():
                    path = pathlib.Path(folder, name)
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text(text)
                done = subprocess.run(["cmake", "-S", folder, "-B", folder + "/build", "-G", "Ninja"], check=False,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=self.environment)
                self.assertNotEqual(done.returncode, 0, done.stdout)
                self.assertIn(reason, " ".join(done.stdout.split()))


if __name__ == "__main__":
    sys.exit(unittest.main())
