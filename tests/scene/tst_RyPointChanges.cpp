#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapePoints.h"
#include "support/RyTest.h"

namespace {

using Range = RyPointChanges::Range;
using Ranges = std::vector<Range>;

/// Moves the vertices that it is told to.
class NudgingModifier : public RyModifier
{
public:
    bool deform(RyShapePoints &points) override
    {
        if (m_positions.size() != points.positions->size()) {
            m_positions = *points.positions;
            m_changes.markAll(int(m_positions.size()));
        }
        points.positions = &m_positions;
        points.changes = &m_changes;
        return true;
    }
    void nudge(int vertex)
    {
        m_positions[size_t(vertex)].x += 1.0f;
        m_changes.begin();
        m_changes.mark(vertex, 1);
    }

private:
    std::vector<RyVec3> m_positions;
    RyPointChanges m_changes;
};

} // namespace

class RyPointChangesTest : public QObject
{
    Q_OBJECT

private slots:
    void groupsOfPoints()
    {
        RyPointChanges changes;
        QVERIFY(changes.since(0).empty());
        changes.markAll(70);
        const quint64 all = changes.revision();
        QVERIFY(changes.since(0) == Ranges({{0, 70}}));
        QVERIFY(changes.since(all).empty());
        changes.begin();
        changes.mark(17, 1);
        const quint64 first = changes.revision();
        QVERIFY(first > all);
        changes.begin();
        changes.mark(40, 10);
        changes.mark(69, 1);
        changes.mark(5, 0);
        // Whole groups of 16, joined where they meet, up to the last point.
        QVERIFY(changes.since(all) == Ranges({{16, 54}}));
        QVERIFY(changes.since(first) == Ranges({{32, 38}}));
        QVERIFY(changes.since(changes.revision()).empty());
        QVERIFY(changes.since(0) == Ranges({{0, 70}}));
        changes.markAll(10);
        QVERIFY(changes.since(first) == Ranges({{0, 10}}));
    }

    void revisionsOfDifferentRowsCompare()
    {
        RyPointChanges a;
        RyPointChanges b;
        a.markAll(3);
        b.markAll(3);
        QVERIFY(b.revision() > a.revision());
        a.begin();
        QVERIFY(a.revision() > b.revision());
    }

    /// Whoever keeps a copy of what an object shows keeps it right by the ranges alone, wherever the points come from.
    void copiesFollowAnObject()
    {
        RyRef<RyObject> object(new RyObject);
        QCOMPARE(object->getDeformedPoints().revision(), quint64(0));
        QVERIFY(!object->getDeformedPoints().positions);
        auto *mesh = new RyFacetMesh;
        std::vector<RyVec3> positions;
        for (int i = 0; i < 100; ++i)
            positions.push_back({float(i), 1, 2});
        mesh->setPositions(positions);
        mesh->setFacets({{{0, 1, 2, -1}}});
        auto *shape = new RyFacetShape(mesh);
        object->addShape(shape);
        auto *nudging = new NudgingModifier;

        std::vector<RyVec3> copy;
        quint64 seen = 0;
        int copied = 0;
        const auto follow = [&] {
            const RyShapePoints points = object->getDeformedPoints();
            copied = 0;
            copy.resize(points.positions->size());
            for (const Range &range : points.changedSince(seen)) {
                for (int i = range.first; i < range.first + range.count; ++i)
                    copy[size_t(i)] = (*points.positions)[size_t(i)];
                copied += range.count;
            }
            const bool grown = points.revision() > seen;
            seen = points.revision();
            return copy == *points.positions && grown == (copied > 0);
        };
        QVERIFY(follow());
        QCOMPARE(copied, 100);
        QVERIFY(follow());
        QCOMPARE(copied, 0);
        mesh->setVertex(3, {7, 7, 7});
        QVERIFY(follow());
        const RyRef<RyModifier> guard(nudging);
        object->addModifier(nudging);
        QVERIFY(follow());
        QCOMPARE(copied, 100);
        nudging->nudge(50);
        QVERIFY(follow());
        QCOMPARE(copied, RyPointChanges::GroupSize);
        // Back to the mesh, whose last change is older than what was copied last, and to the modifier again.
        object->removeModifier(nudging);
        QVERIFY(follow());
        QCOMPARE(copied, 100);
        object->addModifier(nudging);
        QVERIFY(follow());
        QCOMPARE(copied, 100);
        object->removeModifier(nudging);
        QVERIFY(follow());
        auto *other = new RyFacetMesh;
        other->setPositions(positions);
        shape->setFacetMesh(other);
        QVERIFY(follow());
        QCOMPARE(copied, 100);
    }
};

RY_TEST(RyPointChangesTest)
#include "tst_RyPointChanges.moc"
