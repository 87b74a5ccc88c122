#!/usr/bin/env python3
"""Plants one include against the layers of each kind: every one must be refused, and the tree without them accepted."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import check_includes

CLEAN = {
    "rycore/math/RyVec3.h": "#pragma once\n#include <cmath>\n",
    "rycore/scene/RyNode.h": '#include "rycore/math/RyVec3.h"\n#include "rycore/scene/RyBone.h"\n#include <QObject>\n',
    "rycore/scene/RyBone.h": '// #include "rycore/ui/RyMenu.h"\n/* \n#include "rycore/ui/RyMenu.h"\n*/\n',
    "rycore/scene/RyBone.cpp": '#include "RyBone.moc"\n',
    "rycore/ui/RyMenu.h": '#include "rycore/scene/RyNode.h"\n#include <QWidget>\n#include <GL/gl.h>\n',
    "ryhost/main.cpp": '#include "rycore/ui/RyMenu.h"\n#include "ryhost/RyWindow.h"\n',
    "pluginsource/One/tool/RyTool.h": '#include "pluginsource/One/operations/align.h"\n#include "rycore/ui/RyMenu.h"\n',
    "pluginsource/One/operations/align.h": '#include "rycore/scene/RyNode.h"\n',
}

PLANTED = {
    "a layer above": ("rycore/math/RyQuat.h", '#include "rycore/scene/RyNode.h"'),
    "a layer above, with odd blanks": ("rycore/math/RyQuat.h", '  #  include   "rycore/scene/RyNode.h"'),
    "a layer above, in angle brackets": ("rycore/math/RyQuat.h", "#include <rycore/scene/RyNode.h>"),
    "the application from the library": ("rycore/ui/RyPane.cpp", '#include "ryhost/RyWindow.h"'),
    "the plug-in from the library": ("rycore/ui/RyPane.cpp", '#include "pluginsource/One/tool/RyTool.h"'),
    "a widget in a low layer": ("rycore/scene/RyCamera.h", "#include <QWidget>"),
    "a widget by its module": ("rycore/scene/RyCamera.h", "#include <QtWidgets/QLabel>"),
    "OpenGL in a low layer": ("rycore/scene/RyCamera.cpp", "#include <GL/glu.h>"),
    "Qt's OpenGL in a low layer": ("rycore/scene/RyCamera.cpp", "#include <QOpenGLContext>"),
    "a path relative to the file": ("rycore/scene/RyCamera.h", '#include "RyNode.h"'),
    "a path that climbs": ("rycore/scene/RyCamera.h", '#include "../math/RyVec3.h"'),
    "a folder that is no layer": ("rycore/misc/RyThing.h", "#include <cmath>"),
    "the plug-in from the application": ("ryhost/RyWindow.cpp", '#include "pluginsource/One/tool/RyTool.h"'),
    "the application from the plug-in": ("pluginsource/One/tool/RyDrag.h", '#include "ryhost/RyWindow.h"'),
    "another plug-in": ("pluginsource/Two/RyOther.h", '#include "pluginsource/One/tool/RyTool.h"'),
    "the tool from an operation": ("pluginsource/One/operations/snap.h", '#include "pluginsource/One/tool/RyTool.h"'),
    "a dialog from an operation": ("pluginsource/One/operations/snap.h", "#include <QWidget>"),
    "the library's widgets from an operation": ("pluginsource/One/operations/snap.h", '#include "rycore/ui/RyMenu.h"'),
}


def violations(files):
    with tempfile.TemporaryDirectory() as folder:
        widgets = pathlib.Path(folder, "QtWidgets")
        widgets.mkdir()
        (widgets / "QWidget").touch()
        for name, text in files.items():
            path = pathlib.Path(folder, "src", name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            code = check_includes.main([str(pathlib.Path(folder, "src")), "--layers", "math,scene,ui", "--widgets-from",
                                        "ui", "--widget-headers", str(widgets)])
        lines = output.getvalue().splitlines()[:-1]
        assert code == (1 if lines else 0), output.getvalue()
        return lines


class CheckIncludesTest(unittest.TestCase):
    def test_clean_tree_is_accepted(self):
        self.assertEqual(violations(CLEAN), [])

    def test_every_planted_include_is_refused(self):
        for kind, (name, line) in PLANTED.items():
            with self.subTest(kind):
                found = violations({**CLEAN, name: f"#pragma once\n{line}\n"})
                self.assertEqual(len(found), 1, found)
                self.assertIn(f"{name}:2:", found[0])


if __name__ == "__main__":
    unittest.main()
