#include "BakedCharacter.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyShape.h"
#include "support/RyTest.h"

#include <QDir>

#include <algorithm>
#include <limits>

namespace {

float number(std::mt19937 &random, double low, double high)
{
    return float(std::uniform_real_distribution<double>(low, high)(random));
}

void addFrame(const RyNode &node, std::vector<Eigen::Vector3d> &points)
{
    const auto add = [&](const RyVec3 &p) {
        const double in[3] = {double(p.x), double(p.y), double(p.z)};
        Eigen::Vector3d out;
        node.worldMap().mapPoint(in, out.data());
        points.push_back(out);
    };
    add(node.getOrigin());
    add(node.getEndPoint());
    for (int axis = 0; axis < 3; ++axis) {
        RyVec3 unit;
        unit[axis] = 10.0f;
        add(node.getOrigin() + node.getOrientation().multVec(unit));
        // An axis is a direction: a scale is no part of it any more.
        const Eigen::Vector3d &origin = points[points.size() - 3 - size_t(axis)];
        points.back() = origin + 10.0 * (points.back() - origin).normalized();
    }
}

} // namespace

std::vector<RyFigure *> BakedCharacter::figures() const
{
    std::vector<RyFigure *> list;
    for (RySkeleton *skeleton : scene.getSkeletons()) {
        if (auto *figure = qobject_cast<RyFigure *>(skeleton))
            list.push_back(figure);
    }
    return list;
}

void BakedCharacter::pose(std::mt19937 &random)
{
    for (RyBone *bone : bones()) {
        RyFloatProperty *const turns[3] = {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()};
        for (RyFloatProperty *turn : turns) {
            if (random() % 5 != 0)
                turn->setValue(number(random, -40, 40));
        }
        if (random() % 4 == 0)
            bone->getXTransControl()->setValue(number(random, -0.02, 0.02) * float(height));
        if (random() % 6 == 0)
            bone->getScaleControl()->setValue(number(random, 0.8, 1.2));
    }
    for (const RyNode *node : scene.getNodes()) {
        const RyShape *shape = RyShape::getCurrentShapeForNode(node);
        for (const RyMorph *morph : shape ? shape->getMorphs() : std::vector<RyMorph *>())
            morph->getValueControl()->setValue(number(random, 0, 1));
    }
}

void BakedCharacter::moveFigures()
{
    for (RyFigure *figure : figures()) {
        figure->setOrigin({10, 20, 30}, true);
        figure->getXTransControl()->setValue(7.0f);
        figure->getZTransControl()->setValue(-11.0f);
        figure->getYRotControl()->setValue(35.0f);
        figure->getXRotControl()->setValue(-20.0f);
        figure->getScaleControl()->setValue(1.25f);
    }
}

std::vector<Eigen::Vector3d> BakedCharacter::joints() const
{
    std::vector<Eigen::Vector3d> points;
    for (const RyFigure *figure : figures()) {
        std::vector<RyNode *> nodes;
        figure->getNodeChildren(nodes, true);
        for (const RyNode *node : nodes)
            addFrame(*node, points);
    }
    return points;
}

QStringList BakedCharacter::poses() const
{
    QStringList posed;
    for (const RyFigure *figure : figures()) {
        for (const RyBone *bone : figure->getAllBones()) {
            if (bone->isPosed() || !(bone->getLocalMap() == RyAffine()))
                posed.append(bone->getName());
        }
    }
    return posed;
}

double largestWay(const std::vector<Eigen::Vector3d> &a, const std::vector<Eigen::Vector3d> &b)
{
    double worst = a.size() == b.size() ? 0.0 : std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        worst = std::max(worst, (a[i] - b[i]).norm());
    return worst;
}

QStringList bakeablePaths()
{
    QStringList paths;
    for (const QString &name : characterNames()) {
        if (!ryModel(name).isEmpty())
            paths.append(ryModel(name));
    }
    const QDir samples(QStringLiteral(RY_SOURCE_DIR "/resources/samples"));
    for (const QString &name : samples.entryList({QStringLiteral("*.glb"), QStringLiteral("*.gltf")}))
        paths.append(samples.filePath(name));
    return paths;
}

QStringList bakeablePaths(const std::function<bool(const BakedCharacter &)> &fits)
{
    QStringList paths;
    for (const QString &path : bakeablePaths()) {
        const BakedCharacter character(path);
        if (!character.figures().empty() && fits(character))
            paths.append(path);
    }
    return paths;
}
