#include "LinkedFile.h"

#include "FigureSketch.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <Eigen/Geometry>

#include <stdexcept>

QString LinkedFile::write(const QString &path)
{
    FigureSketch sketch;
    auto &nodes = sketch.tree["nodes"];
    nodes[1]["rotation"] = {0.5, -0.1, 0.2, 0.8366600265340756};
    nodes[2]["rotation"] = {0.1, 0.3, -0.2, 0.9273618495495704};
    nodes[1]["children"] = {2, 4};
    nodes.push_back({{"name", "steer"}, {"translation", {0.4, 0.3, 0.1}}});
    nodes.push_back({{"name", "thing"}, {"mesh", 1}, {"translation", {1, 0, 0.5}}});
    auto mesh = sketch.tree["meshes"][0];
    mesh["name"] = "thing";
    mesh["primitives"][0]["attributes"].erase("JOINTS_0");
    mesh["primitives"][0]["attributes"].erase("WEIGHTS_0");
    sketch.tree["meshes"].push_back(mesh);
    sketch.tree["scenes"][0]["nodes"].push_back(5);
    // Bind as the nodes stand.
    const Eigen::Affine3d low(Eigen::Quaterniond(0.8366600265340756, 0.5, -0.1, 0.2));
    const Eigen::Affine3d high =
        low * Eigen::Translation3d(0, 1, 0) * Eigen::Quaterniond(0.9273618495495704, 0.1, 0.3, -0.2).normalized();
    const Eigen::Affine3d steer = low * Eigen::Translation3d(0.4, 0.3, 0.1);
    sketch.tree["skins"][0]["joints"] = {1, 2, 4};
    sketch.tree["skins"][0]["inverseBindMatrices"] = sketch.addBinds({low.matrix(), high.matrix(), steer.matrix()});
    return sketch.write(path);
}

RyFloatProperty *LinkedFile::value(const char *node, const char *name) const
{
    const RyNode *found = character.scene.findNode(QLatin1String(node));
    QString error = QStringLiteral("no node");
    RyFloatProperty *property = found ? RyNodeLookup::findValue(*found, QLatin1String(name), false, &error) : nullptr;
    if (!property)
        throw std::runtime_error(error.toStdString());
    return property;
}

void LinkedFile::link(RyFloatProperty *controller, RyFloatProperty *controlled)
{
    if (!RyERCLink::create(controller, controlled))
        throw std::runtime_error("no link");
}

void LinkedFile::poseAndLink()
{
    const char *const top = "root"; // the figure is called as the node above its joints
    value("low", "yrot")->setValue(20);
    value("low", "xtran")->setValue(3);
    value("high", "xrot")->setValue(-15);
    value("high", "xrot")->setMin(-40);
    value("high", "xrot")->setMax(5);
    value("high", "xrot")->setIsClamped(true);
    value("high", "zscale")->setValue(1.5f);
    value("steer", "xrot")->setDefaultValue(10);
    value("steer", "xrot")->setValue(34.5f);
    value("steer", "ytran")->setValue(-7.25f);
    value("steer", "yscale")->setDefaultValue(0.8f);
    value("thing", "zrot")->setValue(50);
    value("thing", "xtran")->setValue(-12);
    value(top, "yrot")->setValue(30);
    value(top, "ztran")->setValue(25);
    value(top, "scale")->setValue(1.25f);

    link(value("thing", "zrot"), value("high", "xrot"));
    link(value("steer", "xrot"), value("high", "xrot"));
    link(value("high", "xrot"), value("low", "zrot"));
    link(value("steer", "yscale"), value("high", "zscale"));
    link(value(top, "ztran"), value("thing", "xtran"));
    link(value("low", "zrot"), value("thing", "yrot"));
    link(value("steer", "ytran"), value(top, "xtran"));
    link(value("steer", "ytran"), value("high", "endY"));
    link(value("steer", "xrot"), value("steer", "zrot"));
}

QStringList LinkedFile::save(const QString &path)
{
    QString error;
    QStringList messages;
    if (!RySceneFile::save(&scene(), path, &error, &messages))
        throw std::runtime_error(error.toStdString());
    return messages;
}

double LinkedFile::distanceTo(const QString &path) const
{
    const CharacterScene::Positions shown = character.shown();
    CharacterScene::Positions there = positionsOf(GltfEvaluator(path.toStdString()), character.unit());
    // What is gone from the scene keeps its place in the file's lists.
    std::erase_if(there, [&shown](const auto &part) { return !shown.count(part.first); });
    return largestDistance(shown, there);
}
