#include "support/RyTest.h"

#include "RyWeightStage.h"

#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "rycore/viewport/RyOffscreenContext.h"

/// What weights look like on what was there before.
class RyWeightPixelsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nearestShowsOnce();
    void notInPickPass();
    void surfaceHidesPointsAndLines_data();
    void surfaceHidesPointsAndLines();
    void depthIsLeft();
    void linesCoverThePartners();
    void samplesSmoothEdges();

private:
    /// The second of two drawings, on a ground of one colour.
    static QImage pictureOf(RyWeightStage &stage, int shadeStyle = 3);
    static QColor under(const QImage &picture, const RyWeightStage &stage, const RyVec3 &place);
};

namespace {

const QColor Ground(40, 60, 120);

/// A place on the surface of the hand that looks at the eye, in the middle of a facet; the colour that it has.
struct Spot
{
    RyVec3 world;
    RyGLRecorder::Color color;
};

/// The quads of the hand that look at the camera most.
std::vector<Spot> spotsOf(const RyWeightStage &stage)
{
    const RyVec3 axis = (stage.doll.lHand->getWSEndPoint() - stage.doll.lHand->getWSPos()).normalized();
    const auto corners = stage.corners("lHand", stage.tool->currentParam(), false, stage.tool->partnerParam(), false);
    size_t quads = 0;
    for (const RyFacet &facet : stage.doll.mesh()->getFacets())
        quads += facet.group == stage.doll.mesh()->findFaceGroupIndex("lHand") && !facet.isTriangle();
    std::vector<Spot> spots;
    const RyVec3 eye = stage.viewport->getCamera()->getWSPos();
    for (size_t i = corners.size() - 4 * quads; i < corners.size(); i += 4) {
        const RyVec3 normal = (corners[i + 1].world - corners[i].world).cross(corners[i + 3].world - corners[i].world);
        Spot spot;
        spot.color = {"4ub", 0, 0, 0, corners[i].color.a};
        for (size_t k = 0; k < 4; ++k) {
            spot.world = spot.world + corners[i + k].world * 0.25f;
            spot.color.r += 0.25 * corners[i + k].color.r;
            spot.color.g += 0.25 * corners[i + k].color.g;
            spot.color.b += 0.25 * corners[i + k].color.b;
        }
        const RyVec3 toEye = (eye - spot.world).normalized();
        const float facing = std::abs(normal.normalized().dot(toEye));
        const RyVec3 from = spot.world - stage.doll.lHand->getWSPos();
        const bool isNear = (from - axis * from.dot(axis)).dot(toEye) > 1.0f;
        if (facing > 0.8f && isNear && QRect(0, 0, 800, 600).contains(stage.pixelOf(spot.world)))
            spots.push_back(spot);
    }
    return spots;
}

} // namespace

void RyWeightPixelsTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

QImage RyWeightPixelsTest::pictureOf(RyWeightStage &stage, int shadeStyle)
{
    stage.draw(); // binds the picture
    glClearColor(float(Ground.redF()), float(Ground.greenF()), float(Ground.blueF()), 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    stage.draw(shadeStyle);
    QImage image(800, 600, QImage::Format_RGBA8888);
    glReadPixels(0, 0, 800, 600, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    return image.mirrored();
}

QColor RyWeightPixelsTest::under(const QImage &picture, const RyWeightStage &stage, const RyVec3 &place)
{
    return picture.pixelColor(stage.pixelOf(place));
}

/// Of all that lies behind each other the nearest surface, blended with the ground by the opacity.
void RyWeightPixelsTest::nearestShowsOnce()
{
    RyWeightStage stage;
    const QImage picture = pictureOf(stage);
    const std::vector<Spot> spots = spotsOf(stage);
    QVERIFY(spots.size() > 3);
    const double alpha = 170.0 / 255.0;
    for (const Spot &spot : spots) {
        const QColor found = under(picture, stage, spot.world);
        const auto isNear = [&](double color, int ground, int pixel) {
            return std::abs(alpha * color + (1 - alpha) * ground - pixel) < 14; // a facet is not flat in colour
        };
        QVERIFY2(isNear(spot.color.r, Ground.red(), found.red()) &&
                     isNear(spot.color.g, Ground.green(), found.green()) &&
                     isNear(spot.color.b, Ground.blue(), found.blue()),
                 qPrintable(QStringLiteral("%1 %2 %3").arg(found.red()).arg(found.green()).arg(found.blue())));
        QCOMPARE(found.alpha(), 255);
    }
    QCOMPARE(picture.pixelColor(2, 2), Ground);
}

/// Neither anew nor as a kept picture.
void RyWeightPixelsTest::notInPickPass()
{
    RyWeightStage stage;
    QVERIFY(stage.draw(RyDrawingStage::PickPass)->elements.empty());
    const QImage kept = pictureOf(stage, RyDrawingStage::PickPass);
    stage.tool->setWeightVis(false);
    QCOMPARE(kept, pictureOf(stage, RyDrawingStage::PickPass));
    stage.tool->setWeightVis(true);
    QVERIFY(kept != pictureOf(stage));
}

void RyWeightPixelsTest::surfaceHidesPointsAndLines_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("points") << 0;
    QTest::newRow("lines") << 1;
}

void RyWeightPixelsTest::surfaceHidesPointsAndLines()
{
    QFETCH(int, mode);
    RyWeightStage stage;
    stage.viewport->getCamera()->lookAt(stage.doll.lHand->getWSPos() + RyVec3(10, 10, 40),
                                        stage.doll.lHand->getWSPos());
    stage.tool->setWeightMapMode(mode);
    const QImage picture = pictureOf(stage);
    // Corners that face the eye are there.
    int seen = 0;
    int hidden = 0;
    const RyVec3 eye = stage.viewport->getCamera()->getWSPos();
    const RyVec3 axis = (stage.doll.lHand->getWSEndPoint() - stage.doll.lHand->getWSPos()).normalized();
    for (const auto &corner :
         stage.corners("lHand", stage.tool->currentParam(), false, stage.tool->partnerParam(), false)) {
        const RyVec3 from = corner.world - stage.doll.lHand->getWSPos();
        const float along = from.dot(axis);
        const RyVec3 out = (from - axis * along).normalized();
        const float facing = out.dot((eye - corner.world).normalized());
        const QPoint pixel = stage.pixelOf(corner.world);
        if (along < 4.0f || along > 14.0f || !picture.rect().contains(pixel))
            continue;
        const bool isThere = picture.pixelColor(pixel) != Ground;
        seen += facing > 0.6f && isThere;
        hidden += facing > 0.6f && !isThere;
    }
    QVERIFY(seen > 10);
    QCOMPARE(hidden, 0);
    // Between them the ground shows: what lies on the far side does not.
    int bare = 0;
    const std::vector<Spot> spots = spotsOf(stage);
    for (const Spot &spot : spots)
        bare += under(picture, stage, spot.world) == Ground;
    QVERIFY2(bare > int(spots.size()) / 2, qPrintable(QStringLiteral("%1 of %2").arg(bare).arg(spots.size())));
}

/// What is drawn after the weights is not hidden by them.
void RyWeightPixelsTest::depthIsLeft()
{
    RyWeightStage stage;
    pictureOf(stage);
    float depth = 0;
    const QPoint pixel = stage.pixelOf(spotsOf(stage).front().world);
    glReadPixels(pixel.x(), 599 - pixel.y(), 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    QCOMPARE(depth, 1.0f);
}

/// Where both sides draw the same facets, lines have the colours that they have without a partner.
void RyWeightPixelsTest::linesCoverThePartners()
{
    RyWeightStage stage;
    RySelectionMap *map = stage.doll.figure->getSelectionMap();
    while (map->getNumPairs() > 0)
        map->removePair(0);
    stage.tool->setWeightMapMode(1);
    stage.viewport->getCamera()->lookAt(stage.doll.lHand->getWSPos() + RyVec3(10, 10, 60),
                                        stage.doll.lHand->getWSPos());
    const auto picture = [&] {
        RyJointState joint;
        joint.node = stage.tool->currentNode();
        joint.param = {stage.tool->currentParam(), stage.tool->currentParam()};
        stage.draw(); // binds the picture and loads the matrices
        glClearColor(float(Ground.redF()), float(Ground.greenF()), float(Ground.blueF()), 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        RyToolDrawing drawing;
        drawing.draw(stage.viewport.get(), false, joint, stage.tool->display(), 0);
        QImage image(800, 600, QImage::Format_RGBA8888);
        glReadPixels(0, 0, 800, 600, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
        return image;
    };
    stage.use(stage.doll.lHand, "jointy");
    const RyRef<RyLegacyJointParam> own(stage.tool->currentParam());
    const RyRef<RyLegacyJointParam> partner(stage.tool->editedPartnerParam());
    QVERIFY(partner);
    const QImage both = picture();
    RyLegacyJoint *above = partner->getJoint();
    above->removeJointParam(partner.get());
    QVERIFY(!stage.tool->editedPartnerParam());
    QCOMPARE(picture(), both);
    // The partner by itself looks otherwise.
    above->addJointParam(partner.get());
    own->getJoint()->removeJointParam(own.get());
    stage.use(stage.doll.lArm, "lHand_jointy");
    QCOMPARE(stage.tool->currentParam(), partner.get());
    QVERIFY(!stage.tool->editedPartnerParam());
    QVERIFY(picture() != both);
}

/// With samples the edge has colours between that of the surface and the ground, and none that is darker than both.
void RyWeightPixelsTest::samplesSmoothEdges()
{
    RyWeightStage stage;
    stage.tool->setStaticColor(QColor(240, 240, 240));
    stage.tool->setDynamicColor(QColor(240, 240, 240));
    stage.tool->setWeightOpacity(255);
    stage.manager->setActiveTool(stage.tool);
    const QImage picture = stage.viewport->grabPicture(800, 600);
    RyWeightStage other;
    other.tool->setWeightVis(false);
    other.manager->setActiveTool(other.tool);
    const QImage without = other.viewport->grabPicture(800, 600);
    int between = 0;
    int full = 0;
    int darker = 0;
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 800; ++x) {
            const QColor a = picture.pixelColor(x, y);
            const QColor b = without.pixelColor(x, y);
            full += a.red() >= 239;
            between += a.red() > b.red() + 10 && a.red() < 235;
            darker += a.red() < b.red() - 3;
        }
    }
    QVERIFY(full > 500);
    QVERIFY2(between > 50, qPrintable(QString::number(between)));
    QCOMPARE(darker, 0);
}

RY_TEST(RyWeightPixelsTest)

#include "tst_weightPixels.moc"
