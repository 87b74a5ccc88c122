#!/usr/bin/env python3
"""Refuses includes that go against the layers.

    check_includes.py SRC --graph FILE [--widget-headers FOLDER...] [--gl-headers FOLDER...]

The graph has one line for each layer and each room, written by the build:

    layer viewport needs=skin may=widgets,gl
    room rycore/io/gltf/open needs=extras
    room rycore/undo/restore needs= on_top

- A file of src/rycore/LAYER includes "rycore/..." of its own layer and those that it needs, and nothing else of ours.
- A file of a room includes of the rooms beside it only those that it needs, and nothing that stands loose beside them:
  what belongs to no room puts the rooms together. Of a room on top it is the other way round.
- Widgets and OpenGL are included where the layer says so.
- The application includes the host library and itself; a plug-in the host library and itself.
- So does the program that reads foreign formats, which nothing else includes.
- The operations of a plug-in know neither its tool, actions, dialogs and pane, nor widgets.
- Our own files are included by their full path from src.

Prints one line for each violation; ends with 1 when there are any, and with 2 when the graph and the folders differ.
"""

import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.M)
COMMENT = re.compile(r"/\*.*?\*/", re.S)
GL = re.compile(r"^(QtOpenGL)(/|$)|^(GL|EGL|GLES\d*)/|^QOpenGL|^QtGui/QOpenGL|^QtGui/qopengl")
WIDGETS = re.compile(r"^(QtWidgets|QtPrintSupport|QtSvg)(/|$)")
ABOVE_OPERATIONS = ("tool", "ryjeaction", "dialogs", "pane", "plugin")
LINE = re.compile(r"^(layer|room) (\S+) needs=(\S*)(?: may=(\S*))?( on_top)?$")


class GraphError(Exception):
    pass


class Graph:
    """Layers by name and rooms by folder, each with everything that it may use."""

    def __init__(self, text):
        self.layers = {}
        self.rooms = {}
        self.on_top = set()
        self.may = {}
        for line in text.splitlines():
            found = LINE.match(line)
            if not found:
                raise GraphError(f"no layer and no room: {line}")
            kind, name, needs, may, on_top = found.groups()
            needs = [entry for entry in needs.split(",") if entry]
            if kind == "layer":
                self.add(self.layers, name, needs)
                self.may[name] = set((may or "").split(",")) - {""}
            else:
                house = name.rpartition("/")[0]
                self.add(self.rooms, name, [f"{house}/{entry}" for entry in needs])
                if on_top:
                    self.on_top.add(name)

    @staticmethod
    def add(known, name, needs):
        if name in known:
            raise GraphError(f"{name} is there twice")
        reached = {name}
        for below in needs:
            if below not in known:
                raise GraphError(f"{name} needs {below}, which is not there before it")
            reached |= known[below]
        known[name] = reached

    def check_folders(self, source):
        """Every layer and room has sources, and every folder of the library is a layer."""
        for folder in [f"rycore/{layer}" for layer in self.layers] + list(self.rooms):
            if not any((source / folder).rglob("*.h")) and not any((source / folder).rglob("*.cpp")):
                raise GraphError(f"{folder} is empty")

    def may_draw(self, layer):
        return bool(self.may[layer])

    def room_of(self, place):
        """The room of a file or header given as parts of its path; None when it is in none."""
        for length in range(len(place) - 1, 0, -1):
            folder = "/".join(place[:length])
            if folder in self.rooms:
                return folder
        return None


class Checker:
    def __init__(self, source, graph, widget_headers, gl_headers):
        self.source = source
        self.graph = graph
        self.widget_headers = widget_headers
        self.gl_headers = gl_headers
        self.violations = []

    def kind(self, header):
        """What a header of others is for: "gl", "widgets" or nothing of that kind."""
        if GL.search(header) or header in self.gl_headers:
            return "gl"
        return "widgets" if WIDGETS.search(header) or header in self.widget_headers else None

    def check(self, path):
        text = COMMENT.sub(lambda found: "\n" * found.group().count("\n"), path.read_text(encoding="utf-8"))
        place = path.relative_to(self.source).parts
        for found in INCLUDE.finditer(text):
            quoted, header = found.group(1) == '"', found.group(2)
            reason = self.refusal(place, quoted, header)
            if reason:
                line = text.count("\n", 0, found.start()) + 1
                self.violations.append(f"{path}:{line}: {header}: {reason}")

    def refusal(self, place, quoted, header):
        if ".." in header.split("/"):
            return "not by its full path from src"
        ours = header.split("/")
        is_ours = ours[0] in ("rycore", "ryforeign", "ryhost", "pluginsource") and len(ours) > 1
        if quoted and not is_ours and not header.endswith(".moc") and not header.startswith("ui_"):
            return "not by its full path from src"
        if place[0] == "rycore" and len(place) > 2:
            return self.library_refusal(place, ours if is_ours else None, header)
        if is_ours and place[0] == "ryhost" and ours[0] == "pluginsource":
            return "the application knows plug-ins only when they are loaded"
        if is_ours and ours[0] == "ryforeign" and place[0] != "ryforeign":
            return "the program that knows foreign formats is started, never linked"
        if is_ours and place[0] == "ryforeign" and ours[0] not in ("rycore", "ryforeign"):
            return "the program that knows foreign formats knows the host library only"
        if place[0] == "pluginsource":
            return self.plugin_refusal(place, ours if is_ours else None, header)
        if is_ours and place[0] == "ryhost":
            return self.room_refusal(place, ours)
        return None

    def library_refusal(self, place, ours, header):
        layer = place[1]
        if layer not in self.graph.layers:
            return f"{layer} is no layer"
        if ours is None:
            kind = self.kind(header)
            return f"{layer} may not use {kind}" if kind and kind not in self.graph.may[layer] else None
        if ours[0] != "rycore":
            return "the host library knows nothing above it"
        if ours[1] not in self.graph.layers:
            return f"{ours[1]} is no layer"
        if ours[1] not in self.graph.layers[layer]:
            return f"{layer} does not need {ours[1]}"
        return self.room_refusal(place, ours)

    def room_refusal(self, place, ours):
        room, other = self.graph.room_of(place), self.graph.room_of(ours)
        loose = "/".join(ours[:-1])
        if room and room.rpartition("/")[0] == loose and room not in self.graph.on_top:
            return f"{room} does not know what stands beside the rooms"
        if other is None:
            return None
        house, path = other.rpartition("/")[0], "/".join(place)
        if room and room.rpartition("/")[0] == house:
            return None if other in self.graph.rooms[room] else f"{room} does not need {other}"
        if other in self.graph.on_top and path.startswith(house + "/") and not path.startswith(other + "/"):
            return f"{other} lies above what is beside it"
        return None

    def plugin_refusal(self, place, ours, header):
        if ours is not None and ours[0] == "ryhost":
            return "a plug-in knows the host library only"
        if ours is not None and ours[0] == "pluginsource" and ours[1] != place[1]:
            return "a plug-in does not know another one"
        if len(place) > 3 and place[2] == "operations":
            if ours is None:
                return "operations know neither widgets nor OpenGL" if self.kind(header) else None
            if ours[0] == "pluginsource" and ours[2] in ABOVE_OPERATIONS:
                return f"{ours[2]} lies above operations"
            if ours[0] == "rycore" and self.graph.may_draw(ours[1]):
                return "operations know neither widgets nor OpenGL"
        return self.room_refusal(place, ours) if ours is not None else None


def names_in(folders):
    return {entry.name for folder in folders for entry in folder.iterdir()}


def main(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("source", type=pathlib.Path)
    parser.add_argument("--graph", required=True, type=pathlib.Path)
    parser.add_argument("--widget-headers", nargs="*", default=[], type=pathlib.Path)
    parser.add_argument("--gl-headers", nargs="*", default=[], type=pathlib.Path)
    options = parser.parse_args(arguments)
    try:
        graph = Graph(options.graph.read_text(encoding="utf-8"))
        graph.check_folders(options.source)
    except GraphError as error:
        print(f"{options.graph}: {error}")
        return 2
    checker = Checker(options.source, graph, names_in(options.widget_headers), names_in(options.gl_headers))
    files = sorted(path for kind in ("*.h", "*.cpp", "*.inl") for path in options.source.rglob(kind))
    for path in files:
        checker.check(path)
    for violation in checker.violations:
        print(violation)
    print(f"{len(files)} files, {len(checker.violations)} includes against the layers")
    return 1 if checker.violations or not files else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
