#include "support/RyTest.h"
#include "viewport/ViewportTestScene.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyBoneListOrder.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

/// Ids of bones in skeletons below and beyond what the colour code holds.
class RyPickPassTest : public QObject
{
    Q_OBJECT
private:
    /// Bones in a grid of 25 columns, 2 cm apart; the last ones lie over the first ones.
    struct Setup
    {
        explicit Setup(int boneCount) : manager(&scene), viewport(&manager)
        {
            figure = new RyFigure;
            for (int i = 0; i < boneCount; ++i) {
                auto *bone = new RyBone;
                bone->setName(QStringLiteral("bone%1").arg(i));
                bone->setOrigin(placeOf(i), true);
                figure->addNodeChild(bone);
            }
            scene.addNode(figure);
            tool = new BoneListTool;
            tool->node = figure;
            manager.addTool(tool);
            manager.setActiveTool(tool);
            viewport.resize(800, 600);
            viewport.setStandardView(Ry3DViewport::StandardView::Front);
            viewport.cameraController().frame(RyBox3(RyVec3(-2, -2, 0), RyVec3(50, 40, 0)), QSizeF(800, 600));
        }
        static RyVec3 placeOf(int i) { return RyVec3(2.0f * float(i % 25), 2.0f * float(i / 25), 0); }
        int pickAt(const RyVec3 &world)
        {
            QPointF pixel;
            viewport.project(world, pixel);
            return viewport.pickOnGizmo(QPoint(int(pixel.x()), int(pixel.y())));
        }
        RyScene scene;
        RyViewportMgr manager;
        Ry3DViewport viewport;
        RyFigure *figure;
        BoneListTool *tool;
    };

private slots:
    void ordersOfTheList()
    {
        RyFigure figure;
        for (int i = 0; i < 600; ++i)
            figure.addNodeChild(new RyBone);
        const std::vector<RyBone *> all = figure.getAllBones();
        QCOMPARE(int(all.size()), 600);
        {
            const RyBoneListOrder columns(RyBoneListOrder::Columns);
            std::vector<RyBone *> appended{nullptr};
            figure.getAllBones(appended);
            QCOMPARE(int(appended.size()), 601);
            // Three in each of the first 88 columns, two in the others.
            for (const auto &[place, bone] : {std::pair(0, 0),
                                              {1, 256},
                                              {2, 512},
                                              {3, 1},
                                              {263, 87 + 512},
                                              {264, 88},
                                              {265, 88 + 256},
                                              {598, 255},
                                              {599, 255 + 256}})
                QCOMPARE(appended[size_t(1 + place)], all[size_t(bone)]);
            for (int column = 0; column < 256; ++column) {
                QCOMPARE(RyBoneListOrder::columnLength(column, 600), column < 88 ? 3 : 2);
                const int start = RyBoneListOrder::columnStart(column, 600);
                QCOMPARE(appended[size_t(1 + start)], all[size_t(column)]);
            }
            QCOMPARE(columns.longestList(), 600);
            {
                const RyBoneListOrder none(RyBoneListOrder::Nothing);
                QVERIFY(figure.getAllBones().empty());
                QCOMPARE(none.longestList(), 600);
            }
            const RyBoneListOrder tree(RyBoneListOrder::Tree);
            QCOMPARE(figure.getAllBones(), all);
        }
        QCOMPARE(figure.getAllBones(), all);
    }

    void upTo209BonesOnePassIsEnough()
    {
        Setup setup(209);
        const int before = setup.viewport.counts().pickPasses;
        QCOMPARE(setup.pickAt(Setup::placeOf(208)), 208 + 47);
        QCOMPARE(setup.viewport.counts().pickPasses, before + 1);
        for (int i : {0, 1, 100, 207})
            QCOMPARE(setup.pickAt(Setup::placeOf(i)), i + 47);
    }

    void passesBeyond_data()
    {
        QTest::addColumn<int>("boneCount");
        QTest::addColumn<int>("bone"); // moved away from all others; below 0 for a place without bones
        QTest::addColumn<int>("handle");
        QTest::addColumn<int>("passes");
        QTest::newRow("nothing there") << 600 << -1 << 0 << 1;
        QTest::newRow("a code that one bone has") << 300 << 44 << 0 << 1;
        QTest::newRow("one that two bones have") << 300 << 43 << 0 << 3;
        QTest::newRow("one that two bones have, the second") << 300 << 299 << 0 << 3;
        QTest::newRow("the last bone before codes repeat") << 210 << 208 << 0 << 1;
        QTest::newRow("the code of nothing") << 210 << 209 << 0 << 1;
        QTest::newRow("one that a handle has") << 211 << 210 << 0 << 3;
        QTest::newRow("a handle's that one bone has") << 240 << -1 << 30 << 3;
        QTest::newRow("a handle's that no bone has") << 230 << -1 << 44 << 1;
        QTest::newRow("one that a handle and bones have") << 1000 << 978 << 0 << 3;
        QTest::newRow("a handle's that bones have") << 1000 << -1 << 1 << 3;
        QTest::newRow("a handle's that a bone has twice") << 512 << -1 << 46 << 4;
        QTest::newRow("one that the bone has twice") << 512 << 511 << 0 << 4;
        QTest::newRow("one that bones have once, and a handle") << 512 << 510 << 0 << 3;
    }

    /// As few as the codes in the tile allow.
    void passesBeyond()
    {
        QFETCH(int, boneCount);
        QFETCH(int, bone);
        QFETCH(int, handle);
        QFETCH(int, passes);
        Setup setup(boneCount);
        const RyVec3 place(0, 500, 0);
        setup.viewport.cameraController().frame(RyBox3(RyVec3(-9, 491, 0), RyVec3(9, 509, 0)), QSizeF(800, 600));
        if (bone >= 0)
            setup.figure->getAllBones()[size_t(bone)]->setOrigin(place, true);
        setup.tool->handle = place;
        setup.tool->handleId = handle;
        const int before = setup.viewport.counts().pickPasses;
        QCOMPARE(setup.pickAt(place), bone >= 0 ? bone + 47 : handle);
        QCOMPARE(setup.viewport.counts().pickPasses - before, passes);
        // What ids are turned into bones with.
        QCOMPARE(setup.tool->bones, setup.figure->getAllBones());
    }

    void everyBoneBeyondHasItsFullId()
    {
        Setup setup(450);
        for (int i = 0; i < 450; ++i)
            QCOMPARE(setup.pickAt(Setup::placeOf(i)), i + 47);
        QCOMPARE(int(setup.tool->bones.size()), 450);
        QCOMPARE(setup.pickAt(RyVec3(1, 1, 0)), 0);
    }

    void handlesWinOverBones()
    {
        Setup setup(450);
        setup.tool->handle = Setup::placeOf(230);
        setup.tool->handleId = 44;
        QCOMPARE(setup.pickAt(Setup::placeOf(230)), 44);
        // The code of bone 256 - 47 + 44 is that of the handle, and still a bone.
        QCOMPARE(setup.pickAt(Setup::placeOf(253)), 253 + 47);
    }

    void theTopmostBoneWins()
    {
        Setup setup(450);
        std::vector<RyBone *> bones = setup.figure->getAllBones();
        bones[430]->setOrigin(Setup::placeOf(10), true);
        bones[5]->setOrigin(Setup::placeOf(300), true);
        QCOMPARE(setup.pickAt(Setup::placeOf(10)), 430 + 47);
        QCOMPARE(setup.pickAt(Setup::placeOf(300)), 300 + 47);
        // Two of one code, one on the other.
        bones[20]->setOrigin(Setup::placeOf(20 + 256), true);
        QCOMPARE(setup.pickAt(Setup::placeOf(20 + 256)), 20 + 256 + 47);
        QCOMPARE(setup.pickAt(Setup::placeOf(20)), 0);
    }
};

RY_TEST(RyPickPassTest)
#include "tst_RyPickPass.moc"
