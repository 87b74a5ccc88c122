#include "support/RyTest.h"
#include "viewport/ViewportTestScene.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyBoneListSlice.h"
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
    void slicesCutTheList()
    {
        RyFigure figure;
        for (int i = 0; i < 5; ++i)
            figure.addNodeChild(new RyBone);
        const std::vector<RyBone *> all = figure.getAllBones();
        QCOMPARE(int(all.size()), 5);
        {
            const RyBoneListSlice slice(1, 3);
            QCOMPARE(figure.getAllBones(), std::vector<RyBone *>(all.begin() + 1, all.begin() + 4));
            std::vector<RyBone *> appended{nullptr};
            figure.getAllBones(appended);
            QCOMPARE(int(appended.size()), 4);
            QCOMPARE(slice.longestList(), 5);
            {
                const RyBoneListSlice none(0, 0);
                QVERIFY(figure.getAllBones().empty());
            }
            const RyBoneListSlice beyond(4, 200);
            QCOMPARE(int(figure.getAllBones().size()), 1);
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

    void theTopmostBoneWinsAcrossSlices()
    {
        Setup setup(450);
        std::vector<RyBone *> bones = setup.figure->getAllBones();
        bones[430]->setOrigin(Setup::placeOf(10), true);
        bones[5]->setOrigin(Setup::placeOf(300), true);
        QCOMPARE(setup.pickAt(Setup::placeOf(10)), 430 + 47);
        QCOMPARE(setup.pickAt(Setup::placeOf(300)), 300 + 47);
    }
};

RY_TEST(RyPickPassTest)
#include "tst_RyPickPass.moc"
