#pragma once

#include <QByteArray>

/// A glTF file of one triangle, with an extension that nobody knows.
inline QByteArray strangeFile()
{
    return R"({"asset": {"version": "2.0"}, "extensionsUsed": ["EXT_strange"], "scene": 0, "scenes": [{"nodes": [0]}],
"nodes": [{"name": "strange", "mesh": 0, "extensions": {"EXT_strange": {"accessor": 0}}}],
"meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
"accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]}],
"bufferViews": [{"buffer": 0, "byteLength": 36}],
"buffers": [{"byteLength": 36, "uri": "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})";
}
