#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapePoints.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "support/RyMapOf.h"
#include "support/RyTest.h"

#include <cmath>
#include <random>

/// A skeleton with bones in a tree, an object with a cloud of vertices, and a skin with one binding per bone, without
/// maps.
struct SkinFixture
{
    explicit SkinFixture(int boneCount = 6, int vertexCount = 300) : random(ryTestSeed())
    {
        skeleton = RyRef<RySkeleton>(new RySkeleton);
        skeleton->setName("figure");
        for (int i = 0; i < boneCount; ++i) {
            auto *bone = new RyBone;
            bone->setName(QString("bone%1").arg(i));
            RyNode *parent = i == 0 ? static_cast<RyNode *>(skeleton.get()) : bones[size_t(random() % unsigned(i))];
            parent->addNodeChild(bone);
            bone->setOrigin({float(number(-30, 30)), float(number(0, 150)), float(number(-20, 20))}, true);
            bone->setEndPoint(bone->getOrigin() + RyVec3(0, 10, 0), true);
            bone->setOrientation(RyQuat(RyVec3(float(number(-1, 1)), 1, float(number(-1, 1))), float(number(-3, 3))),
                                 true);
            bone->setRotationOrder(RyRotationOrder(i % 6));
            bones.push_back(bone);
        }
        mesh = new RyFacetMesh;
        std::vector<RyVec3> positions;
        for (int i = 0; i < vertexCount; ++i)
            positions.push_back({float(number(-50, 50)), float(number(0, 180)), float(number(-30, 30))});
        mesh->setPositions(positions);
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        skin = new RySkinBinding;
        for (RyBone *bone : bones) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            skin->addBoneBinding(binding);
        }
        object->addModifier(skin);
        skeleton->setObject(object);
    }

    double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }

    /// Weights of a few bones per vertex with the sum 65535, one list per bone.
    std::vector<std::vector<quint16>> randomWeights(int influences = 4)
    {
        const size_t vertices = size_t(mesh->getNumVertices());
        std::vector<std::vector<quint16>> weights(bones.size(), std::vector<quint16>(vertices, 0));
        for (size_t v = 0; v < vertices; ++v) {
            int left = 65535;
            const int count = 1 + int(random() % unsigned(influences));
            for (int k = 0; k < count; ++k) {
                const int share = k == count - 1 ? left : int(random() % unsigned(left + 1));
                weights[random() % bones.size()][v] += quint16(share);
                left -= share;
            }
        }
        return weights;
    }

    void pose(RyBone *bone, bool scaled = true)
    {
        bone->getXRotControl()->setValue(float(number(-120, 120)));
        bone->getYRotControl()->setValue(float(number(-120, 120)));
        bone->getZRotControl()->setValue(float(number(-120, 120)));
        bone->getXTransControl()->setValue(float(number(-10, 10)));
        bone->getYTransControl()->setValue(float(number(-10, 10)));
        if (scaled) {
            bone->getScaleControl()->setValue(float(number(0.7, 1.4)));
            bone->getYScaleControl()->setValue(float(number(0.7, 1.4)));
        }
    }
    void poseAll(bool scaled = true)
    {
        for (RyBone *bone : bones)
            pose(bone, scaled);
    }

    /// The mesh as the skin moves it; false where the skin refuses.
    bool deform(std::vector<RyVec3> &out)
    {
        RyShapePoints points;
        points.positions = &mesh->getPositions();
        points.changes = &changes;
        if (mesh->revision() != meshRevision)
            changes.markAll(mesh->getNumVertices());
        meshRevision = mesh->revision();
        const bool works = skin->deform(points);
        out = *points.positions;
        return works;
    }

    std::mt19937 random;
    RyPointChanges changes; // of the mesh
    quint64 meshRevision = 0;
    RyRef<RySkeleton> skeleton;
    std::vector<RyBone *> bones;
    RyFacetMesh *mesh = nullptr;
    RySkinBinding *skin = nullptr;
};

/// All maps of a skin as one text.
inline QString dumpWeights(const RySkinBinding *skin)
{
    QString text;
    for (const RyBoneBinding *binding : skin->bindings()) {
        text += '[' + binding->getName() + ' ' + (binding->getBone() ? binding->getBone()->getName() : QString("-"));
        const RyWeightMap *maps[5] = {binding->getWeights(), binding->getLocalWeights(0), binding->getLocalWeights(1),
                                      binding->getLocalWeights(2), binding->getScaleWeights()};
        for (const RyWeightMap *map : maps) {
            text += map ? " map:" : " none";
            for (int i = 0; map && i < map->getNumAffected(); ++i)
                text += QString("%1=%2,").arg(map->getAffectedIndices()[i]).arg(map->getAffectedWeights()[i]);
            text += map ? '/' + QString::number(map->getNumWeights()) : QString();
        }
        for (int axis = 0; axis < 3; ++axis) {
            const RyBulgeBinding *bulge = binding->getBulgeBinding(axis);
            if (!bulge)
                continue;
            float values[4];
            bulge->getBulgeValues(values[0], values[1], values[2], values[3]);
            text +=
                QString(" bulge%1(%2 %3 %4 %5)").arg(axis).arg(values[0]).arg(values[1]).arg(values[2]).arg(values[3]);
        }
        text += ']';
    }
    return text;
}

/// The distance of a point from one in double precision.
inline double apart(const RyVec3 &a, const double b[3])
{
    return std::sqrt((a.x - b[0]) * (a.x - b[0]) + (a.y - b[1]) * (a.y - b[1]) + (a.z - b[2]) * (a.z - b[2]));
}

/// The largest distance of points of the same index; huge where the counts differ.
inline double apart(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    double most = a.size() == b.size() ? 0.0 : 1e30;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const double p[3] = {b[i].x, b[i].y, b[i].z};
        most = std::max(most, apart(a[i], p));
    }
    return most;
}
