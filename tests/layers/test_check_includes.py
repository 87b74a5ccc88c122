#!/usr/bin/env python3
"""Plants one include against the layers of each kind: every one must be refused, and the tree without them accepted."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import check_includes

# Two branches, math - scene - io and math - scene - view, which meet in ui; io has rooms.
GRAPH = """layer math needs= may=
layer undo needs= may=
layer scene needs=math,undo may=
layer io needs=scene may=
layer view needs=scene may=widgets,gl
layer ui needs=io,view may=widgets
room rycore/io/gltf/file needs=
room rycore/io/gltf/document needs=file
room rycore/io/gltf/open needs=document
room rycore/io/gltf/save needs=document
room rycore/undo/points needs= on_top
room pluginsource/One/operations needs=
room pluginsource/One/tool needs=operations
room pluginsource/One/tool/handles needs=
room pluginsource/One/tool/drags needs=handles
room ryhost/panes needs=
room ryhost/window needs=panes
"""

CLEAN = {
    "rycore/math/RyVec3.h": "#pragma once\n#include <cmath>\n",
    "rycore/scene/RyNode.h": '#include "rycore/math/RyVec3.h"\n#include "rycore/undo/points/RyPoint.h"\n#include "rycore/scene/RyBone.h"\n#include <QObject>\n',
    "rycore/scene/RyBone.h": '// #include "rycore/ui/RyMenu.h"\n/* \n#include "rycore/ui/RyMenu.h"\n*/\n',
    "rycore/scene/RyBone.cpp": '#include "RyBone.moc"\n',
    "rycore/undo/RyStep.h": "#include <memory>\n",
    "rycore/undo/points/RyPoint.h": '#include "rycore/undo/RyStep.h"\n',
    "rycore/io/RyFile.h": '#include "rycore/io/gltf/open/RyReader.h"\n#include "rycore/io/gltf/save/RyWriter.h"\n',
    "rycore/io/gltf/file/RyBytes.h": "#include <vector>\n",
    "rycore/io/gltf/document/RyTree.h": '#include "rycore/io/gltf/file/RyBytes.h"\n',
    "rycore/io/gltf/open/RyReader.h": '#include "rycore/io/gltf/document/RyTree.h"\n#include "rycore/io/gltf/file/RyBytes.h"\n',
    "rycore/io/gltf/save/RyWriter.h": '#include "rycore/io/gltf/document/RyTree.h"\n#include "rycore/io/RyFile.h"\n',
    "rycore/view/RyView.h": '#include "rycore/scene/RyNode.h"\n#include <QWidget>\n#include <GL/gl.h>\n#include <QGLWidget>\n',
    "rycore/ui/RyMenu.h": '#include "rycore/math/RyVec3.h"\n#include "rycore/io/RyFile.h"\n#include <QWidget>\n',
    "ryforeign/RyReader.cpp": '#include "ryforeign/RyTree.h"\n#include "rycore/ui/RyMenu.h"\n',
    "ryhost/main.cpp": '#include "rycore/ui/RyMenu.h"\n#include "ryhost/window/RyWindow.h"\n',
    "ryhost/window/RyWindow.h": '#include "ryhost/panes/RyList.h"\n',
    "ryhost/panes/RyList.h": '#include "rycore/ui/RyMenu.h"\n',
    "pluginsource/One/tool/RyTool.h": '#include "pluginsource/One/operations/align.h"\n#include "rycore/ui/RyMenu.h"\n',
    "pluginsource/One/tool/handles/RyHandle.h": "#include <vector>\n",
    "pluginsource/One/tool/drags/RyDrag.h": '#include "pluginsource/One/operations/align.h"\n#include "pluginsource/One/tool/handles/RyHandle.h"\n',
    "pluginsource/One/tool/RyEditor.h": '#include "pluginsource/One/tool/drags/RyDrag.h"\n',
    "pluginsource/One/operations/align.h": '#include "rycore/scene/RyNode.h"\n',
}

PLANTED = {
    "a layer above": ("rycore/math/RyQuat.h", '#include "rycore/scene/RyNode.h"'),
    "a layer above, with odd blanks": ("rycore/math/RyQuat.h", '  #  include   "rycore/scene/RyNode.h"'),
    "a layer above, in angle brackets": ("rycore/math/RyQuat.h", "#include <rycore/scene/RyNode.h>"),
    "a layer on another branch": ("rycore/view/RyCamera.h", '#include "rycore/io/RyFile.h"'),
    "a layer on another branch, at the ground": ("rycore/math/RyQuat.h", '#include "rycore/undo/RyStep.h"'),
    "a room above": ("rycore/io/gltf/document/RyNode.h", '#include "rycore/io/gltf/open/RyReader.h"'),
    "a room on top": ("rycore/undo/RyStack.cpp", '#include "rycore/undo/points/RyPoint.h"'),
    "a room beside": ("rycore/io/gltf/save/RyPatch.h", '#include "rycore/io/gltf/open/RyReader.h"'),
    "a room above in a plug-in": ("pluginsource/One/operations/snap.h", '#include "pluginsource/One/tool/RyTool.h"'),
    "what stands beside the rooms": ("pluginsource/One/tool/drags/RyTurn.h", '#include "pluginsource/One/tool/RyEditor.h"'),
    "a room above in the application": ("ryhost/panes/RyTable.h", '#include "ryhost/window/RyWindow.h"'),
    "the application from the library": ("rycore/ui/RyPane.cpp", '#include "ryhost/RyWindow.h"'),
    "the plug-in from the library": ("rycore/ui/RyPane.cpp", '#include "pluginsource/One/tool/RyTool.h"'),
    "a widget in a low layer": ("rycore/scene/RyCamera.h", "#include <QWidget>"),
    "a widget by its module": ("rycore/scene/RyCamera.h", "#include <QtWidgets/QLabel>"),
    "OpenGL in a low layer": ("rycore/scene/RyCamera.cpp", "#include <GL/glu.h>"),
    "Qt's OpenGL in a low layer": ("rycore/scene/RyCamera.cpp", "#include <QOpenGLContext>"),
    "OpenGL in a layer of widgets": ("rycore/ui/RyPane.h", "#include <GL/gl.h>"),
    "OpenGL widgets in a layer of widgets": ("rycore/ui/RyPane.h", "#include <QGLWidget>"),
    "a path relative to the file": ("rycore/scene/RyCamera.h", '#include "RyNode.h"'),
    "a path that climbs": ("rycore/scene/RyCamera.h", '#include "../math/RyVec3.h"'),
    "a folder that is no layer": ("rycore/misc/RyThing.h", "#include <cmath>"),
    "the plug-in from the application": ("ryhost/RyWindow.cpp", '#include "pluginsource/One/tool/RyTool.h"'),
    "the foreign reader from the application": ("ryhost/RyWindow.cpp", '#include "ryforeign/RyTree.h"'),
    "the foreign reader from the library": ("rycore/ui/RyPane.cpp", '#include "ryforeign/RyTree.h"'),
    "the application from the foreign reader": ("ryforeign/RyTree.h", '#include "ryhost/RyWindow.h"'),
    "the application from the plug-in": ("pluginsource/One/tool/RyDrag.h", '#include "ryhost/RyWindow.h"'),
    "another plug-in": ("pluginsource/Two/RyOther.h", '#include "pluginsource/One/tool/RyTool.h"'),
    "the tool from an operation": ("pluginsource/One/operations/snap.h", '#include "pluginsource/One/tool/RyTool.h"'),
    "a dialog from an operation": ("pluginsource/One/operations/snap.h", "#include <QWidget>"),
    "the library's widgets from an operation": ("pluginsource/One/operations/snap.h", '#include "rycore/ui/RyMenu.h"'),
}


BROKEN_GRAPHS = {
    "a mistyped need": (GRAPH + "layer app needs=uii may=\n", "app needs uii"),
    "a need of a room that is not there": (GRAPH + "room rycore/io/gltf/clips needs=documents\n", "needs rycore/io/gltf/documents"),
    "a layer without files": (GRAPH + "layer parametric needs=scene may=\n", "rycore/parametric is empty"),
    "a room without files": (GRAPH + "room rycore/io/gltf/clips needs=file\n", "rycore/io/gltf/clips is empty"),
    "a layer twice": (GRAPH + "layer math needs= may=\n", "math is there twice"),
    "a line that is neither": (GRAPH + "layers\n", "no layer and no room: layers"),
}


def check(files, graph=GRAPH):
    with tempfile.TemporaryDirectory() as folder:
        for module, header in (("QtWidgets", "QWidget"), ("QtOpenGL", "QGLWidget")):
            pathlib.Path(folder, module).mkdir()
            pathlib.Path(folder, module, header).touch()
        for name, text in {"graph.txt": graph, **{"src/" + name: text for name, text in files.items()}}.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            code = check_includes.main([f"{folder}/src", "--graph", f"{folder}/graph.txt",
                                        "--widget-headers", f"{folder}/QtWidgets", "--gl-headers", f"{folder}/QtOpenGL"])
        return code, output.getvalue()


def violations(files):
    code, output = check(files)
    lines = output.splitlines()[:-1]
    assert code == (1 if lines else 0), output
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

    def test_a_graph_that_does_not_fit_is_an_error(self):
        for kind, (graph, reason) in BROKEN_GRAPHS.items():
            with self.subTest(kind):
                code, output = check(CLEAN, graph)
                self.assertEqual(code, 2, output)
                self.assertIn(reason, output)


if __name__ == "__main__":
    unittest.main()
