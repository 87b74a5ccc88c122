#pragma once

#include "rycore/scene/RyMorph.h"
#include "skin/SkinFixture.h"

#include <array>

/// A random figure with facets, sharp edges, a morph and bulges of several bones and axes, all of it posed; and what
/// the formula of bulges makes of its vertices, in double precision.
struct BulgedFigure : SkinFixture
{
    using Point = std::array<double, 3>;

    explicit BulgedFigure(int boneCount = 6, int vertexCount = 300) : SkinFixture(boneCount, vertexCount)
    {
        for (RyBone *bone : bones) {
            const RyVec3 along(float(number(-12, 12)), float(number(5, 20)), float(number(-12, 12)));
            bone->setEndPoint(bone->getOrigin() + along, true);
            bone->setOrigin(bone->getOrigin() + RyVec3(float(number(-2, 2)), 1, 0)); // other than the default
        }
        bones.back()->setInheritScale(false);
        const auto weights = randomWeights();
        for (size_t i = 0; i < bones.size(); ++i)
            skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
        addFacets();
        std::vector<int> moved;
        std::vector<RyVec3> deltas;
        for (int vertex = 3; vertex < vertexCount; vertex += 4) {
            moved.push_back(vertex);
            deltas.push_back({float(number(-5, 5)), float(number(-5, 5)), 2});
        }
        morph = new RyMorph("bent", moved, deltas);
        shape()->addMorph(morph);
        skeleton->getYRotControl()->setValue(35);
        skeleton->getXScaleControl()->setValue(1.3f);
        skeleton->getZTransControl()->setValue(-40);
    }

    RyFacetShape *shape() const { return qobject_cast<RyFacetShape *>(skeleton->getObject()->getCurrentShape()); }

    /// A bulge with random values, other than their defaults, and maps of some vertices; now and then with one map.
    RyBulgeBinding *addBulge(size_t bone, int axis)
    {
        auto *bulge = new RyBulgeBinding(axis);
        const unsigned sides = 1 + unsigned(random() % 6u);
        if (sides != 1)
            bulge->setLeftWeights(someWeights());
        if (sides != 2)
            bulge->setRightWeights(someWeights());
        setValues(bulge);
        bulge->getNegLeftBulgeController()->setDefaultValue(0.7f);
        skin->bindings()[bone]->setBulgeBinding(axis, bulge);
        return bulge;
    }
    void setValues(RyBulgeBinding *bulge)
    {
        const auto value = [this] { return float(number(0.3, 1) * (random() % 2u == 0 ? 1 : -1)); };
        bulge->adjustBulgeValues(value(), value(), value(), value());
    }
    /// Poses all bones; those that bulge turn far enough for it to show.
    void poseAndBulge()
    {
        poseAll();
        for (const RyBoneBinding *binding : skin->bindings()) {
            for (int axis = 0; axis < 3; ++axis) {
                RyFloatProperty *control = turn(binding->getBone(), axis);
                if (binding->getBulgeBinding(axis) && std::fabs(control->getValue()) < 30)
                    control->setValue(control->getValue() < 0 ? -50.0f : 50.0f);
            }
        }
    }
    /// Of half of the vertices in an eighth of all.
    RyWeightMap *someWeights()
    {
        std::vector<quint16> weights(size_t(mesh->getNumVertices()), 0);
        const size_t first = random() % (weights.size() - weights.size() / 8);
        for (size_t vertex = first; vertex < first + weights.size() / 8; ++vertex)
            weights[vertex] = random() % 2u == 0 ? quint16(20000 + random() % 45000u) : quint16(0);
        return ryMapOf(weights);
    }

    /// Where the bulges push a vertex, before anything else moves it.
    Point pushed(int vertex) const
    {
        const RyVec3 &rest = shape()->getCurrentPositions()[size_t(vertex)];
        Point sum{rest.x, rest.y, rest.z};
        for (const RyBoneBinding *binding : skin->bindings()) {
            const RyBone *bone = binding->getBone();
            const Point origin{bone->getOrigin().x, bone->getOrigin().y, bone->getOrigin().z};
            const RyVec3 end = bone->getEndPoint();
            const Point line{end.x - origin[0], end.y - origin[1], end.z - origin[2]};
            // At right angles to the line and to what is at right angles to line and vertex.
            Point u = cross(cross(line, {rest.x - origin[0], rest.y - origin[1], rest.z - origin[2]}), line);
            const double length = sizeOf(u);
            for (int axis = 0; axis < 3; ++axis) {
                const RyBulgeBinding *bulge = binding->getBulgeBinding(axis);
                if (!bulge)
                    continue;
                const double t = turn(bone, axis)->getValue();
                const double values[2] = {
                    (t > 0 ? bulge->getPosLeftBulgeController() : bulge->getNegLeftBulgeController())->getValue(),
                    (t > 0 ? bulge->getPosRightBulgeController() : bulge->getNegRightBulgeController())->getValue()};
                const RyWeightMap *maps[2] = {bulge->getLeftWeights(), bulge->getRightWeights()};
                for (int side = 0; side < 2; ++side) {
                    const double weight = maps[side] ? maps[side]->getWeight(vertex) / 65535.0 : 0.0;
                    for (size_t k = 0; k < 3; ++k)
                        sum[k] += u[k] / length * sizeOf(line) * std::fabs(t) / 90.0 * values[side] * weight;
                }
            }
        }
        return sum;
    }
    /// Where the figure shows it, by the general maps.
    Point shown(int vertex) const
    {
        const Point from = pushed(vertex);
        Point image = from;
        for (const RyBoneBinding *binding : skin->bindings()) {
            const RyAffine &map = binding->getBone()->figureMap();
            const double weight = binding->getWeights()->getWeight(vertex) / 65535.0;
            for (size_t j = 0; j < 3; ++j) {
                const double moved =
                    from[0] * map.m[0][j] + from[1] * map.m[1][j] + from[2] * map.m[2][j] + map.m[3][j];
                image[j] += weight * (moved - from[j]);
            }
        }
        return image;
    }
    /// The largest distance of what the figure shows from the formula.
    double error() const
    {
        const std::vector<RyVec3> &positions = skeleton->getObject()->getDeformedPositions();
        double most = 0.0;
        for (int vertex = 0; vertex < mesh->getNumVertices(); ++vertex)
            most = std::max(most, apart(positions[size_t(vertex)], shown(vertex).data()));
        return most;
    }

    static RyFloatProperty *turn(const RyBone *bone, int axis)
    {
        return axis == 0 ? bone->getXRotControl() : axis == 1 ? bone->getYRotControl() : bone->getZRotControl();
    }
    static Point cross(const Point &a, const Point &b)
    {
        return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    }
    static double sizeOf(const Point &a) { return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]); }

    RyMorph *morph = nullptr;

private:
    /// Triangles of vertices with near numbers; the corners of every third one have normals of their own.
    void addFacets()
    {
        const auto count = unsigned(mesh->getNumVertices());
        std::vector<RyFacet> facets;
        RyMeshPart part;
        int normals = int(count);
        for (unsigned vertex = 0; vertex < count; ++vertex) {
            const int corners[3] = {int(vertex), int((vertex + 1 + random() % 4) % count), int((vertex + 7) % count)};
            facets.push_back({{corners[0], corners[1], corners[2], -1}, -1});
            for (const int corner : corners) {
                part.triangles.push_back(unsigned(part.vertexOfSplit.size()));
                part.vertexOfSplit.push_back(corner);
                part.normalOfSplit.push_back(vertex % 3 == 0 ? normals++ : corner);
            }
        }
        part.facetCount = int(facets.size());
        mesh->setFacets(facets);
        auto parts = std::make_shared<RyMeshParts>();
        parts->parts = {part};
        parts->normalCount = normals;
        shape()->setParts(parts);
    }
};
