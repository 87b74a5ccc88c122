// Building the selection map of a large figure: 1,000,000 facets, 500,000 vertices with four influences each, 300
// bones; new groups, one for each bone, or 300 groups that there are. The peer takes the plain steps, with linked lists
// and sorted scores. Results are compared before anything is timed. The argument --short takes a small figure, which
// checks the results and judges no time.
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include "RyRoundRobin.h"
#include "selection_groups/RyLiteralMapBuilder.h"
#include "selection_groups/RySelectionState.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

#include <QCoreApplication>

#include <cmath>
#include <cstring>
#include <random>

namespace {

constexpr int Bones = 300;
constexpr int Influences = 4;

bool isShort = false;
bool allGood = true;

/// Two triangles for each cell of a grid whose columns close to a tube, as most surfaces have twice as many triangles
/// as vertices. Bones lie in patches of the grid; a vertex follows those of its patch and of three neighbours.
class Surface
{
public:
    explicit Surface(int vertices) : m_side(int(std::sqrt(double(vertices)))), m_mesh(new RyFacetMesh)
    {
        m_mesh->setPositions(std::vector<RyVec3>(size_t(m_side * (m_side + 1))));
        m_mesh->setFacets(facets());
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(m_mesh));
        auto *skin = new RySkinBinding;
        object->addModifier(skin);
        m_figure->setObject(object);
        bind(skin);
        for (int i = 0; i < Bones; ++i)
            m_mesh->createFaceGroup(QStringLiteral("part %1").arg(i));
        for (int i = 0; i < m_mesh->getNumFacets(); ++i)
            m_groups.push_back(patchOf(i / 2 % m_side, i / 2 / m_side));
        ryScene()->addNode(m_figure);
        reset();
    }
    /// The groups that it had at first, and no map.
    void reset() const
    {
        m_figure->setSelectionMap(nullptr);
        while (m_mesh->getNumFaceGroups() > Bones)
            m_mesh->removeFaceGroup(m_mesh->getFaceGroup(Bones)->getName());
        m_mesh->setGroupsOfFacets(m_groups);
    }
    RyFigure *figure() const { return m_figure; }
    int vertexCount() const { return m_mesh->getNumVertices(); }
    int facetCount() const { return m_mesh->getNumFacets(); }

private:
    static constexpr int PatchesAcross = 15;
    static constexpr int PatchesDown = Bones / PatchesAcross;

    int patchOf(int x, int y) const
    {
        return y * PatchesDown / (m_side + 1) * PatchesAcross + x * PatchesAcross / m_side;
    }
    std::vector<RyFacet> facets() const
    {
        std::vector<RyFacet> facets;
        for (int y = 0; y < m_side; ++y) {
            for (int x = 0; x < m_side; ++x) {
                const int here = y * m_side + x;
                const int next = y * m_side + (x + 1) % m_side;
                facets.push_back({{here, next, here + m_side, -1}, -1});
                facets.push_back({{next, next + m_side, here + m_side, -1}, -1});
            }
        }
        return facets;
    }
    void bind(RySkinBinding *skin) const
    {
        std::vector<std::vector<int>> indices(Bones);
        std::vector<std::vector<quint16>> weights(Bones);
        std::mt19937 random(7);
        for (int v = 0; v < m_mesh->getNumVertices(); ++v) {
            const int patch = patchOf(v % m_side, v / m_side);
            int left = RyWeightMap::FullWeight;
            for (int k = 0; k < Influences; ++k) {
                constexpr int steps[Influences] = {0, 1, PatchesAcross, PatchesAcross + 1};
                const auto bone = size_t((patch + steps[k]) % Bones);
                const int most = left - (Influences - k - 1); // leaves some for the others
                const int share = k + 1 == Influences ? left : 1 + int(random() % unsigned(most));
                indices[bone].push_back(v);
                weights[bone].push_back(quint16(share));
                left -= share;
            }
        }
        RyNode *parent = m_figure;
        for (size_t i = 0; i < Bones; ++i) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("bone%1").arg(i));
            parent->addNodeChild(bone);
            parent = i % 10 == 9 ? m_figure : static_cast<RyNode *>(bone);
            bone->setSelectable(i % 10 != 5); // its weights count for the bone before
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            auto *map = new RyWeightMap;
            map->setAffected(m_mesh->getNumVertices(), std::move(indices[i]), std::move(weights[i]));
            binding->setWeights(map);
            skin->addBoneBinding(binding);
        }
    }

    int m_side;
    RyFigure *m_figure = new RyFigure;
    RyFacetMesh *m_mesh;
    std::vector<int> m_groups; // of each facet
};

void build(const Surface &surface, bool regroup)
{
    RyBindingToSelectionMapBuilder builder;
    builder.setAllowRegrouping(regroup);
    allGood = builder.buildSelectionMap(surface.figure()).isSuccess() && allGood;
}

/// Runs what is timed with so many threads of the thread library.
auto withThreads(int threads)
{
    return [threads](const RyRoundRobin::Work &timed) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, size_t(threads));
        tbb::task_arena arena(threads);
        arena.execute(timed);
    };
}

void buildPlainly(const Surface &surface, bool regroup)
{
    RyLiteralMapBuilder builder;
    builder.allowRegrouping = regroup;
    allGood = builder.build(surface.figure()).isSuccess() && allGood;
}

void checkEqual(const Surface &surface, bool regroup)
{
    surface.reset();
    const RySelectionState before(surface.figure());
    buildPlainly(surface, regroup);
    const RySelectionState wanted(surface.figure());
    for (const int threads : {1, 2, 4}) {
        surface.reset();
        withThreads(threads)([&] { build(surface, regroup); });
        const RySelectionState ours(surface.figure());
        if (ours == wanted && !(ours == before))
            continue;
        std::printf("  WRONG RESULT with %d threads: %s\n", threads, qPrintable(ours.difference(wanted)));
        allGood = false;
    }
}

void tell(const char *what, double ratio, double wanted)
{
    std::printf("  => %-52s %6.2f  (at least %.1f%s)\n", what, ratio, wanted,
                isShort || ratio >= wanted ? "" : ", MISSED");
}

void compare(const Surface &surface, bool regroup)
{
    checkEqual(surface, regroup);
    std::printf("\n%s: %d facets, %d vertices, %d bones\n", regroup ? "New groups" : "Groups that there are",
                surface.facetCount(), surface.vertexCount(), Bones);
    RyRoundRobin ways;
    const auto reset = [&] { surface.reset(); };
    const size_t plain = ways.add("plain steps", [&] { buildPlainly(surface, regroup); });
    ways.before(reset);
    const auto ours = [&] { build(surface, regroup); };
    const size_t one = ways.add("ours, one thread", ours, withThreads(1));
    ways.before(reset);
    const size_t two = ways.add("ours, two threads", ours, withThreads(2));
    ways.before(reset);
    ways.run(isShort ? 1 : 15);
    ways.print();
    tell("times as fast as plain steps, one thread", ways.ratio(plain, one), regroup ? 8.0 : 4.5);
    tell("times as fast as plain steps, two threads", ways.ratio(plain, two), regroup ? 14.0 : 7.0);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    // The library makes room for as many threads as it may have when it is first used.
    tbb::parallel_for(0, 1000, [](int) {});
    const Surface surface(isShort ? 10000 : 500000);
    compare(surface, true);
    compare(surface, false);
    ryDestroyScene();
    return allGood ? 0 : 1;
}
