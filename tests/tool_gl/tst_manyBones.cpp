#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"

#include <random>

/// The tool and real pick passes on figures below and beyond what a colour code of eight bits holds.
class RyManyBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyBoneIsCaught_data();
    void everyBoneIsCaught();
    void pressesSelectTheBoneUnderTheMouse_data() { everyBoneIsCaught_data(); }
    void pressesSelectTheBoneUnderTheMouse();
    void handlesComeFirst();
    void theBoneDrawnLastWins();

private:
    /// A figure of so many bones side by side in a grid before the camera, in chains of thirty.
    struct Crowd : RyDrawingStage
    {
        explicit Crowd(int count)
        {
            crowd = new RyFigure;
            crowd->setName(QStringLiteral("crowd"));
            ryScene()->addNode(crowd);
            RyNode *parent = crowd;
            for (int i = 0; i < count; ++i) {
                const RyVec3 place(20.0f + 4.0f * float(i % 40), 12.0f + 5.0f * float(i / 40), 0);
                RyBone *bone = makeBone(i % 30 == 0 ? crowd : parent, qPrintable(QStringLiteral("b%1").arg(i)), place,
                                        place + RyVec3(0, 3.5f, 0));
                bone->setRotationOrder(RyRotationOrder(2));
                alignNode(bone);
                bones.push_back(bone);
                parent = bone;
            }
            tool->setShowManipulators(false);
            viewport->resize(1600, 1200);
            viewport->getCamera()->lookAt({97, 70, 260}, {97, 70, 0});
            select(crowd);
        }
        int pick(const RyVec3 &world) { return viewport->Ry3DViewport::pickOnGizmo(pixelOf(world)); }
        static RyVec3 bodyOf(const RyBone *bone) { return bone->getWSPos() + RyVec3(0, 0.7f, 0); }

        RyFigure *crowd;
        std::vector<RyBone *> bones;
    };
};

void RyManyBonesTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyManyBonesTest::everyBoneIsCaught_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {209, 210, 250, 840, 1000})
        QTest::addRow("%d", count) << count;
}

void RyManyBonesTest::everyBoneIsCaught()
{
    QFETCH(int, count);
    Crowd crowd(count);
    // Around the borders of the code and of the slices all of them, elsewhere some.
    for (int i = 0; i < count; i += i % 200 < 20 || i >= count - 10 ? 1 : 9)
        QCOMPARE(crowd.pick(Crowd::bodyOf(crowd.bones[size_t(i)])), i + 47);
    QCOMPARE(crowd.pick({90, 2, 0}), 0);
}

void RyManyBonesTest::pressesSelectTheBoneUnderTheMouse()
{
    QFETCH(int, count);
    Crowd crowd(count);
    std::mt19937 random(ryTestSeed());
    for (int n = 0; n < 12; ++n) {
        const int index = n == 0 ? count - 1 : int(random() % unsigned(count));
        RyBone *bone = crowd.bones[size_t(index)];
        crowd.select(crowd.crowd); // whose handles lie over no bone
        const QPoint point = crowd.pixelOf(Crowd::bodyOf(bone));
        crowd.press(crowd.viewport->Ry3DViewport::pickOnGizmo(point), point);
        crowd.release(point);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(crowd.tool->currentNode(), static_cast<RyNode *>(bone));
        QCOMPARE(ryScene()->getNumSelectedNodes(), 1);
    }
}

void RyManyBonesTest::handlesComeFirst()
{
    // The red of bone 209 + k is that of handle k.
    Crowd crowd(840);
    for (const int index : {210, 211, 330, 466, 722}) {
        crowd.select(crowd.bones[size_t(index)]);
        // Where arms of their crosshairs lie over other bones.
        QCOMPARE(crowd.pick(crowd.bones[size_t(index)]->getWSPos() + RyVec3(4, 0, 0)), 1);
        QCOMPARE(crowd.pick(crowd.bones[size_t(index)]->getWSEndPoint() + RyVec3(-4, 0, 0)), 2);
    }
    crowd.select(crowd.bones[600]);
    for (const int index : {210, 211, 254, 466, 467, 722, 723})
        QCOMPARE(crowd.pick(Crowd::bodyOf(crowd.bones[size_t(index)])), index + 47);
}

void RyManyBonesTest::theBoneDrawnLastWins()
{
    Crowd crowd(840);
    // Whichever slices the two are in.
    for (const auto &[over, under] :
         {std::pair(430, 10), std::pair(10, 430), std::pair(839, 838), std::pair(300, 610)}) {
        RyBone *moved = crowd.bones[size_t(over)];
        const RyVec3 origin = moved->getOrigin();
        const RyVec3 end = moved->getEndPoint();
        moved->setOrigin(crowd.bones[size_t(under)]->getOrigin());
        moved->setEndPoint(crowd.bones[size_t(under)]->getEndPoint());
        QCOMPARE(crowd.pick(Crowd::bodyOf(moved)), std::max(over, under) + 47);
        moved->setOrigin(origin);
        moved->setEndPoint(end);
    }
}

RY_TEST(RyManyBonesTest)

#include "tst_manyBones.moc"
