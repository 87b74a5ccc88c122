#include "support/RyTest.h"

#include "RyWeightStage.h"

#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/viewport/RyOffscreenContext.h"

namespace {

/// The stage with a drawing of its own, whose counts can be seen.
class CountedStage : public RyWeightStage
{
public:
    struct Counts
    {
        RyWeightCounts here, there;
        int uploads = 0;
        int paints = 0;
        bool operator==(const Counts &) const = default;
    };
    CountedStage() { draw(); }

    std::unique_ptr<RyGLRecorder> draw() { return draw(m_drawing); }
    std::unique_ptr<RyGLRecorder> draw(RyToolDrawing &drawing) { return draw(drawing, tool->display()); }
    std::unique_ptr<RyGLRecorder> draw(RyToolDrawing &drawing, const RyJointToolDisplay &display)
    {
        RyWeightStage::draw(); // prepares the context
        RyJointState joint;
        joint.node = tool->currentNode();
        joint.parent = tool->currentNodeParent();
        joint.param = {tool->currentParam(), tool->currentParam()};
        auto recording = std::make_unique<RyGLRecorder>();
        drawing.draw(viewport.get(), false, joint, display, 0);
        recording->stop();
        return recording;
    }
    Counts counts() const
    {
        const RyWeightDrawing &weights = m_drawing.weights();
        return {weights.kept()[0].counts(), weights.kept()[1].counts(), weights.uploads(), weights.paints()};
    }
    /// What one more drawing makes.
    Counts madeByDrawing()
    {
        const Counts before = counts();
        draw();
        const Counts after = counts();
        const auto less = [](const RyWeightCounts &a, const RyWeightCounts &b) {
            return RyWeightCounts{a.facets - b.facets, a.positions - b.positions, a.weights - b.weights,
                                  a.colors - b.colors};
        };
        return {less(after.here, before.here), less(after.there, before.there), after.uploads - before.uploads,
                after.paints - before.paints};
    }
    /// What is drawn without anything kept.
    std::vector<Corner> fresh()
    {
        RyToolDrawing drawing;
        return drawn(*draw(drawing));
    }

private:
    RyToolDrawing m_drawing;
};

using Counts = CountedStage::Counts;

/// For messages of comparisons.
char *toString(const Counts &counts)
{
    const auto text = [](const RyWeightCounts &c) {
        return QStringLiteral("%1 %2 %3 %4, ").arg(c.facets).arg(c.positions).arg(c.weights).arg(c.colors);
    };
    return qstrdup(qPrintable(text(counts.here) + text(counts.there) +
                              QStringLiteral("%1 uploads, %2 paints").arg(counts.uploads).arg(counts.paints)));
}

} // namespace

Q_DECLARE_METATYPE(std::function<void(CountedStage &)>)

/// Of the weights that the tool draws only what changed is made anew, uploaded and painted.
class RyKeptWeightsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingChanges();
    void unknownModeDrawsNothing();
    void cameraPaintsAlone();
    void lineWidthMattersToLines();
    void hiddenGiveTheirPictureBack();
    void colorsAlone_data();
    void colorsAlone();
    void posesMovePositionsAlone();
    void posesElsewhereDoNothing();
    void editAtRestChangesColorsAlone();
    void editOfAnotherParameterDoesNothing();
    void everyChangeIsFollowed();
};

void RyKeptWeightsTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyKeptWeightsTest::nothingChanges()
{
    CountedStage stage;
    QCOMPARE(stage.counts().uploads, 6); // facets, positions and colours of both sides
    QCOMPARE(stage.counts().paints, 1);
    QCOMPARE(stage.madeByDrawing(), (Counts()));
    // Of the whole drawing nothing is left but laying the kept picture over the scene.
    const auto recording = stage.draw();
    QVERIFY(recording->elements.empty());
    QCOMPARE(recording->others["glBindFramebuffer"], 0);
}

/// Settings may hold any number.
void RyKeptWeightsTest::unknownModeDrawsNothing()
{
    CountedStage stage;
    RyToolDrawing drawing;
    RyJointToolDisplay display = stage.tool->display();
    for (const int mode : {-1, 3}) {
        display.weightMapMode = mode;
        const auto recording = stage.draw(drawing, display);
        QVERIFY(recording->elements.empty());
        QCOMPARE(recording->count("glRectf"), 0);
    }
    display.weightMapMode = 0;
    QCOMPARE(stage.draw(drawing, display)->count("glRectf"), 1);
}

void RyKeptWeightsTest::cameraPaintsAlone()
{
    CountedStage stage;
    for (int step = 1; step < 4; ++step) {
        stage.viewport->getCamera()->lookAt(stage.doll.lHand->getWSPos() + RyVec3(20.0f * float(step), 10, 80),
                                            stage.doll.lHand->getWSPos());
        const Counts made = stage.madeByDrawing();
        QVERIFY(made == (Counts{{}, {}, 0, 1}));
    }
}

void RyKeptWeightsTest::lineWidthMattersToLines()
{
    CountedStage stage;
    for (const int mode : {0, 1, 2}) {
        stage.tool->setWeightMapMode(mode);
        glLineWidth(1.0f);
        stage.draw();
        glLineWidth(4.0f);
        QCOMPARE(stage.madeByDrawing().paints, mode == 1 ? 1 : 0);
    }
    glLineWidth(1.0f);
}

void RyKeptWeightsTest::hiddenGiveTheirPictureBack()
{
    CountedStage stage;
    QCOMPARE(stage.draw()->others["glDeleteTextures"], 0);
    stage.tool->setWeightVis(false);
    QCOMPARE(stage.draw()->others["glDeleteTextures"], 1);
    QCOMPARE(stage.draw()->others["glDeleteTextures"], 0);
    stage.tool->setWeightVis(true);
    QCOMPARE(stage.madeByDrawing(), (Counts{{}, {}, 0, 1})); // what it is made of was kept
}

void RyKeptWeightsTest::colorsAlone_data()
{
    using Change = std::function<void(CountedStage &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("opacity") << Change([](CountedStage &stage) { stage.tool->setWeightOpacity(90); });
    QTest::newRow("static colour") << Change([](CountedStage &stage) { stage.tool->setStaticColor(Qt::blue); });
    QTest::newRow("dynamic colour") << Change([](CountedStage &stage) { stage.tool->setDynamicColor(Qt::blue); });
    QTest::newRow("lines") << Change([](CountedStage &stage) { stage.tool->setWeightMapMode(1); });
}

void RyKeptWeightsTest::colorsAlone()
{
    QFETCH(std::function<void(CountedStage &)>, change);
    CountedStage stage;
    change(stage);
    const Counts made = stage.madeByDrawing();
    QVERIFY(made == (Counts{{0, 0, 0, 1}, {0, 0, 0, 1}, 2, 1}));
    QCOMPARE(stage.madeByDrawing(), (Counts()));
}

void RyKeptWeightsTest::posesMovePositionsAlone()
{
    CountedStage stage;
    stage.doll.lHand->getYRotControl()->setValue(33.0f);
    QCOMPARE(stage.madeByDrawing(), (Counts{{0, 1, 0, 0}, {0, 1, 0, 0}, 2, 1}));
    // The figure's own place is no matter of positions.
    stage.doll.figure->getZTransControl()->setValue(-5.0f);
    QCOMPARE(stage.madeByDrawing(), (Counts{{}, {}, 0, 1}));
}

void RyKeptWeightsTest::posesElsewhereDoNothing()
{
    CountedStage stage;
    stage.doll.rHand->getYRotControl()->setValue(33.0f);
    QCOMPARE(stage.madeByDrawing(), (Counts()));
}

void RyKeptWeightsTest::editAtRestChangesColorsAlone()
{
    CountedStage stage;
    for (RyBone *bone : stage.doll.figure->getAllBones()) {
        for (RyFloatProperty *control : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()})
            control->setValue(0.0f);
    }
    auto *own = static_cast<RyLegacyBendParam *>(stage.use(stage.doll.lHand, "jointy"));
    stage.draw();
    const RyLegacyDeformer &deformer = stage.doll.binding->deformer();
    const auto indexOf = [&](const RyLegacyJointParam *param) {
        int index = 0;
        for (const RyLegacyJoint *joint : stage.doll.binding->joints()) {
            for (const RyLegacyJointParam *each : joint->params()) {
                if (each == param)
                    return index;
                ++index;
            }
        }
        return -1;
    };
    std::vector<int> builds;
    for (int i = 0; i < int(deformer.rig().params.size()); ++i)
        builds.push_back(deformer.weightBuilds(i));
    const quint64 points = stage.doll.figure->getObject()->getDeformedPoints().revision();
    own->beginEdit();
    for (RyLegacyBendParam *each : {own, static_cast<RyLegacyBendParam *>(own->findPartner())})
        each->setDynamicB(each->getDynamicB() - 0.3f);
    QCOMPARE(stage.madeByDrawing(), (Counts{{0, 0, 1, 1}, {0, 0, 1, 1}, 2, 1}));
    own->getDynamicSphere()->getXTransControl()->setValue(31.0f);
    own->setApplyMatrices(true);
    QCOMPARE(stage.madeByDrawing(), (Counts{{0, 0, 1, 1}, {0, 0, 1, 0}, 1, 1}));
    own->finishEdit();
    QCOMPARE(stage.doll.figure->getObject()->getDeformedPoints().revision(), points);
    for (int i = 0; i < int(builds.size()); ++i)
        QCOMPARE(deformer.weightBuilds(i) - builds[size_t(i)], i == indexOf(own)                          ? 2
                                                               : i == indexOf(stage.tool->partnerParam()) ? 1
                                                                                                          : 0);
}

void RyKeptWeightsTest::editOfAnotherParameterDoesNothing()
{
    CountedStage stage;
    stage.doll.param(stage.doll.rHand, "jointz")->setApplyMatrices(false);
    // The weights are read again, and are what they were.
    QCOMPARE(stage.madeByDrawing(), (Counts{{0, 0, 1, 0}, {0, 0, 1, 0}, 0, 0}));
}

void RyKeptWeightsTest::everyChangeIsFollowed()
{
    CountedStage stage;
    auto *morph = new RyMorph(QStringLiteral("dent"), {5, 45, 50}, {{0, 3, 1}, {2, 0, 0}, {0, 0, -4}});
    stage.doll.figure->getObject()->getCurrentShape()->addMorph(morph);
    using Change = std::function<void()>;
    const ParametricScene &doll = stage.doll;
    RySelectionMap *map = doll.figure->getSelectionMap();
    const std::pair<const char *, Change> changes[] = {
        {"angle", [&] { static_cast<RyLegacyBendParam *>(doll.param(doll.lHand, "jointy"))->setStaticA(2.0f); }},
        {"driver's origin",
         [&] {
             doll.lHand->setOrigin({41, 115, 2});
         }},
        {"driver's orientation", [&] { doll.lHand->getOrientYControl()->setValue(25.0f); }},
        {"pose of the parent", [&] { doll.lArm->getYRotControl()->setValue(-20.0f); }},
        {"scale", [&] { doll.lHand->getXScaleControl()->setValue(1.3f); }},
        {"the figure turns", [&] { doll.figure->getYRotControl()->setValue(-10.0f); }},
        {"another parameter", [&] { stage.use(doll.lHand, "twistx"); }},
        {"a smooth-scale", [&] { stage.use(doll.lHand, "lArm_smoox"); }},
        {"another bone", [&] { stage.use(doll.lArm, "jointz"); }},
        {"a facet goes to another group",
         [&] {
             std::vector<int> groups;
             for (const RyFacet &facet : doll.mesh()->getFacets())
                 groups.push_back(facet.group == 1 && groups.size() % 3 == 0 ? 0 : facet.group);
             doll.mesh()->setGroupsOfFacets(groups);
         }},
        {"a pair less", [&] { map->removePair(map->findPair(doll.lArm)); }},
        {"a morph", [&] { morph->getValueControl()->setValue(0.7f); }},
        {"points of the mesh",
         [&] {
             doll.mesh()->setVertex(45, {20, 130, 4});
         }},
        {"fewer facets",
         [&] {
             std::vector<RyFacet> facets;
             std::vector<int> groups;
             for (int i = 1; i < doll.mesh()->getNumFacets(); i += 2) {
                 facets.push_back(doll.mesh()->getFacet(i));
                 groups.push_back(facets.back().group);
             }
             doll.mesh()->setFacets(facets);
             doll.mesh()->setGroupsOfFacets(groups);
         }},
        {"another mesh",
         [&] {
             RyFacetMesh *mesh = doll.mesh()->copy();
             for (int vertex = 0; vertex < 40; ++vertex)
                 mesh->setVertex(vertex, mesh->getVertex(vertex) + RyVec3(1, 0, 2));
             qobject_cast<RyFacetShape *>(doll.figure->getObject()->getCurrentShape())->setFacetMesh(mesh);
         }},
    };
    std::vector<RyWeightStage::Corner> last;
    for (const auto &[name, change] : changes) {
        change();
        stage.viewport->getCamera()->lookAt(doll.lHand->getWSPos() + RyVec3(10, 30, 90 + float(last.size())),
                                            doll.lHand->getWSPos()); // so that it is painted anew in any case
        const auto kept = stage.drawn(*stage.draw());
        const QString difference = RyWeightStage::difference(kept, stage.fresh());
        QVERIFY2(difference.isEmpty(), qPrintable(name + (": " + difference)));
        QVERIFY2(!RyWeightStage::difference(kept, last).isEmpty(), name);
        last = kept;
    }
}

RY_TEST(RyKeptWeightsTest)

#include "tst_keptWeights.moc"
