#!/usr/bin/env python3
"""Refuses includes that go against the layers.

    check_includes.py SRC --layers math,undo,... --widgets-from viewport [--widget-headers FOLDER...]

- A file of src/rycore/LAYER includes "rycore/..." of its own layer or one before it, and nothing else of ours.
- Below the layer of --widgets-from nothing includes widgets or OpenGL.
- The application includes the host library and itself; a plug-in the host library and itself.
- The operations of a plug-in know neither its tool, actions, dialogs and pane, nor widgets.
- Our own files are included by their full path from src.

Prints one line for each violation; ends with 1 when there are any.
"""

import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.M)
COMMENT = re.compile(r"/\*.*?\*/", re.S)
DRAWING = re.compile(r"^(QtWidgets|QtOpenGL|QtPrintSupport|QtSvg)(/|$)|^(GL|EGL|GLES\d*)/|^QOpenGL|^QtGui/QOpenGL|^QtGui/qopengl")
ABOVE_OPERATIONS = ("tool", "ryjeaction", "dialogs", "pane", "plugin")


class Checker:
    def __init__(self, source, layers, widgets_from, widget_headers):
        self.source = source
        self.layers = layers
        self.first_with_widgets = layers.index(widgets_from)
        self.widget_headers = widget_headers
        self.violations = []

    def is_drawing(self, header):
        return bool(DRAWING.search(header)) or header in self.widget_headers

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
        is_ours = ours[0] in ("rycore", "ryhost", "pluginsource") and len(ours) > 1
        if quoted and not is_ours and not header.endswith(".moc") and not header.startswith("ui_"):
            return "not by its full path from src"
        if place[0] == "rycore" and len(place) > 2:
            return self.library_refusal(place[1], ours if is_ours else None, header)
        if is_ours and place[0] == "ryhost" and ours[0] == "pluginsource":
            return "the application knows plug-ins only when they are loaded"
        if place[0] == "pluginsource":
            return self.plugin_refusal(place, ours if is_ours else None, header)
        return None

    def library_refusal(self, layer, ours, header):
        if layer not in self.layers:
            return f"{layer} is no layer"
        level = self.layers.index(layer)
        if ours is None:
            if level < self.first_with_widgets and self.is_drawing(header):
                return f"{layer} knows neither widgets nor OpenGL"
            return None
        if ours[0] != "rycore":
            return "the host library knows nothing above it"
        if ours[1] not in self.layers:
            return f"{ours[1]} is no layer"
        if self.layers.index(ours[1]) > level:
            return f"{ours[1]} lies above {layer}"
        return None

    def plugin_refusal(self, place, ours, header):
        if ours is not None and ours[0] == "ryhost":
            return "a plug-in knows the host library only"
        if ours is not None and ours[0] == "pluginsource" and ours[1] != place[1]:
            return "a plug-in does not know another one"
        if len(place) > 3 and place[2] == "operations":
            if ours is None:
                return "operations know neither widgets nor OpenGL" if self.is_drawing(header) else None
            if ours[0] == "pluginsource" and ours[2] in ABOVE_OPERATIONS:
                return f"{ours[2]} lies above operations"
            if ours[0] == "rycore" and self.layers.index(ours[1]) >= self.first_with_widgets:
                return "operations know neither widgets nor OpenGL"
        return None


def main(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("source", type=pathlib.Path)
    parser.add_argument("--layers", required=True)
    parser.add_argument("--widgets-from", required=True)
    parser.add_argument("--widget-headers", nargs="*", default=[], type=pathlib.Path)
    options = parser.parse_args(arguments)
    headers = {entry.name for folder in options.widget_headers for entry in folder.iterdir()}
    checker = Checker(options.source, options.layers.split(","), options.widgets_from, headers)
    files = sorted(path for kind in ("*.h", "*.cpp", "*.inl") for path in options.source.rglob(kind))
    for path in files:
        checker.check(path)
    for violation in checker.violations:
        print(violation)
    print(f"{len(files)} files, {len(checker.violations)} includes against the layers")
    return 1 if checker.violations or not files else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
