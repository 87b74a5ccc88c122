#pragma once

#include <QByteArray>
#include <QString>

class QTemporaryDir;
class RyFacetMesh;
class RyFacetShape;
class RyFigure;
class RyScene;

/// An OBJ file with a library and pictures, as untidy as such files are: polygons of three to eight corners, some of
/// them dented, materials that alternate within a group, corners without texture coordinates, indices from behind, a
/// vertex that nothing uses, two vertices at one place.
struct ObjSketch
{
    /// Writes all of it to the folder; the path of the OBJ file.
    static QString write(const QTemporaryDir &folder);
    static QByteArray text();
    static QByteArray library();
    /// Of a picture of 4 by 3 pixels.
    static QByteArray picture(int hue);
    /// The scene's only prop becomes a figure whose bone is posed.
    static RyFigure *convert(RyScene &scene);
    static bool put(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes);

    static constexpr int Vertices = 20;
    static constexpr int Facets = 16; // of the scene, polygons of more than four corners cut
    static constexpr int Quads = 4;
};

/// Of the first node of the scene that has one.
RyFacetShape *shapeOf(const RyScene &scene);
int quadCount(const RyFacetMesh &mesh);
/// The dump without the unit, which is that of the file.
QString plainDump(const RyScene &scene);
