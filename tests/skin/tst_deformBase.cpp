#include "SkinFixture.h"

/// Where a skin brings positions that are not its mesh's, and how each vertex is turned and scaled there.
class DeformBaseTest : public QObject
{
    Q_OBJECT

private slots:
    void isWhatIsDrawn_data()
    {
        QTest::addColumn<bool>("local");
        QTest::newRow("general maps") << false;
        QTest::newRow("local maps") << true;
    }
    void isWhatIsDrawn()
    {
        QFETCH(bool, local);
        SkinFixture fixture;
        bind(fixture, local);
        fixture.poseAll();
        std::vector<RyVec3> drawn, deformed;
        QVERIFY(fixture.deform(drawn));
        QVERIFY(fixture.skin->deformBase(fixture.mesh->getPositions(), deformed));
        QVERIFY(deformed == drawn);
        QVERIFY(fixture.deform(deformed));
        QVERIFY(deformed == drawn);
    }

    void linearPartTakesWhatLiesApart_data() { isWhatIsDrawn_data(); }
    void linearPartTakesWhatLiesApart()
    {
        QFETCH(bool, local);
        SkinFixture fixture;
        bind(fixture, local);
        fixture.poseAll();
        std::vector<RyVec3> ways, moved = fixture.mesh->getPositions();
        for (RyVec3 &position : moved) {
            ways.push_back({float(fixture.number(-9, 9)), float(fixture.number(-9, 9)), float(fixture.number(-9, 9))});
            position += ways.back();
        }
        std::vector<RyVec3> from, to;
        std::vector<RyMatrix3> linear;
        QVERIFY(fixture.skin->deformBase(fixture.mesh->getPositions(), from, &linear));
        QVERIFY(fixture.skin->deformBase(moved, to));
        QCOMPARE(linear.size(), from.size());
        for (size_t v = 0; v < from.size(); ++v)
            QVERIFY((from[v] + linear[v].multVec(ways[v]) - to[v]).length() < 2e-3f);
    }

    void refusesOtherCounts()
    {
        SkinFixture fixture;
        bind(fixture, false);
        fixture.poseAll();
        std::vector<RyVec3> deformed{{1, 2, 3}};
        std::vector<RyMatrix3> linear;
        QVERIFY(!fixture.skin->deformBase(std::vector<RyVec3>(7), deformed, &linear));
        QVERIFY(deformed == std::vector<RyVec3>({{1, 2, 3}}));
        QVERIFY(linear.empty());
    }

private:
    static void bind(SkinFixture &fixture, bool local)
    {
        for (int kind = 0; kind < (local ? 3 : 1); ++kind) {
            const auto weights = fixture.randomWeights();
            for (size_t i = 0; i < fixture.bones.size(); ++i) {
                RyBoneBinding *binding = fixture.skin->bindings()[i];
                if (local)
                    binding->setLocalWeights(ryMapOf(weights[i]), kind);
                else
                    binding->setWeights(ryMapOf(weights[i]));
            }
        }
    }
};

RY_TEST(DeformBaseTest)
#include "tst_deformBase.moc"
