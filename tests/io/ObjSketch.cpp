#include "ObjSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>

QByteArray ObjSketch::text()
{
    return "# units: m\n"
           "mtllib my materials.mtl\n"
           "mtllib sub/more.mtl\n"
           "v 0 0 0\nv 4 0 0\nv 1 1 0\nv 0 4 0\n"                                               // dented at the third
           "v 0.25 0.1 1\nv 4.3 0 1\nv 4 4.125 1\nv 0 4 1.0625\n"                               // warped
           "v 0 0 -1\nv 2 -1 -1\nv 4 0 -1\nv 5 2 -1\nv 4 4 -1\nv 2 5 -1\nv 0 4 -1\nv -1 2 -1\n" // of eight corners
           "v 7 7 7\n"                                                                          // nothing uses it
           "v 4 0 0\nv 5 -0.5 0\nv 0.1 0.2 0.3\n" // the first where the second is
           "vt 0 0\nvt 1 0\nvt 0.3 0.7\nvt 0.125 0.999\nvt 0 0\n"
           "vn 0 0 1\nvn 0 0.6 0.8\nvn 0 0 -2\n"
           "g body\n"
           "usemtl skin\n"
           "f 1/1/1 2/2/1 3/3/1 4/4/1\n"
           "f 2/2/2 3/3/1 4/4/1 1/5/1\n" // the same, begun elsewhere
           "usemtl cloth\n"
           "f 5/1 6/2 7/3 8\n"
           "f 5/1 8 1 \n"
           "usemtl skin\n"
           "f 9//3 10//3 11/4/3 12 13\n"
           "g hand left\n"
           "usemtl of nowhere\n"
           "f -3 -2 -1\n"
           "usemtl cloth\n"
           "f 9/1 16/2 15/3 14/4 13/1 12/2 11/3 10/4\n"
           "usemtl\n"
           "f 18 19 20 5\n"
           "g body\n"
           "f 1 2 5\n";
}

QByteArray ObjSketch::library()
{
    return "# a library\nnewmtl skin\nKa 1 1 1\nKd 0.8 0.25 0.125\nTr 1\nd 0.75\n"
           "map_Kd -s 1 1 1 -o 0 0 -clamp on textures/the skin.png\r\n"
           "newmtl unused\nKd 0 0 0\nmap_Kd not there.png\n";
}

QByteArray ObjSketch::picture(int hue)
{
    QImage image(4, 3, QImage::Format_RGBA8888);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x)
            image.setPixelColor(x, y, QColor::fromHsv(hue, 80 * y, 60 * x + 15));
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

bool ObjSketch::put(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    QDir(folder.path()).mkpath(QFileInfo(name).path());
    QFile file(folder.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString ObjSketch::write(const QTemporaryDir &folder)
{
    const bool isThere = put(folder, QStringLiteral("sketch.obj"), text()) &&
                         put(folder, QStringLiteral("my materials.mtl"), library()) &&
                         put(folder, QStringLiteral("sub/more.mtl"), "newmtl cloth\nKd 0.5\nmap_Kd cloth.png\n") &&
                         put(folder, QStringLiteral("textures/the skin.png"), picture(20)) &&
                         put(folder, QStringLiteral("sub/cloth.png"), picture(200));
    return isThere ? folder.filePath(QStringLiteral("sketch.obj")) : QString();
}

RyFigure *ObjSketch::convert(RyScene &scene)
{
    RyNode *prop = scene.getTopLevelNodes().front();
    RyFigure *figure = RyFigure::convertPropToFigure(prop, QStringLiteral("root"), false, false);
    RyBone *root = figure->getAllBones().front();
    root->getYRotControl()->setValue(33);
    root->getXTransControl()->setValue(-4);
    figure->getZTransControl()->setValue(11);
    return figure;
}

RyFacetShape *shapeOf(const RyScene &scene)
{
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        if (auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node)))
            return shape;
    }
    return nullptr;
}

int quadCount(const RyFacetMesh &mesh)
{
    return int(std::count_if(mesh.getFacets().begin(), mesh.getFacets().end(),
                             [](const RyFacet &facet) { return !facet.isTriangle(); }));
}

QString plainDump(const RyScene &scene)
{
    return rySceneDump(scene).section(QLatin1Char('\n'), 1);
}
