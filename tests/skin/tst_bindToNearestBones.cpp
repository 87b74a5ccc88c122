#include "SkinFixture.h"

#include "rycore/skin/bindToNearestBones.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

constexpr int RingSize = 8;

/// A tube along X, one ring of radius 2 each centimetre from 0 to 30, and bones that lie in it.
struct Tube
{
    Tube()
    {
        std::vector<RyVec3> positions;
        std::vector<RyFacet> facets;
        for (int ring = 0; ring <= 30; ++ring) {
            for (int k = 0; k < RingSize; ++k) {
                const double angle = 2.0 * M_PI * k / RingSize;
                positions.emplace_back(float(ring), float(2.0 * std::cos(angle)), float(2.0 * std::sin(angle)));
                const int here = ring * RingSize + k;
                const int next = ring * RingSize + (k + 1) % RingSize;
                if (ring > 0)
                    facets.push_back({{here - RingSize, next - RingSize, next, here}, -1});
            }
        }
        fixture.mesh->setPositions(positions);
        fixture.mesh->setFacets(facets);
    }

    void place(int bone, RyNode *parent, float from, float to)
    {
        parent->addNodeChild(fixture.bones[size_t(bone)]);
        fixture.bones[size_t(bone)]->setOrigin({from, 0, 0}, true);
        fixture.bones[size_t(bone)]->setEndPoint({to, 0, 0}, true);
    }

    const RyBoneBinding *binding(int bone) const { return fixture.skin->findBoneBinding(fixture.bones[size_t(bone)]); }
    quint16 weight(int bone, int ring, int k = 0) const
    {
        return binding(bone)->getWeights()->getWeight(ring * RingSize + k);
    }

    int sum(int vertex) const
    {
        int total = 0;
        for (const RyBoneBinding *one : fixture.skin->bindings())
            total += one->getWeights() ? one->getWeights()->getWeight(vertex) : 0;
        return total;
    }

    SkinFixture fixture{3};
};

} // namespace

/// Weights by the bones that vertices lie at.
class BindToNearestBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void chainInATube()
    {
        Tube tube;
        tube.place(0, tube.fixture.skeleton.get(), 0, 10);
        tube.place(1, tube.fixture.bones[0], 10, 20);
        tube.place(2, tube.fixture.bones[1], 20, 30);
        QVERIFY(bindToNearestBones(*tube.fixture.skin));
        for (int v = 0; v < tube.fixture.mesh->getNumVertices(); ++v)
            QCOMPARE(tube.sum(v), 65535);
        for (int bone = 0; bone < 3; ++bone) {
            QVERIFY(tube.weight(bone, 10 * bone + 5) > 64000); // the middle of a bone is its own
            QCOMPARE(tube.weight(bone, 10 * ((bone + 2) % 3) + 5), quint16(0));
        }
        // Around a joint the share goes over from the one to the other, softly and alike all around.
        for (int ring = 6; ring <= 14; ++ring)
            QVERIFY(tube.weight(1, ring) >= tube.weight(1, ring - 1));
        QVERIFY(tube.weight(1, 10) > 20000 && tube.weight(1, 10) < 50000);
        QVERIFY(tube.weight(0, 11) > 5000 && tube.weight(1, 9) > 5000);
        for (int k = 1; k < RingSize; ++k)
            QVERIFY(std::abs(int(tube.weight(1, 9, k)) - int(tube.weight(1, 9))) < 300);
    }

    /// A vertex that lies nearer to a bone whose joint it has not passed stays with the parent.
    void jointsMustBePassed()
    {
        Tube tube;
        tube.place(0, tube.fixture.skeleton.get(), 0, 1); // short, and everything up to 15 lies nearer to the next bone
        tube.place(1, tube.fixture.bones[0], 15, 20);
        tube.place(2, tube.fixture.bones[1], 20, 30);
        QVERIFY(bindToNearestBones(*tube.fixture.skin));
        QVERIFY(tube.weight(0, 8) > 60000);
        QVERIFY(tube.weight(1, 17) > 30000);
    }

    void orderOfTheBindingsDoesNotMatter()
    {
        Tube tube;
        tube.place(2, tube.fixture.skeleton.get(), 0, 10); // the parent's binding comes last
        tube.place(1, tube.fixture.bones[2], 10, 20);
        tube.place(0, tube.fixture.bones[1], 20, 30);
        QVERIFY(bindToNearestBones(*tube.fixture.skin));
        QVERIFY(tube.weight(2, 5) > 64000 && tube.weight(1, 15) > 64000 && tube.weight(0, 25) > 64000);
    }

    void localMapsStayLocal()
    {
        Tube tube;
        tube.place(0, tube.fixture.skeleton.get(), 0, 10);
        tube.place(1, tube.fixture.bones[0], 10, 20);
        tube.place(2, tube.fixture.bones[1], 20, 30);
        RyBoneBinding *first = tube.fixture.skin->findBoneBinding(tube.fixture.bones[0]);
        for (int axis = 0; axis < 3; ++axis)
            first->setLocalWeights(new RyWeightMap, axis);
        QVERIFY(bindToNearestBones(*tube.fixture.skin));
        for (int bone = 0; bone < 3; ++bone) {
            QVERIFY(!tube.binding(bone)->getWeights());
            for (int axis = 0; axis < 3; ++axis) {
                const RyWeightMap *map = tube.binding(bone)->getLocalWeights(axis);
                QVERIFY(map && map->getWeight((10 * bone + 5) * RingSize) > 64000);
            }
        }
    }

    void isOneUndoStep()
    {
        Tube tube;
        tube.place(0, tube.fixture.skeleton.get(), 0, 10);
        tube.place(1, tube.fixture.bones[0], 10, 20);
        tube.place(2, tube.fixture.bones[1], 20, 30);
        tube.fixture.skin->findBoneBinding(tube.fixture.bones[2])
            ->setWeights(ryMapOf(std::vector<quint16>(size_t(tube.fixture.mesh->getNumVertices()), 65535)));
        RyBone *taker = tube.fixture.bones[2];
        taker->setWeightGiver(tube.fixture.bones[1]);
        const QString before = dumpWeights(tube.fixture.skin);
        {
            RyUndoStackHold hold;
            QVERIFY(bindToNearestBones(*tube.fixture.skin));
            hold.accept("Bind");
        }
        const QString after = dumpWeights(tube.fixture.skin);
        QVERIFY(after != before);
        QVERIFY2(taker->getWeightGivers().empty(), "its weights are its own now");
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(dumpWeights(tube.fixture.skin), before);
        QCOMPARE(taker->getWeightGivers(), std::vector<quint64>{tube.fixture.bones[1]->getSerial()});
        ryUndoStack()->redo();
        QCOMPARE(dumpWeights(tube.fixture.skin), after);
        QVERIFY(taker->getWeightGivers().empty());
    }

    void nothingToBind()
    {
        SkinFixture empty(3, 0);
        QVERIFY(!bindToNearestBones(*empty.skin));
        SkinFixture boneless(0, 20);
        QVERIFY(!bindToNearestBones(*boneless.skin));
        SkinFixture cloud(4, 50); // vertices without a facet have no neighbours, yet they lie somewhere
        QVERIFY(bindToNearestBones(*cloud.skin));
        for (int v = 0; v < 50; ++v) {
            int sum = 0;
            for (const RyBoneBinding *binding : cloud.skin->bindings())
                sum += binding->getWeights()->getWeight(v);
            QCOMPARE(sum, 65535);
        }
    }
};

RY_TEST(BindToNearestBonesTest)
#include "tst_bindToNearestBones.moc"
