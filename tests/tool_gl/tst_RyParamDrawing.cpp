#include "support/RyTest.h"

#include "RyParamStage.h"

namespace {

/// Ids in the order in which they are first drawn.
QList<int> idsOf(const RyGLRecorder &recording)
{
    QList<int> ids;
    for (const auto &primitive : recording.primitives) {
        for (const auto &color : primitive.colors) {
            if (!ids.contains(int(color.r)))
                ids.append(int(color.r));
        }
    }
    return ids;
}

} // namespace

/// What is drawn for a parameter as a whole: which handles in which order, what the pick pass holds, and what the
/// context is like before and after.
class RyParamDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void handlesOfEachKind();
};

void RyParamDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyParamDrawingTest::handlesOfEachKind()
{
    RyParamStage stage;
    const QList<int> spheres{5,  6,  7,  8,  9,  10, 17, 20, 18, 21, 19, 22, 11,
                             12, 13, 40, 23, 26, 24, 27, 25, 28, 14, 15, 16, 39};
    stage.takeBend();
    QCOMPARE(idsOf(*stage.draw(RyDrawingStage::PickPass)), spheres + QList<int>({30, 31, 29, 32}));
    stage.takeTwist();
    QCOMPARE(idsOf(*stage.draw(RyDrawingStage::PickPass)), spheres + QList<int>({33, 34}));
    stage.takeSmooth();
    QCOMPARE(idsOf(*stage.draw(RyDrawingStage::PickPass)), spheres + QList<int>({35, 36, 38, 37}));
}

RY_TEST(RyParamDrawingTest)

#include "tst_RyParamDrawing.moc"
