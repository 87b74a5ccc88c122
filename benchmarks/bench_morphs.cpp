// One morph of fifty moves on a posed figure: current positions alone, and all that is drawn of it (positions and
// normals after the skin), for a morph that moves 1 %, 10 % and all of the vertices, beside a plain way that works out
// everything from the base. Results are compared before anything is timed. The argument --short takes a small mesh and
// one turn.
#include "RyBenchmark.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int Morphs = 50;
constexpr int Bones = 60;

std::vector<RyVec3> sheetOf(int side)
{
    std::vector<RyVec3> positions;
    for (int v = 0; v < side * side; ++v) {
        const float x = float(v % side);
        const float y = float(v / side);
        positions.push_back({0.4f * x, 0.4f * y, 3.0f * std::sin(0.05f * x) * std::cos(0.03f * y)});
    }
    return positions;
}

/// A sheet that is posed by bones in stripes; two of them move a vertex.
struct Figure
{
    explicit Figure(int side) : skeleton(new RySkeleton), mesh(new RyFacetMesh), shape(new RyFacetShape(mesh))
    {
        std::vector<RyFacet> facets;
        for (int v = 0; v + side < side * side; ++v) {
            if (v % side + 1 < side)
                facets.push_back({{v, v + 1, v + 1 + side, v + side}});
        }
        mesh->setPositions(sheetOf(side));
        mesh->setFacets(facets);
        auto *object = new RyObject;
        object->addShape(shape);
        auto *skin = new RySkinBinding;
        const int count = side * side;
        for (int b = 0; b < Bones; ++b) {
            auto *bone = new RyBone;
            bone->setOrigin({0, 0.4f * float(side * b / Bones), 0}, true);
            skeleton->addNodeChild(bone);
            bone->getXRotControl()->setValue(0.3f * float(b % 7));
            std::vector<int> vertices;
            for (int v = 0; v < count; ++v) {
                const int stripe = v / side * Bones / side;
                if (stripe == b || std::min(stripe + 1, Bones - 1) == b)
                    vertices.push_back(v);
            }
            auto *map = new RyWeightMap;
            std::vector<quint16> weights(vertices.size(), quint16(RyWeightMap::FullWeight / 2));
            map->setAffected(count, std::move(vertices), std::move(weights));
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            binding->setWeights(map);
            skin->addBoneBinding(binding);
        }
        object->addModifier(skin);
        skeleton->setObject(object);
    }
    RyShapePoints points() const { return skeleton->getObject()->getDeformedPoints(); }

    RyRef<RySkeleton> skeleton;
    RyFacetMesh *mesh;
    RyFacetShape *shape;
};

/// The vertices lie in a row, as those of a face do.
RyMorph *addMorph(Figure &figure, int number, double share)
{
    const int count = figure.mesh->getNumVertices();
    const int moved = std::max(1, int(share * count));
    const int first = (number * 7919) % std::max(1, count - moved + 1);
    std::vector<int> vertices;
    std::vector<RyVec3> deltas;
    for (int i = 0; i < moved; ++i) {
        vertices.push_back(first + i);
        deltas.push_back({0.1f * float(i % 13), 0.2f, -0.1f * float(number % 5)});
    }
    auto *morph = new RyMorph(QStringLiteral("morph %1").arg(number), std::move(vertices), std::move(deltas));
    figure.shape->addMorph(morph);
    return morph;
}

std::vector<RyVec3> plainPositions(const Figure &figure)
{
    const std::vector<RyVec3> &base = figure.mesh->getPositions();
    std::vector<double> sums;
    sums.reserve(3 * base.size());
    for (const RyVec3 &p : base)
        sums.insert(sums.end(), {double(p.x), double(p.y), double(p.z)});
    for (const RyMorph *morph : figure.shape->getMorphs()) {
        const double value = double(morph->shownValue());
        if (value == 0.0)
            continue;
        for (size_t i = 0; i < morph->vertices().size(); ++i) {
            for (int axis = 0; axis < 3; ++axis)
                sums[3 * size_t(morph->vertices()[i]) + size_t(axis)] += value * double(morph->deltas()[i][axis]);
        }
    }
    std::vector<RyVec3> positions;
    positions.reserve(base.size());
    for (size_t v = 0; v < base.size(); ++v)
        positions.push_back({float(sums[3 * v]), float(sums[3 * v + 1]), float(sums[3 * v + 2])});
    return positions;
}

bool isSame(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(RyVec3)) == 0;
}

} // namespace

int main(int argc, char **argv)
{
    const bool isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    const int side = isShort ? 60 : 463;
    const int turns = isShort ? 1 : 15;
    bool allGood = true;
    std::printf("%d vertices, %d morphs of which one moves, %d bones\n", side * side, Morphs, Bones);
    for (const double share : {0.01, 0.1, 1.0}) {
        Figure figure(side);
        Figure plain(side); // without morphs: its mesh is moved
        for (int i = 0; i + 1 < Morphs; ++i)
            addMorph(figure, i, 0.02)->getValueControl()->setValue(i % 2 ? 0.5f : 0.0f);
        RyMorph *moving = addMorph(figure, Morphs - 1, share);
        float value = 0.0f;
        const auto move = [&] { moving->getValueControl()->setValue(value = value < 0.5f ? 0.75f : 0.25f); };
        const auto showPlainly = [&] {
            plain.mesh->setPositions(plainPositions(figure));
            plain.points();
        };
        figure.points();
        move();
        showPlainly();
        if (!isSame(figure.shape->getCurrentPositions(), plainPositions(figure)) ||
            !isSame(*figure.points().positions, *plain.points().positions) ||
            !isSame(*figure.points().normals, *plain.points().normals)) {
            std::printf("WRONG RESULT\n");
            allGood = false;
        }
        std::printf("\nthe one that moves: %.0f %% of the vertices\n", 100.0 * share);
        RyBenchmark::compare(
            "  current positions", turns,
            [&] {
                move();
                figure.shape->getCurrentPositions();
            },
            "plain", [&] { plainPositions(figure); });
        RyBenchmark::compare(
            "  all that is drawn", turns,
            [&] {
                move();
                figure.points();
            },
            "plain", showPlainly);
    }
    return allGood ? 0 : 1;
}
