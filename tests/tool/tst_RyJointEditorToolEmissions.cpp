#include "support/RyTest.h"

#include "RySignalLog.h"
#include "tool_actions/RyParametricToolScene.h"

#include "rycore/base/RyFloatProperty.h"

#include <functional>

namespace {

using Tool = RyJointEditorTool;
using Call = std::function<void(RyParametricToolScene &)>;

constexpr char redraw[] = "drawnDataChangeRequested";
constexpr char options[] = "optionsChanged";

/// What a slot or setter makes the tool emit: when its value is new, when the same comes again, and with one that is
/// out of range.
struct Row
{
    const char *slot;
    Call fresh;
    QStringList ofFresh;
    QStringList ofSame;
    Call outOfRange = nullptr;
    QStringList ofOutOfRange = {};
    bool ofParam = false; // a parameter is the current one
};

template<typename Value>
Call call(void (Tool::*setter)(Value), Value value)
{
    return [setter, value](RyToolScene &scene) { (scene.tool->*setter)(value); };
}

Call callPrivate(const char *slot)
{
    return [slot](RyToolScene &scene) { QVERIFY(QMetaObject::invokeMethod(scene.tool, slot)); };
}

/// Lets the node that follows the tool's current one be the new one, and then the same.
void updateSelection(RyToolScene &scene)
{
    QVERIFY(QMetaObject::invokeMethod(scene.tool, "updateSelection", Q_ARG(RyNode *, scene.rThigh)));
}

std::vector<Row> displayRows()
{
    const auto flag = [](const char *slot, void (Tool::*setter)(bool), bool fresh, QStringList ofFresh,
                         QStringList ofSame) {
        return Row{slot, call(setter, fresh), ofFresh, ofSame};
    };
    const auto number = [](const char *slot, void (Tool::*setter)(int), int fresh, int outOfRange) {
        return Row{slot, call(setter, fresh), {redraw}, {redraw}, call(setter, outOfRange), {redraw}};
    };
    const auto color = [](const char *slot, void (Tool::*setter)(QColor)) {
        return Row{slot, call(setter, QColor(1, 22, 233)), {redraw}, {redraw}, call(setter, QColor()), {redraw}};
    };
    return {
        {"setEditMode(EditMode)",
         call(&Tool::setEditMode, Tool::ParamMode),
         {"editModeChanged", redraw},
         {},
         call(&Tool::setEditMode, Tool::EditMode(7)),
         {"editModeChanged", redraw}},
        flag("setWeightVis(bool)", &Tool::setWeightVis, false, {options, redraw}, {}),
        flag("setAngleVis(bool)", &Tool::setAngleVis, false, {options, redraw}, {}),
        flag("setTwistVis(bool)", &Tool::setTwistVis, false, {options, redraw}, {}),
        flag("setSmoothVis(bool)", &Tool::setSmoothVis, false, {options, redraw}, {}),
        flag("setMatAVis(bool)", &Tool::setMatAVis, false, {"matAVisChanged", options, redraw}, {}),
        flag("setMatBVis(bool)", &Tool::setMatBVis, false, {"matBVisChanged", options, redraw}, {}),
        {"setBoneDrawMode(BoneDrawMode)",
         call(&Tool::setBoneDrawMode, Tool::SelectedBone),
         {"boneDrawModeChanged", redraw},
         {},
         call(&Tool::setBoneDrawMode, Tool::BoneDrawMode(-4)),
         {"boneDrawModeChanged", redraw}},
        {"setBoneMode(int)",
         call(&Tool::setBoneMode, 2),
         {"boneDrawModeChanged", redraw},
         {},
         call(&Tool::setBoneMode, 9),
         {"boneDrawModeChanged", redraw}},
        color("setStaticColor(QColor)", &Tool::setStaticColor),
        color("setDynamicColor(QColor)", &Tool::setDynamicColor),
        color("setSelectedColor(QColor)", &Tool::setSelectedColor),
        color("setBoundaryColor(QColor)", &Tool::setBoundaryColor),
        number("setHandleDrawing(int)", &Tool::setHandleDrawing, 1, 3),
        number("setSphereDrawing(int)", &Tool::setSphereDrawing, 2, -1),
        number("setSphereOpacity(int)", &Tool::setSphereOpacity, 77, 256),
        number("setSphereLineDensity(int)", &Tool::setSphereLineDensity, 12, 361),
        number("setWeightMapMode(int)", &Tool::setWeightMapMode, 0, 3),
        number("setWeightOpacity(int)", &Tool::setWeightOpacity, 5, -1),
        number("setBoundaryStyle(int)", &Tool::setBoundaryStyle, 0, 2),
        number("setBoneColoringStyle(int)", &Tool::setBoneColoringStyle, 0, -1),
        flag("setDrawMeshBoundaries(bool)", &Tool::setDrawMeshBoundaries, false, {redraw, options}, {redraw, options}),
        flag("setGhostBones(bool)", &Tool::setGhostBones, true, {redraw, options}, {redraw, options}),
        flag("setShowManipulators(bool)", &Tool::setShowManipulators, false, {redraw, options}, {redraw, options}),
        flag("setShowBoneHierarchy(bool)", &Tool::setShowBoneHierarchy, false, {redraw, options}, {redraw, options}),
        flag("setRestrictRotationAxes(bool)", &Tool::setRestrictRotationAxes, true, {options}, {options}),
    };
}

std::vector<Row> editingRows()
{
    const auto flag = [](const char *slot, void (Tool::*setter)(bool), bool fresh, const QStringList &emitted) {
        return Row{slot, call(setter, fresh), emitted, emitted};
    };
    return {
        flag("setPushNeighborAngles(bool)", &Tool::setPushNeighborAngles, false, {options}),
        flag("setPropagationEnabled(bool)", &Tool::setPropagationEnabled, true, {}),
        flag("setPropagateTranslation(bool)", &Tool::setPropagateTranslation, true, {options}),
        flag("setPropagateOrientation(bool)", &Tool::setPropagateOrientation, true, {}),
        flag("setAutoAlign", &Tool::setAutoAlign, true, {options}),
        flag("setAutoSnapEndPoints", &Tool::setAutoSnapEndPoints, true, {options}),
        flag("setBoneCreationActive(bool)", &Tool::setBoneCreationActive, true, {"statusTextChanged", options}),
        {"boneCreationActive()", [](RyToolScene &scene) { scene.tool->boneCreationActive(); }, {}, {}},
        {"changeRotationOrder",
         [](RyToolScene &scene) { scene.tool->changeRotationOrder(scene.lShin, RyRotationOrder(4)); },
         {"nodeChanged"},
         {},
         [](RyToolScene &scene) { scene.tool->changeRotationOrder(nullptr, RyRotationOrder(2)); }},
    };
}

std::vector<Row> propagationRows()
{
    const auto axisEdit = [](const char *slot, void (Tool::*edit)(RyNode *, int, float, bool, bool)) {
        return Row{slot,
                   [edit](RyToolScene &scene) { (scene.tool->*edit)(scene.lThigh, 1, 1.5f, true, true); },
                   {},
                   {},
                   [edit](RyToolScene &scene) { (scene.tool->*edit)(nullptr, 1, 1.5f, true, true); }};
    };
    using AxisEdit = void (Tool::*)(RyNode *, int, float, bool, bool);
    return {
        {"performTransPropagation(RyNode*,RyVec3,RyVec3)",
         [](RyToolScene &scene) {
             scene.tool->performTransPropagation(scene.lShin, {11, 50, 2}, {13, 51, 2});
         },
         {},
         {},
         [](RyToolScene &scene) {
             scene.tool->performTransPropagation(nullptr, {}, {1, 2, 3});
         }},
        {"performOrientPropagation(RyNode*,RyQuat)",
         [](RyToolScene &scene) {
             scene.tool->performOrientPropagation(scene.lShin, RyQuat({0, 0, 1}, 0.4f));
         },
         {},
         {},
         [](RyToolScene &scene) { scene.tool->performOrientPropagation(nullptr, RyQuat()); }},
        axisEdit("performRotPropagation(RyNode*,int,float,bool,bool)", &Tool::performRotPropagation),
        {"performChildRotPropagation(RyNode*,int,float,bool,bool,RyVec3&)",
         [](RyToolScene &scene) {
             RyVec3 origin(10, 95, 0);
             scene.tool->performChildRotPropagation(scene.lThigh, 2, 0.3f, true, false, origin);
         },
         {},
         {}},
        axisEdit("performScalePropagation(RyNode*,int,float,bool,bool)", &Tool::performScalePropagation),
        axisEdit("performTransPropagation(RyNode*,int,float,bool,bool)", AxisEdit(&Tool::performTransPropagation)),
    };
}

std::vector<Row> privateRows()
{
    return {
        {"updateSelection(RyNode*)",
         updateSelection,
         {"nodeChanged", redraw, "statusTextChanged", "hoverRequested"},
         {"nodeChanged", redraw, "statusTextChanged", "hoverRequested"},
         [](RyToolScene &scene) {
             QVERIFY(QMetaObject::invokeMethod(scene.tool, "updateSelection", Q_ARG(RyNode *, nullptr)));
         },
         {"nodeChanged", redraw, "statusTextChanged", "hoverRequested"}},
        {"nodeRemoved()", callPrivate("nodeRemoved"), {}, {}},
        {"centerPointChange()", callPrivate("centerPointChange"), {}, {}},
        {"endPointChange()", callPrivate("endPointChange"), {}, {}},
        {"dynamicMatrixChange()", callPrivate("dynamicMatrixChange"), {redraw}, {redraw}},
        {"staticMatrixChange()", callPrivate("staticMatrixChange"), {redraw}, {redraw}},
        {"postSelectionChangeEvent()", callPrivate("postSelectionChangeEvent"), {}, {}},
    };
}

/// The bend about Y of the left hand is the current parameter.
std::vector<Row> parameterRows()
{
    using Scene = RyParametricToolScene;
    const auto row = [](const char *slot, const Call &fresh, const QStringList &ofFresh, const QStringList &ofSame,
                        const Call &outOfRange = nullptr, const QStringList &ofOutOfRange = {}) {
        return Row{slot, fresh, ofFresh, ofSame, outOfRange, ofOutOfRange, true};
    };
    const auto angle = [row](const char *slot, void (Tool::*setter)(float, int)) {
        return row(
            slot, [setter](Scene &scene) { (scene.tool->*setter)(0.5f, 1); }, {redraw}, {},
            [setter](Scene &scene) { (scene.tool->*setter)(-70.0f, 9); }, {redraw});
    };
    return {
        row(
            "setParam(RyLegacyJointParam*)",
            [](Scene &scene) { scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointz")); },
            {"paramChanged", redraw, "hoverRequested"}, {},
            [](Scene &scene) { scene.tool->setParam(scene.doll.param(scene.doll.rHand, "jointz")); },
            {"paramChanged", redraw, "hoverRequested"}),
        row(
            "translateParam(RyLegacyJointParam*,RyVec3)",
            [](Scene &scene) {
                scene.tool->translateParam(scene.tool->currentParam(), {1, -2, 3});
            },
            {redraw}, {redraw},
            [](Scene &scene) {
                scene.tool->translateParam(nullptr, {1, 0, 0});
            }),
        // Each turn of a sphere asks for one as well.
        row(
            "rotateParam(RyLegacyJointParam*,RyQuat)",
            [](Scene &scene) {
                scene.tool->rotateParam(scene.tool->currentParam(), RyQuat({0, 1, 0}, 0.3f));
            },
            {redraw, redraw, redraw}, {redraw, redraw, redraw},
            [](Scene &scene) {
                scene.tool->rotateParam(nullptr, RyQuat({0, 1, 0}, 0.3f));
            }),
        row(
            "propagateParamTranslation(RyNode*,RyLegacyJointParam*,float,int)",
            [](Scene &scene) {
                scene.tool->propagateParamTranslation(scene.doll.lHand, scene.tool->currentParam(), 2.0f, 1);
            },
            {redraw}, {redraw},
            [](Scene &scene) { scene.tool->propagateParamTranslation(scene.doll.lHand, nullptr, 2.0f, 1); }),
        row(
            "propagateSphereTranslation(RyLegacyJointSphere*,float,int)",
            [](Scene &scene) {
                scene.tool->propagateSphereTranslation(scene.tool->currentParam()->getStaticSphere(), 2.0f, 1);
            },
            {redraw}, {redraw}, [](Scene &scene) { scene.tool->propagateSphereTranslation(nullptr, 2.0f, 1); }),
        angle("setStaticA(float,int)", &Tool::setStaticA),
        angle("setDynamicB(float,int)", &Tool::setDynamicB),
        angle("setDynamicC(float,int)", &Tool::setDynamicC),
        angle("setStaticD(float,int)", &Tool::setStaticD),
        row("updateParamConnections()", callPrivate("updateParamConnections"), {}, {}),
        row("removeParamConnections()", callPrivate("removeParamConnections"), {}, {}),
        row("validateAngleChange()", callPrivate("validateAngleChange"), {}, {}),
    };
}

std::vector<Row> allRows()
{
    std::vector<Row> rows = displayRows();
    for (const std::vector<Row> &more : {editingRows(), propagationRows(), privateRows(), parameterRows()})
        rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

/// The tool at work: a posed, turned and scaled figure, whose shin is the current node.
struct Fixture
{
    RyParametricToolScene scene;
    std::unique_ptr<RySignalLog> log;

    explicit Fixture(bool ofParam = false)
    {
        scene.pose();
        scene.figure->getScaleControl()->setValue(1.25f);
        scene.lThigh->getXScaleControl()->setValue(0.7f);
        scene.select(ofParam ? scene.doll.lHand : scene.lShin);
        if (ofParam)
            scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointy"));
        log = std::make_unique<RySignalLog>(*scene.tool);
    }
};

} // namespace

/// How often the tool emits each of its signals, and in which order.
class RyJointEditorToolEmissionsTest : public QObject
{
    Q_OBJECT

private slots:
    void everySlotIsInTheTable();
    void slotsAndSetters_data();
    void slotsAndSetters();
    void selection();
    void mouse();
    void cancelledDrag();
    void lostRelease();
    void creatingBones();
};

void RyJointEditorToolEmissionsTest::everySlotIsInTheTable()
{
    QStringList known;
    for (const Row &row : allRows())
        known.append(QString::fromLatin1(row.slot));
    const QMetaObject &meta = Tool::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QString signature = QString::fromLatin1(meta.method(i).methodSignature());
        if (meta.method(i).methodType() == QMetaMethod::Slot)
            QVERIFY2(known.count(signature) == 1, qPrintable(signature));
    }
}

void RyJointEditorToolEmissionsTest::slotsAndSetters_data()
{
    QTest::addColumn<int>("row");
    const std::vector<Row> rows = allRows();
    for (size_t i = 0; i < rows.size(); ++i)
        QTest::newRow(rows[i].slot) << int(i);
}

void RyJointEditorToolEmissionsTest::slotsAndSetters()
{
    QFETCH(int, row);
    const Row tested = allRows().at(size_t(row));
    Fixture fixture(tested.ofParam);
    tested.fresh(fixture.scene);
    QCOMPARE(fixture.log->take(), tested.ofFresh);
    tested.fresh(fixture.scene);
    QCOMPARE(fixture.log->take(), tested.ofSame);
    if (tested.outOfRange)
        tested.outOfRange(fixture.scene);
    QCOMPARE(fixture.log->take(), tested.ofOutOfRange);
}

void RyJointEditorToolEmissionsTest::selection()
{
    Fixture fixture;
    ryScene()->setSelection({fixture.scene.rThigh});
    ryScene()->setSelection({fixture.scene.lFoot});
    QCOMPARE(fixture.log->take(), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(fixture.log->take(), QStringList({"nodeChanged", redraw, "statusTextChanged", "hoverRequested"}));
    fixture.scene.manager->setActiveTool(nullptr);
    QCOMPARE(fixture.log->take(), QStringList({"nodeChanged", redraw, "statusTextChanged", "hoverRequested"}));
    fixture.scene.manager->setActiveTool(fixture.scene.tool);
    QCOMPARE(fixture.log->take(), QStringList({"nodeChanged", redraw, "statusTextChanged", "hoverRequested"}));
    // What a click creates hangs on the current node, which the status text names.
    fixture.scene.tool->setBoneCreationActive(true);
    fixture.log->take();
    updateSelection(fixture.scene);
    QCOMPARE(fixture.log->take(),
             QStringList({"nodeChanged", "statusTextChanged", redraw, "statusTextChanged", "hoverRequested"}));
}

void RyJointEditorToolEmissionsTest::mouse()
{
    Fixture fixture;
    RyParametricToolScene &scene = fixture.scene;
    const QStringList changed{redraw, "statusTextChanged"};
    scene.hover(44);
    QCOMPARE(fixture.log->take(), changed);
    scene.hover(44);
    QCOMPARE(fixture.log->take(), QStringList());
    scene.hover(2);
    QCOMPARE(fixture.log->take(), changed);
    scene.press(2, {400, 300});
    QCOMPARE(fixture.log->take(), QStringList());
    scene.move({410, 300});
    QCOMPARE(fixture.log->take(), QStringList({"statusTextChanged", redraw}));
    scene.move({420, 310});
    QCOMPARE(fixture.log->take(), QStringList({redraw}));
    scene.release();
    QCOMPARE(fixture.log->take(), changed);
    scene.press(45, {400, 300});
    QCOMPARE(fixture.log->take(), changed);
    scene.release();
    QCOMPARE(fixture.log->take(), changed);
    scene.release();
    QCOMPARE(fixture.log->take(), QStringList());
    scene.hover(42);
    fixture.log->take();
    scene.tool->mouseLeave(scene.viewport.get());
    QCOMPARE(fixture.log->take(), changed);
}

void RyJointEditorToolEmissionsTest::cancelledDrag()
{
    Fixture fixture;
    RyParametricToolScene &scene = fixture.scene;
    scene.press(1, {400, 300});
    scene.move({410, 300});
    fixture.log->take();
    scene.press(1, {410, 300}, Qt::RightButton);
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    scene.press(1, {410, 300}, Qt::RightButton);
    scene.release();
    QCOMPARE(fixture.log->take(), QStringList());
    // Deactivation cancels as well, and then drops the node.
    scene.press(1, {400, 300});
    scene.move({410, 300});
    fixture.log->take();
    scene.manager->setActiveTool(nullptr);
    QCOMPARE(fixture.log->take(),
             QStringList({redraw, "statusTextChanged", "nodeChanged", redraw, "statusTextChanged", "hoverRequested"}));
}

void RyJointEditorToolEmissionsTest::lostRelease()
{
    Fixture fixture;
    RyParametricToolScene &scene = fixture.scene;
    scene.press(44, {400, 300});
    scene.move({410, 300});
    fixture.log->take();
    scene.tool->finishDrag();
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    scene.press(44, {400, 300});
    scene.move({410, 300});
    fixture.log->take();
    scene.tool->finishDrag();
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    scene.press(42, {400, 300});
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    scene.move({420, 300});
    fixture.log->take();
    ryScene()->removeNode(scene.lShin);
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    QVERIFY(!scene.tool->currentNode());
}

void RyJointEditorToolEmissionsTest::creatingBones()
{
    Fixture fixture;
    RyParametricToolScene &scene = fixture.scene;
    scene.tool->setBoneCreationActive(true);
    scene.hover(44);
    fixture.log->take();
    scene.press(44, {400, 300}, Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(fixture.log->take(), QStringList({redraw, "statusTextChanged"}));
    QCOMPARE(scene.lShin->getNumNodeChildren(), 2);
    // The new bone is not the current node.
    QCoreApplication::processEvents();
    scene.release();
    QCOMPARE(fixture.log->take(), QStringList());
}

RY_TEST(RyJointEditorToolEmissionsTest)

#include "tst_RyJointEditorToolEmissions.moc"
