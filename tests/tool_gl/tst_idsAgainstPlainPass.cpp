#include "support/RyTest.h"

#include "RyDrawingStage.h"
#include "RyPlainPass.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "rycore/base/RyFloatProperty.h"

#include <random>

/// The ids that the viewport gives for the tool, beside those of a picture with a colour of its own for each bone.
class RyIdsAgainstPlainPassTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void idsAreThoseOfThePlainPicture_data();
    void idsAreThoseOfThePlainPicture();
    void familiesToo();

private:
    static constexpr int pointCount = 5000;
    static constexpr int pointsPerTile = 100;

    /// A crowded figure, turned, scaled and posed, with bones aligned and not, that go along their axes and against.
    struct Crowd : RyDrawingStage
    {
        Crowd(int count, unsigned seed) : random(seed)
        {
            crowd = new RyFigure;
            crowd->setName(QStringLiteral("crowd"));
            ryScene()->addNode(crowd);
            for (int i = 0; i < count; ++i)
                addBone(i);
            crowd->getYRotControl()->setValue(within(30));
            crowd->getXTransControl()->setValue(within(5));
            crowd->getScaleControl()->setValue(0.9f + 0.2f * part());
            viewport->resize(800, 600);
            viewport->getCamera()->lookAt({30 + within(20), 110, 250}, {0, 75, 0});
            select(*std::find_if(bones.begin(), bones.end(), [this](const RyBone *bone) {
                return QRect(80, 80, 640, 440).contains(pixelOf(bone->getWSPos()));
            }));
        }
        void addBone(int i)
        {
            RyNode *parent = i % 7 == 0 ? static_cast<RyNode *>(crowd) : bones.back();
            const RyVec3 start(within(80), 75 + within(65), within(20));
            const RyVec3 end = start + RyVec3(within(12), within(12), within(6)) + RyVec3(2, 0, 0);
            RyBone *bone = makeBone(parent, qPrintable(QStringLiteral("b%1").arg(i)), start, end);
            bone->setRotationOrder(RyRotationOrder(int(random() % 6u)));
            if (i % 3 != 0)
                alignNode(bone);
            bone->getXRotControl()->setValue(within(3));
            bone->getYScaleControl()->setValue(1.0f + within(0.1f));
            bones.push_back(bone);
        }
        float part() { return float(random() % 10000u) / 10000.0f; }
        float within(float most) { return (2 * part() - 1) * most; }
        int pick(const QPoint &point) { return viewport->Ry3DViewport::pickOnGizmo(point); }
        /// Anywhere in the view, and mostly near a bone.
        QPoint anyPlace()
        {
            QPoint place(int(random() % 800u), int(random() % 600u));
            if (random() % 4u != 0)
                place = pixelOf(bones[random() % bones.size()]->getWSPos());
            return keptInside(place);
        }
        static QPoint keptInside(const QPoint &place)
        {
            return {std::clamp(place.x(), 0, 799), std::clamp(place.y(), 0, 599)};
        }

        std::mt19937 random;
        RyFigure *crowd;
        std::vector<RyBone *> bones;
    };

    static void compare(Crowd &crowd, const RyPlainPass &plain);
};

void RyIdsAgainstPlainPassTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyIdsAgainstPlainPassTest::compare(Crowd &crowd, const RyPlainPass &plain)
{
    int bones = 0;
    int handles = 0;
    int atBorders = 0;
    const QPoint handlePlace = crowd.pixelOf(crowd.tool->currentNode()->getWSPos());
    for (int tile = 0; tile < pointCount / pointsPerTile; ++tile) {
        const QPoint middle = tile == 0 ? Crowd::keptInside(handlePlace) : crowd.anyPlace();
        for (int i = 0; i < pointsPerTile; ++i) {
            const QPoint away(int(crowd.random() % 241u) - 120, int(crowd.random() % 241u) - 120);
            const QPoint point = i == 0 ? middle : Crowd::keptInside(middle + (i % 2 ? away / 8 : away));
            const int id = crowd.pick(point);
            if (!plain.isNear(point, id)) {
                QFAIL(qPrintable(QStringLiteral("%1, %2: id %3, in the plain picture %4")
                                     .arg(point.x())
                                     .arg(point.y())
                                     .arg(id)
                                     .arg(plain.idAt(point))));
            }
            bones += id >= 47;
            handles += id > 0 && id < 47;
            atBorders += id != plain.idAt(point);
        }
    }
    QVERIFY2(bones > pointCount / 50 && handles > 10, qPrintable(QString::number(bones)));
    QVERIFY2(atBorders < pointCount / 200, qPrintable(QString::number(atBorders)));
}

void RyIdsAgainstPlainPassTest::idsAreThoseOfThePlainPicture_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {20, 100, 209, 210, 256, 257, 300, 512, 1000})
        QTest::addRow("%d", count) << count;
}

void RyIdsAgainstPlainPassTest::idsAreThoseOfThePlainPicture()
{
    QFETCH(int, count);
    Crowd crowd(count, ryTestSeed() + unsigned(count));
    const RyPlainPass plain(*crowd.viewport, crowd.bones, *crowd.tool->currentNode(), 60);
    compare(crowd, plain);
}

/// A parent is drawn after the current bone; with 256 bones from one to the other both have the same code.
void RyIdsAgainstPlainPassTest::familiesToo()
{
    RyDrawingStage stage;
    auto *crowd = new RyFigure;
    ryScene()->addNode(crowd);
    RyBone *parent = RyToolScene::makeBone(crowd, "parent", {-30, 60, 0}, {30, 60, 0});
    RyNode *above = parent;
    for (int i = 1; i < 256; ++i)
        above = RyToolScene::makeBone(above, "between", {0, 300, 0}, {5, 300, 0});
    RyBone *current = RyToolScene::makeBone(parent, "current", {-30, 60, 0}, {30, 62, 0});
    RyToolScene::makeBone(current, "more", {0, 300, 0}, {5, 300, 0});
    QCOMPARE(crowd->getAllBones()[256], current);
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBoneAndFamily);
    stage.select(current);
    const QPoint shared = stage.pixelOf({-10, 60, 0});
    QCOMPARE(stage.viewport->Ry3DViewport::pickOnGizmo(shared), 47);
    stage.tool->setBoneDrawMode(RyJointEditorTool::EntireFigure);
    QCOMPARE(stage.viewport->Ry3DViewport::pickOnGizmo(shared), 47 + 256);
}

RY_TEST(RyIdsAgainstPlainPassTest)

#include "tst_idsAgainstPlainPass.moc"
