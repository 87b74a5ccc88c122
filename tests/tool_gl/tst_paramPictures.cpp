#include "support/RyTest.h"

#include "RyGoldenPicture.h"
#include "RyParamStage.h"

#include "rycore/viewport/RyRenderOptions.h"

static constexpr int width = 360;
static constexpr int height = 270;

namespace {

/// The stage in the tool's own colours over a plain backdrop, seen from nearby.
struct PictureStage : RyParamStage
{
    PictureStage()
    {
        RyRenderOptions options;
        options.backgroundBottom = options.backgroundTop;
        options.showGrid = options.showAxes = false;
        viewport->setRenderOptions(options);
        viewport->resize(width, height);
        tool->setDynamicColor(QColor(0, 255, 0));
        tool->setStaticColor(QColor(255, 0, 0));
        tool->setSphereLineDensity(24);
        lookAtArm(75.0f);
    }
    QImage picture() { return viewport->grabPicture(width, height); }
    void showSpheresOnly(int style) const
    {
        tool->setAngleVis(false);
        tool->setSphereDrawing(style);
    }
    void showWeightsOnly(int mode) const
    {
        hideSpheres();
        tool->setAngleVis(false);
        tool->setWeightVis(true);
        tool->setWeightMapMode(mode);
        tool->setWeightOpacity(255);
    }
    void hideSpheres() const
    {
        tool->setMatAVis(false);
        tool->setMatBVis(false);
    }
};

struct View
{
    const char *name;
    void (*prepare)(PictureStage &);
};

const View views[] = {
    {"rings",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(0);
         stage.tool->setShowManipulators(false);
     }},
    {"handles-lines",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(0);
         stage.tool->setHandleDrawing(0);
         stage.lookAtArm(40.0f);
     }},
    {"handles-solid",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(0);
         stage.tool->setHandleDrawing(1);
         stage.lookAtArm(40.0f);
     }},
    {"spheres-lines",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(1);
         stage.tool->setSphereOpacity(160);
     }},
    {"spheres-solid",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(2);
     }},
    {"dynamic-sphere",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(2);
         stage.tool->setMatBVis(false);
         stage.tool->setSphereOpacity(90);
     }},
    {"hovered-ring",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showSpheresOnly(0);
         stage.hover(9);
     }},
    {"angles",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.hideSpheres();
         stage.lookAtArm(240.0f);
     }},
    {"angles-about-the-bone",
     [](PictureStage &stage) {
         stage.takeBend().setAxis(0);
         stage.hideSpheres();
         stage.lookAtArm(240.0f);
     }},
    {"twist",
     [](PictureStage &stage) {
         stage.takeTwist();
         stage.hideSpheres();
     }},
    {"smooth",
     [](PictureStage &stage) {
         stage.takeSmooth();
         stage.hideSpheres();
         stage.lookAtPlace(stage.doll.chest->getWSPos(), 95.0f);
     }},
    {"smooth-high-with-spheres",
     [](PictureStage &stage) {
         stage.takeSmooth().setLoValid(false);
         stage.tool->setSphereDrawing(0);
         stage.lookAtPlace(stage.doll.chest->getWSPos(), 95.0f);
     }},
    {"bend-with-bones",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.tool->setSphereDrawing(1);
         stage.tool->setBoneDrawMode(RyJointEditorTool::EntireFigure);
         stage.tool->setDrawMeshBoundaries(true);
     }},
    {"weights-points",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showWeightsOnly(0);
     }},
    {"weights-lines",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showWeightsOnly(1);
     }},
    {"weights-filled",
     [](PictureStage &stage) {
         stage.takeBend();
         stage.showWeightsOnly(2);
     }},
};

} // namespace

/// What handles of parameters look like, by pictures that were looked at.
class RyParamPicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pictures_data();
    void pictures();
    void toleranceIsForEdges();
    void toleranceIsNotForHandles();
};

void RyParamPicturesTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyParamPicturesTest::pictures_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < std::size(views); ++i)
        QTest::newRow(views[i].name) << int(i);
}

void RyParamPicturesTest::pictures()
{
    QFETCH(int, index);
    PictureStage stage;
    views[index].prepare(stage);
    const QString message = RyGoldenPicture::compare(stage.picture(), QString::fromLatin1(views[index].name));
    QVERIFY2(message.isEmpty(), qPrintable(message));
}

/// A camera that moves by a quarter of a pixel sets the pixels along all edges anew.
void RyParamPicturesTest::toleranceIsForEdges()
{
    for (const View &view : views) {
        PictureStage stage;
        view.prepare(stage);
        const QImage before = stage.picture();
        RyCamera *camera = stage.viewport->getCamera();
        const auto quarterPixel =
            float(0.25 * 600.0 / height * stage.worldSize(1.0, stage.doll.lArm->getWSPos())); // of 600 in the stage
        const RyVec3 eye = camera->getWSPos() + RyVec3(quarterPixel, 0, 0);
        camera->lookAt(eye, eye + camera->viewDirection() * 100.0f);
        const double share = RyGoldenPicture::difference(before, stage.picture());
        QVERIFY2(share <= RyGoldenPicture::Tolerance,
                 qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(view.name)).arg(share)));
    }
}

/// A ring that is missing and a colour that is another one are seen.
void RyParamPicturesTest::toleranceIsNotForHandles()
{
    PictureStage stage;
    stage.takeBend();
    stage.showSpheresOnly(0);
    const QImage picture = stage.picture();
    stage.hover(7);
    QVERIFY(RyGoldenPicture::difference(picture, stage.picture()) > RyGoldenPicture::Tolerance);
    stage.hover(0);
    QVERIFY(RyGoldenPicture::difference(picture, stage.picture()) == 0.0);
    stage.tool->setMatBVis(false);
    QVERIFY(RyGoldenPicture::difference(picture, stage.picture()) > RyGoldenPicture::Tolerance);
}

RY_TEST(RyParamPicturesTest)

#include "tst_paramPictures.moc"
