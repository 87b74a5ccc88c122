#pragma once

#include "tool/RyWindowScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyQuat.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RySkinBinding.h"

#include <array>

inline std::array<RyFloatProperty *, 9> riggingOf(const RyNode *node)
{
    return {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
            node->getEndXControl(),    node->getEndYControl(),    node->getEndZControl(),
            node->getOrientXControl(), node->getOrientYControl(), node->getOrientZControl()};
}

/// Current values, then defaults.
inline std::vector<float> valuesOf(const RyNode *node)
{
    std::vector<float> values;
    for (const RyFloatProperty *control : riggingOf(node))
        values.push_back(control->getValue());
    for (const RyFloatProperty *control : riggingOf(node))
        values.push_back(control->getDefaultValue());
    return values;
}

/// How far two nodes are from being each other's reflection along an axis, by points and by the three bone axes (the
/// latter as on a bone of that length): default or current.
inline double reflectionError(const RyNode *a, const RyNode *b, int axis, bool byDefault, double length)
{
    const auto across = [axis](RyVec3 v) {
        v[axis] = -v[axis];
        return v;
    };
    double error = (across(a->getOrigin(byDefault)) - b->getOrigin(byDefault)).length();
    error = std::max(error, double((across(a->getEndPoint(byDefault)) - b->getEndPoint(byDefault)).length()));
    for (int k = 0; k < 3; ++k) {
        const RyVec3 one = across(a->getOrientation(byDefault).multVec(RyVec3::axis(k)));
        const RyVec3 other = b->getOrientation(byDefault).multVec(across(RyVec3::axis(k)));
        error = std::max(error, length * double((one - other).length()));
    }
    return error;
}

/// A posed, turned and scaled figure whose two sides have little in common, with current values that are no defaults.
///
///     figure - hip - lThigh - lShin - lFoot        (hip and jaw have no opposite)
///                  - rThigh - rightShin - rFoot
///                  - lowerJaw
struct RySidedScene : RyWindowScene
{
    RySidedScene()
    {
        rShin = makeBone(rThigh, "rightShin", {-12, 51, 3}, {-9, 9, 0});
        rFoot = makeBone(rShin, "rFoot", {-9, 9, 0}, {-9, 1, 10});
        jaw = makeBone(hip, "lowerJaw", {1, 120, 5}, {1, 118, 12});
        pose();
        figure->getScaleControl()->setValue(1.25f);
        rThigh->getXRotControl()->setValue(12.0f);
        float turn = 3.0f;
        for (RyNode *node : bones()) {
            node->setOrientation(RyQuat({1, turn, -2}, 0.2f * turn), true);
            node->setOrigin(node->getOrigin() + RyVec3(0.5f, turn, -1));
            node->setEndPoint(node->getEndPoint() + RyVec3(1, -0.25f, turn));
            node->setOrientation(RyQuat({turn, 1, 2}, -0.1f * turn));
            turn += 1.5f;
        }
        lThigh->setRotationOrder(RyRotationOrder(RyRotationOrder::YZX));
        rShin->setRotationOrder(RyRotationOrder(RyRotationOrder::ZXY));
    }

    std::vector<RyNode *> bones() const { return {hip, lThigh, lShin, lFoot, rThigh, rShin, rFoot, jaw}; }

    /// Names of the bones whose rigging is another than those values say.
    QString changedSince(const QMap<QString, std::vector<float>> &before) const
    {
        QStringList names;
        for (const RyNode *node : bones()) {
            if (before[node->getName()] != valuesOf(node))
                names << node->getName();
        }
        return names.join(' ');
    }
    QMap<QString, std::vector<float>> values() const
    {
        QMap<QString, std::vector<float>> values;
        for (const RyNode *node : bones())
            values[node->getName()] = valuesOf(node);
        return values;
    }

    /// Binds the bones to a few vertices, with three bulges each whose values are all different.
    void addSkin(const std::vector<RyNode *> &bound)
    {
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {1, 2, 3}});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        skin = new RySkinBinding;
        object->addModifier(skin);
        figure->setObject(object);
        float value = 0.0f;
        for (RyNode *node : bound) {
            auto *binding = new RyBoneBinding;
            binding->setBone(qobject_cast<RyBone *>(node));
            for (int axis = 0; axis < 3; ++axis) {
                auto *bulge = new RyBulgeBinding(axis);
                for (RyFloatProperty *control : controlsOf(bulge)) {
                    control->setDefaultValue(++value);
                    control->setValue(++value);
                }
                binding->setBulgeBinding(axis, bulge);
            }
            skin->addBoneBinding(binding);
        }
    }
    /// Positive left, negative left, positive right, negative right.
    static std::array<RyFloatProperty *, 4> controlsOf(const RyBulgeBinding *bulge)
    {
        return {bulge->getPosLeftBulgeController(), bulge->getNegLeftBulgeController(),
                bulge->getPosRightBulgeController(), bulge->getNegRightBulgeController()};
    }

    RyBone *rShin;
    RyBone *rFoot;
    RyBone *jaw;
    RySkinBinding *skin = nullptr;
};
