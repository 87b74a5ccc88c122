#pragma once

#include "RyFilledBoneDialog.h"
#include "tool/RyWindowScene.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"

#include <algorithm>
#include <cmath>

/// A limb of radius 4 and 30 cm on either side of its joint, which lies at (0,0,0): a prop that was converted to a
/// parametric figure, with one child bone made by the dialog. What it looks like is measured on its rings.
struct RyParametricArm : RyWindowScene
{
    static constexpr float Radius = 4.0f;
    static constexpr float Length = 30.0f;
    static constexpr int Rings = 241, Sides = 64;

    /// `along` is the direction from the root to the child.
    explicit RyParametricArm(const RyVec3 &along) : along(along.normalized())
    {
        auto *prop = new RyNode;
        prop->setName("limb");
        prop->setObject(makeTube());
        ryScene()->addNode(prop);
        limb = RyLegacyFigure::convertPropToFigure(prop, "upper", false);
        upper = limb->findBone("upper");
        upper->setRotationOrder(RyRotationOrder(RyRotationOrder::XYZ));
        upper->setOrigin(this->along * -Length, true);
        upper->setEndPoint({}, true);
        alignNode(upper);
        select(upper);
        RyFilledBoneDialog dialog(tool);
        dialog.fill("lower", "Lower");
        dialog.order->setCurrentIndex(dialog.order->findData(int(RyRotationOrder::XYZ)));
        if (dialog.accepts())
            lower = limb->findBone("lower");
    }

    /// Lays the child along the limb, as an artist does with its end point.
    void straighten()
    {
        lower->setEndPoint(along * Length, true);
        alignNode(lower);
    }

    struct Look
    {
        double farthest = 0;       // of the surface from the two bones, in radii
        double nearestOuter = 1e9; // of the line along the outer side: to the joint, in radii
        double farthestOuter = 0;  // of that line where it goes around the joint: from the joint, in radii
        double smallest = 1e9;     // section, as a share of one at rest
        double stretch = 0;        // of edges along the limb, at most
        QByteArray text() const
        {
            return "farthest " + QByteArray::number(farthest) + ", outer line " + QByteArray::number(nearestOuter) +
                   " to " + QByteArray::number(farthestOuter) + ", smallest section " + QByteArray::number(smallest) +
                   ", stretch " + QByteArray::number(stretch);
        }
    };
    Look look() const
    {
        const std::vector<RyVec3> &points = limb->getObject()->getDeformedPositions();
        const RyVec3 bent = (lower->getWSEndPoint() - lower->getWSPos()).normalized();
        const RyVec3 outside = (along * bent.dot(along) - bent).normalized();
        Look look;
        for (int ring = 0; ring < Rings; ++ring) {
            for (int side = 0; side < Sides; ++side) {
                const RyVec3 &point = points[size_t(ring * Sides + side)];
                const RyVec3 atRest = pointOf(ring, side);
                const double away = distance(point, bent) / Radius;
                look.farthest = std::max(look.farthest, away);
                if ((atRest - along * atRest.dot(along)).dot(outside) > 0.999f * Radius) {
                    look.nearestOuter = std::min(look.nearestOuter, double(point.length()) / Radius);
                    if (point.dot(along) >= 0.0f && point.dot(bent) <= 0.0f)
                        look.farthestOuter = std::max(look.farthestOuter, double(point.length()) / Radius);
                }
                if (ring > 0) {
                    const double rest = (atRest - pointOf(ring - 1, side)).length();
                    const double now = (point - points[size_t((ring - 1) * Sides + side)]).length();
                    look.stretch = std::max(look.stretch, now / rest);
                }
            }
            look.smallest = std::min(look.smallest, section(points, ring) / (Radius * Radius * M_PI));
        }
        return look;
    }

    RyVec3 along;
    RyLegacyFigure *limb = nullptr;
    RyBone *upper = nullptr;
    RyBone *lower = nullptr;

private:
    RyVec3 pointOf(int ring, int side) const
    {
        const double angle = 2.0 * M_PI * side / Sides;
        const RyVec3 across(0, float(Radius * std::cos(angle)), float(Radius * std::sin(angle)));
        const RyVec3 point = RyVec3(Length * (2.0f * float(ring) / (Rings - 1) - 1.0f), 0, 0) + across;
        return RyVec3::axis(0).getRotationTo(along).inverse().multVec(point);
    }

    RyObject *makeTube() const
    {
        std::vector<RyVec3> points;
        std::vector<RyFacet> facets;
        for (int ring = 0; ring < Rings; ++ring) {
            for (int side = 0; side < Sides; ++side) {
                points.push_back(pointOf(ring, side));
                if (ring + 1 == Rings)
                    continue;
                const int next = (side + 1) % Sides;
                RyFacet facet;
                const int corners[4] = {ring * Sides + side, ring * Sides + next, (ring + 1) * Sides + next,
                                        (ring + 1) * Sides + side};
                std::copy(corners, corners + 4, facet.vertices);
                facets.push_back(facet);
            }
        }
        auto *mesh = new RyFacetMesh;
        mesh->setPositions(std::move(points));
        mesh->setFacets(std::move(facets));
        auto *shape = new RyFacetShape;
        shape->setFacetMesh(mesh);
        auto *object = new RyObject;
        object->addShape(shape);
        return object;
    }

    /// From the nearer of the two bones.
    double distance(const RyVec3 &point, const RyVec3 &bent) const
    {
        const auto from = [&point](const RyVec3 &direction) {
            return double((point - direction * std::clamp(point.dot(direction), 0.0f, Length)).length());
        };
        return std::min(from(-along), from(bent));
    }

    /// The area that a ring spans.
    static double section(const std::vector<RyVec3> &points, int ring)
    {
        RyVec3 sum;
        for (int side = 0; side < Sides; ++side)
            sum += points[size_t(ring * Sides + side)].cross(points[size_t(ring * Sides + (side + 1) % Sides)]);
        return 0.5 * double(sum.length());
    }
};
