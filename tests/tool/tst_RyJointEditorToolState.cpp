#include "support/RyTest.h"

#include "RySettingsForTest.h"
#include "RySignalCounter.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/undo/RyUndoStack.h"

/// Initial state, settings and interface of the tool.
class RyJointEditorToolStateTest : public QObject
{
    Q_OBJECT

private slots:
    void constructs();
    void initialState();
    void displayBeforeSettings();
    void readsSettingsInOrder();
    void readsStoredValues();
    void takesStoredValuesAsTheyStand();
    void storedColorsAreColors();
    void pointersAreMetaTypes();
    void signalsAndSlotsInOrder();
    void privateSlots();
    void paneAndPriority();
    void valuesSurvive();
    void unknownParameterSelectsNone();
};

void RyJointEditorToolStateTest::constructs()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    QCOMPARE(tool.objectName(), QStringLiteral("Joint Editor"));
    QCOMPARE(tool.getName(), QStringLiteral("Joint Editor"));
    QVERIFY(tool.alwaysUsesDefaultPickMode());
    QCOMPARE(tool.metaObject()->superClass()->className(), "RyPickTool");
}

void RyJointEditorToolStateTest::initialState()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RyJointToolDisplay &display = tool.display();
    QVERIFY(display.weightVis && display.matAVis && display.matBVis);
    QVERIFY(display.angleVis && display.twistVis && display.smoothVis);
    QCOMPARE(display.sphereDrawing, 0);
    QCOMPARE(display.handleDrawing, 0);
    QCOMPARE(display.sphereOpacity, 50);
    QCOMPARE(display.sphereLineDensity, 60);
    QCOMPARE(display.weightMapMode, 2);
    QCOMPARE(display.weightOpacity, 160);
    QCOMPARE(int(tool.editMode()), 0);
    QCOMPARE(int(tool.boneDrawMode()), 3);
    QCOMPARE(display.staticColor, QColor(255, 0, 0, 255));
    QCOMPARE(display.dynamicColor, QColor(0, 255, 0, 255));
    QCOMPARE(display.selectedColor, QColor(255, 255, 0, 255));
    QCOMPARE(display.boundaryColor, QColor(255, 255, 255, 255));
    QCOMPARE(display.darkColor, QColor(64, 64, 64));
    QCOMPARE(display.lightColor, QColor(128, 128, 128));
    QCOMPARE(display.boundaryStyle, 1);
    QCOMPARE(display.boneColoringStyle, 1);
    QVERIFY(!display.restrictRotationAxes);
    QVERIFY(!display.ghostBones);
    QVERIFY(display.showManipulators);
    QVERIFY(display.drawMeshBoundaries);
    QVERIFY(display.showBoneHierarchy);
    QVERIFY(tool.pushNeighborAngles());
    QVERIFY(!tool.autoAlign());
    QVERIFY(!tool.autoSnapEndPoints());
    QVERIFY(!tool.propagationEnabled());
    QVERIFY(!tool.propagateTranslation());
    QVERIFY(!tool.propagateOrientation());
    QVERIFY(!tool.boneCreationActive());
    QVERIFY(!tool.paramDrivenByParent());
    QVERIFY(!tool.isSelectionEventPending());
    QVERIFY(!tool.isDragging());
    QCOMPARE(tool.hoveredId(), 0);
    QCOMPARE(tool.rememberedAxis(), -1);
    QCOMPARE(tool.rememberedType(), 0);
    QVERIFY(!tool.currentNode());
    QVERIFY(!tool.currentNodeParent());
    QVERIFY(!tool.currentParam());
    QVERIFY(!tool.partnerParam());
    QVERIFY(!tool.bendPartnerParam());
    QCOMPARE(tool.cachedOrigin(), RyVec3());
    for (float angle : {tool.cachedAngleA(), tool.cachedAngleB(), tool.cachedAngleC(), tool.cachedAngleD()})
        QCOMPARE(angle, 0.0f);
    QCOMPARE(tool.bones().count(), 0);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QVERIFY(!tool.pressViewport());
    QCOMPARE(tool.pressCameraRotation(), RyQuat());
}

void RyJointEditorToolStateTest::displayBeforeSettings()
{
    const RyJointToolDisplay display;
    QCOMPARE(display.sphereDrawing, 1);
    QCOMPARE(display.handleDrawing, 1);
    QVERIFY(!display.boundaryColor.isValid());
}

void RyJointEditorToolStateTest::readsSettingsInOrder()
{
    const RySettingsStoreForTest store;
    const RySettingsRecorder recorder;
    RyJointEditorTool tool;
    const QStringList expected = {
        "SphereOpacity", "SphereDensity", "WeightMapMode",     "WeightOpacity", "DrawHandles",   "SphereDrawingEnabled",
        "BoneVis",       "DynamicRed",    "DynamicGreen",      "DynamicBlue",   "StaticRed",     "StaticGreen",
        "StaticBlue",    "SelectedRed",   "SelectedGreen",     "SelectedBlue",  "BoundaryStyle", "BoundaryRed",
        "BoundaryGreen", "BoundaryBlue",  "BoneColoringStyle", "AxisHobble",    "GhostBones",    "ShowManipulators"};
    QCOMPARE(recorder.keys("get"), expected);
    QCOMPARE(recorder.keys("set"), QStringList());
    for (const QString &access : recorder.accesses) {
        QVERIFY2(access.startsWith(QLatin1String("Joint Editor Tool/")), qPrintable(access));
        const bool isBool =
            access.contains("AxisHobble") || access.contains("GhostBones") || access.contains("ShowManipulators");
        QVERIFY2(access.endsWith(isBool ? QLatin1String("get bool") : QLatin1String("get int")), qPrintable(access));
    }
}

void RyJointEditorToolStateTest::readsStoredValues()
{
    RySettingsStoreForTest store;
    store.settings.setIntValue("SphereDrawingEnabled", 2);
    store.settings.setIntValue("SphereOpacity", 77);
    store.settings.setIntValue("SphereDensity", 12);
    store.settings.setIntValue("WeightMapMode", 1);
    store.settings.setIntValue("WeightOpacity", 9);
    store.settings.setIntValue("DrawHandles", 2);
    store.settings.setIntValue("BoneVis", 1);
    int channel = 1;
    for (const char *key :
         {"DynamicRed", "DynamicGreen", "DynamicBlue", "StaticRed", "StaticGreen", "StaticBlue", "SelectedRed",
          "SelectedGreen", "SelectedBlue", "BoundaryRed", "BoundaryGreen", "BoundaryBlue"})
        store.settings.setIntValue(QLatin1String(key), channel++);
    store.settings.setIntValue("BoundaryStyle", 0);
    store.settings.setIntValue("BoneColoringStyle", 0);
    store.settings.setIntValue("AxisHobble", 1);
    store.settings.setBoolValue("GhostBones", true);
    store.settings.setBoolValue("ShowManipulators", false);

    RyJointEditorTool tool;
    const RyJointToolDisplay &display = tool.display();
    QCOMPARE(display.sphereDrawing, 2);
    QCOMPARE(display.sphereOpacity, 77);
    QCOMPARE(display.sphereLineDensity, 12);
    QCOMPARE(display.weightMapMode, 1);
    QCOMPARE(display.weightOpacity, 9);
    QCOMPARE(display.handleDrawing, 2);
    QCOMPARE(int(tool.boneDrawMode()), 1);
    QCOMPARE(display.dynamicColor, QColor(1, 2, 3, 255));
    QCOMPARE(display.staticColor, QColor(4, 5, 6, 255));
    QCOMPARE(display.selectedColor, QColor(7, 8, 9, 255));
    QCOMPARE(display.boundaryColor, QColor(10, 11, 12, 255));
    QCOMPARE(display.boundaryStyle, 0);
    QCOMPARE(display.boneColoringStyle, 0);
    QVERIFY(display.restrictRotationAxes);
    QVERIFY(display.ghostBones);
    QVERIFY(!display.showManipulators);
}

void RyJointEditorToolStateTest::takesStoredValuesAsTheyStand()
{
    RySettingsStoreForTest store;
    store.settings.setIntValue("SphereDensity", 0);
    store.settings.setIntValue("SphereOpacity", 999);
    store.settings.setIntValue("WeightMapMode", -4);
    RyJointEditorTool tool;
    QCOMPARE(tool.display().sphereLineDensity, 1);
    QCOMPARE(tool.display().sphereOpacity, 999);
    QCOMPARE(tool.display().weightMapMode, -4);
}

void RyJointEditorToolStateTest::storedColorsAreColors()
{
    RySettingsStoreForTest store;
    store.settings.setIntValue("DynamicRed", -20);
    store.settings.setIntValue("DynamicGreen", 256);
    store.settings.setIntValue("StaticBlue", 100000);
    store.settings.setIntValue("SelectedRed", 255);
    store.settings.setIntValue("SelectedGreen", 0);
    store.settings.setIntValue("BoundaryBlue", -1);
    RyJointEditorTool tool;
    QCOMPARE(tool.display().dynamicColor, QColor(0, 255, 0));
    QCOMPARE(tool.display().staticColor, QColor(255, 0, 255));
    QCOMPARE(tool.display().selectedColor, QColor(255, 0, 0));
    QCOMPARE(tool.display().boundaryColor, QColor(255, 255, 0));
}

void RyJointEditorToolStateTest::pointersAreMetaTypes()
{
    const int id = QMetaType::type("RyJointEditorTool*");
    QVERIFY(id > 0);
    QCOMPARE(qRegisterMetaType<RyJointEditorTool *>("RyJointEditorTool*"), id);
    QCOMPARE(qMetaTypeId<RyJointEditorTool *>(), id);
}

void RyJointEditorToolStateTest::signalsAndSlotsInOrder()
{
    const QStringList expected = {"nodeChanged(RyNode*)",
                                  "paramChanged(RyLegacyJointParam*)",
                                  "editModeChanged(RyJointEditorTool::EditMode)",
                                  "matAVisChanged(bool)",
                                  "matBVisChanged(bool)",
                                  "boneDrawModeChanged(RyJointEditorTool::BoneDrawMode)",
                                  "setEditMode(EditMode)",
                                  "setParam(RyLegacyJointParam*)",
                                  "setWeightVis(bool)",
                                  "setAngleVis(bool)",
                                  "setTwistVis(bool)",
                                  "setSmoothVis(bool)",
                                  "setMatAVis(bool)",
                                  "setMatBVis(bool)",
                                  "setBoneDrawMode(BoneDrawMode)",
                                  "setStaticColor(QColor)",
                                  "setDynamicColor(QColor)",
                                  "setSelectedColor(QColor)",
                                  "setBoundaryColor(QColor)",
                                  "setHandleDrawing(int)",
                                  "setSphereDrawing(int)",
                                  "setSphereOpacity(int)",
                                  "setSphereLineDensity(int)",
                                  "setWeightMapMode(int)",
                                  "setWeightOpacity(int)",
                                  "setDrawMeshBoundaries(bool)",
                                  "setGhostBones(bool)",
                                  "setShowManipulators(bool)",
                                  "setBoundaryStyle(int)",
                                  "setPushNeighborAngles(bool)",
                                  "setShowBoneHierarchy(bool)",
                                  "setBoneColoringStyle(int)",
                                  "setRestrictRotationAxes(bool)",
                                  "setPropagationEnabled(bool)",
                                  "setPropagateTranslation(bool)",
                                  "setPropagateOrientation(bool)",
                                  "performTransPropagation(RyNode*,RyVec3,RyVec3)",
                                  "performOrientPropagation(RyNode*,RyQuat)",
                                  "translateParam(RyLegacyJointParam*,RyVec3)",
                                  "rotateParam(RyLegacyJointParam*,RyQuat)",
                                  "performRotPropagation(RyNode*,int,float,bool,bool)",
                                  "performChildRotPropagation(RyNode*,int,float,bool,bool,RyVec3&)",
                                  "performScalePropagation(RyNode*,int,float,bool,bool)",
                                  "performTransPropagation(RyNode*,int,float,bool,bool)",
                                  "propagateParamTranslation(RyNode*,RyLegacyJointParam*,float,int)",
                                  "propagateSphereTranslation(RyLegacyJointSphere*,float,int)",
                                  "setStaticA(float,int)",
                                  "setDynamicB(float,int)",
                                  "setDynamicC(float,int)",
                                  "setStaticD(float,int)",
                                  "setBoneCreationActive(bool)",
                                  "boneCreationActive()",
                                  "setBoneMode(int)",
                                  "mirrorPairs(int)"};
    const QMetaObject &metaObject = RyJointEditorTool::staticMetaObject;
    QStringList found;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        if (method.access() == QMetaMethod::Public)
            found.append(QString::fromLatin1(method.methodSignature()));
    }
    QCOMPARE(found, expected);
    const QMetaMethod getter = metaObject.method(metaObject.indexOfSlot("boneCreationActive()"));
    QCOMPARE(getter.returnType(), int(QMetaType::Bool));
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = metaObject.method(metaObject.methodOffset() + i);
        QCOMPARE(method.methodType(), i < 6 ? QMetaMethod::Signal : QMetaMethod::Slot);
    }
}

void RyJointEditorToolStateTest::privateSlots()
{
    const QMetaObject &metaObject = RyJointEditorTool::staticMetaObject;
    for (const char *signature :
         {"updateSelection(RyNode*)", "nodeRemoved()", "centerPointChange()", "endPointChange()",
          "updateParamConnections()", "removeParamConnections()", "dynamicMatrixChange()", "staticMatrixChange()",
          "validateAngleChange()", "postSelectionChangeEvent()"}) {
        const int index = metaObject.indexOfSlot(signature);
        QVERIFY2(index >= 0, signature);
        QCOMPARE(metaObject.method(index).access(), QMetaMethod::Private);
    }
}

void RyJointEditorToolStateTest::paneAndPriority()
{
    const RySettingsStoreForTest store;
    auto tool = std::make_unique<RyJointEditorTool>();
    QPointer<QWidget> pane = tool->getSettingsWidget();
    QVERIFY(qobject_cast<RyJointEditorToolFrame *>(pane));
    QCOMPARE(pane.data(), static_cast<QWidget *>(tool->frame()));
    const QPointer<QWidget> bar = tool->frame()->getDividerBar();
    QVERIFY(bar);
    QCOMPARE(tool->getDividerBar(), bar.data());
    QCOMPARE(tool->getToolPriority(), 29);
    tool.reset();
    QVERIFY(!pane);
    QVERIFY(!bar);
}

void RyJointEditorToolStateTest::valuesSurvive()
{
    const RySettingsStoreForTest store;
    {
        RyJointEditorTool tool;
        tool.setSphereOpacity(123);
        tool.setGhostBones(true);
        tool.setSelectedColor(QColor(1, 2, 3));
    }
    // The file alone, in another place, which nothing was ever written to from here.
    QTemporaryDir folder;
    const QStringList files = QDir(store.folder.path()).entryList(QDir::Files);
    QVERIFY(!files.isEmpty());
    for (const QString &file : files)
        QVERIFY(QFile::copy(store.folder.filePath(file), folder.filePath(file)));
    RyAppSettings::setSettingsPath(folder.path());
    RyJointEditorTool next;
    QCOMPARE(next.display().sphereOpacity, 123);
    QVERIFY(next.display().ghostBones);
    QCOMPARE(next.display().selectedColor, QColor(1, 2, 3));
}

void RyJointEditorToolStateTest::unknownParameterSelectsNone()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    RySignalCounter announced;
    connect(&tool, SIGNAL(paramChanged(RyLegacyJointParam *)), &announced, SLOT(count()));
    tool.setParam(nullptr);
    int nothing = 0;
    tool.setParam(reinterpret_cast<RyLegacyJointParam *>(&nothing));
    QVERIFY(!tool.currentParam());
    QCOMPARE(announced.counted, 0);
    QCOMPARE(tool.rememberedAxis(), -1);
}

RY_TEST(RyJointEditorToolStateTest)

#include "tst_RyJointEditorToolState.moc"
