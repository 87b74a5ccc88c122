#include "support/RyTest.h"

#include "RySettingsForTest.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include <QSignalSpy>

/// Setters of the display: clamping, settings, redraws.
class RyJointEditorToolSettersTest : public QObject
{
    Q_OBJECT

private slots:
    void modesChangeOnce();
    void flagsChangeOnce_data();
    void flagsChangeOnce();
    void matrixFlagsAnnounce();
    void colors_data();
    void colors();
    void clampedNumbers_data();
    void clampedNumbers();
    void storedBools();
    void axisHobbleIsWrittenAsInt();
    void unstoredFlags();
    void boneModeByPosition();
};

void RyJointEditorToolSettersTest::modesChangeOnce()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    QSignalSpy edit(&tool, &RyJointEditorTool::editModeChanged);
    QSignalSpy bones(&tool, &RyJointEditorTool::boneDrawModeChanged);
    const RySettingsRecorder recorder;
    int redraws = tool.drawnDataChangeCount();
    tool.setEditMode(RyJointEditorTool::ParamMode);
    tool.setEditMode(RyJointEditorTool::ParamMode);
    QCOMPARE(int(tool.editMode()), 1);
    QCOMPARE(edit.count(), 1);
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 1);
    QVERIFY(recorder.accesses.isEmpty());

    redraws = tool.drawnDataChangeCount();
    tool.setBoneDrawMode(RyJointEditorTool::BoneDrawMode(2));
    tool.setBoneDrawMode(RyJointEditorTool::BoneDrawMode(2));
    QCOMPARE(bones.count(), 1);
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 1);
    QCOMPARE(recorder.accesses, QStringList{"Joint Editor Tool/BoneVis set int"});
    QCOMPARE(store.settings.getIntValue("BoneVis", -1), 2);
}

void RyJointEditorToolSettersTest::flagsChangeOnce_data()
{
    QTest::addColumn<QByteArray>("slot");
    for (const char *slot : {"setWeightVis", "setAngleVis", "setTwistVis", "setSmoothVis", "setMatAVis", "setMatBVis"})
        QTest::newRow(slot) << QByteArray(slot);
}

void RyJointEditorToolSettersTest::flagsChangeOnce()
{
    QFETCH(QByteArray, slot);
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    const auto flag = [&tool, &slot] {
        const RyJointToolDisplay &d = tool.display();
        return slot == "setWeightVis"   ? d.weightVis
               : slot == "setAngleVis"  ? d.angleVis
               : slot == "setTwistVis"  ? d.twistVis
               : slot == "setSmoothVis" ? d.smoothVis
               : slot == "setMatAVis"   ? d.matAVis
                                        : d.matBVis;
    };
    const int redraws = tool.drawnDataChangeCount();
    QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(bool, true)));
    QCOMPARE(tool.drawnDataChangeCount(), redraws);
    QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(bool, false)));
    QVERIFY(!flag());
    QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(bool, false)));
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 1);
    QVERIFY(recorder.accesses.isEmpty());
}

void RyJointEditorToolSettersTest::matrixFlagsAnnounce()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    QSignalSpy a(&tool, &RyJointEditorTool::matAVisChanged);
    QSignalSpy b(&tool, &RyJointEditorTool::matBVisChanged);
    tool.setMatAVis(false);
    tool.setMatAVis(false);
    QCOMPARE(a.count(), 1);
    QCOMPARE(a.at(0).at(0).toBool(), false);
    QCOMPARE(b.count(), 0);
    tool.setMatBVis(false);
    QCOMPARE(b.count(), 1);
    QCOMPARE(a.count(), 1);
}

void RyJointEditorToolSettersTest::colors_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"Static", "Dynamic", "Selected", "Boundary"})
        QTest::newRow(name) << QByteArray(name);
}

void RyJointEditorToolSettersTest::colors()
{
    QFETCH(QByteArray, name);
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    const int redraws = tool.drawnDataChangeCount();
    const QByteArray slot = "set" + name + "Color";
    QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(QColor, QColor(11, 22, 33))));
    const RyJointToolDisplay &d = tool.display();
    const QColor color = name == "Static"     ? d.staticColor
                         : name == "Dynamic"  ? d.dynamicColor
                         : name == "Selected" ? d.selectedColor
                                              : d.boundaryColor;
    QCOMPARE(color, QColor(11, 22, 33));
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 1);
    const QString key = QString::fromLatin1(name);
    QCOMPARE(recorder.keys("set"), QStringList({key + "Red", key + "Green", key + "Blue"}));
    QCOMPARE(store.settings.getIntValue(key + "Red", -1), 11);
    QCOMPARE(store.settings.getIntValue(key + "Green", -1), 22);
    QCOMPARE(store.settings.getIntValue(key + "Blue", -1), 33);
}

void RyJointEditorToolSettersTest::clampedNumbers_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("stored");
    const auto add = [](const char *slot, const char *key, std::initializer_list<std::pair<int, int>> values) {
        for (const auto &[value, stored] : values)
            QTest::addRow("%s(%d)", slot, value) << QByteArray(slot) << QString::fromLatin1(key) << value << stored;
    };
    add("setHandleDrawing", "DrawHandles", {{-1, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 0}, {5, 0}});
    add("setSphereDrawing", "SphereDrawingEnabled", {{-1, 0}, {0, 0}, {2, 2}, {3, 0}});
    add("setSphereOpacity", "SphereOpacity", {{-1, 50}, {0, 0}, {255, 255}, {256, 50}});
    add("setSphereLineDensity", "SphereDensity", {{0, 1}, {-5, 1}, {1, 1}, {360, 360}, {361, 360}, {1000, 360}});
    add("setWeightMapMode", "WeightMapMode", {{-1, 1}, {0, 0}, {2, 2}, {3, 1}});
    add("setWeightOpacity", "WeightOpacity", {{-1, 160}, {0, 0}, {255, 255}, {256, 160}});
    add("setBoundaryStyle", "BoundaryStyle", {{-1, 1}, {0, 0}, {1, 1}, {2, 1}});
    add("setBoneColoringStyle", "BoneColoringStyle", {{-1, 1}, {0, 0}, {1, 1}, {2, 1}});
}

void RyJointEditorToolSettersTest::clampedNumbers()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, key);
    QFETCH(int, value);
    QFETCH(int, stored);
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    const int redraws = tool.drawnDataChangeCount();
    QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(int, value)));
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 1);
    QCOMPARE(recorder.accesses, QStringList{"Joint Editor Tool/" + key + " set int"});
    QCOMPARE(store.settings.getIntValue(key, -99), stored);
    const RyJointToolDisplay &d = tool.display();
    const int shown = key == "DrawHandles"            ? d.handleDrawing
                      : key == "SphereDrawingEnabled" ? d.sphereDrawing
                      : key == "SphereOpacity"        ? d.sphereOpacity
                      : key == "SphereDensity"        ? d.sphereLineDensity
                      : key == "WeightMapMode"        ? d.weightMapMode
                      : key == "WeightOpacity"        ? d.weightOpacity
                      : key == "BoundaryStyle"        ? d.boundaryStyle
                                                      : d.boneColoringStyle;
    QCOMPARE(shown, stored);
}

void RyJointEditorToolSettersTest::storedBools()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    const int redraws = tool.drawnDataChangeCount();
    tool.setGhostBones(true);
    tool.setShowManipulators(false);
    QVERIFY(tool.display().ghostBones);
    QVERIFY(!tool.display().showManipulators);
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 2);
    QCOMPARE(recorder.accesses,
             QStringList({"Joint Editor Tool/GhostBones set bool", "Joint Editor Tool/ShowManipulators set bool"}));
}

void RyJointEditorToolSettersTest::axisHobbleIsWrittenAsInt()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    const int redraws = tool.drawnDataChangeCount();
    tool.setRestrictRotationAxes(true);
    QVERIFY(tool.display().restrictRotationAxes);
    QCOMPARE(tool.drawnDataChangeCount(), redraws);
    QCOMPARE(recorder.accesses, QStringList{"Joint Editor Tool/AxisHobble set int"});
    QCOMPARE(store.settings.getIntValue("AxisHobble", -1), 1);
    RyJointEditorTool second;
    QVERIFY(second.display().restrictRotationAxes);
    tool.setRestrictRotationAxes(false);
    QCOMPARE(store.settings.getIntValue("AxisHobble", -1), 0);
}

void RyJointEditorToolSettersTest::unstoredFlags()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    const RySettingsRecorder recorder;
    int redraws = tool.drawnDataChangeCount();
    tool.setPushNeighborAngles(false);
    tool.setPropagationEnabled(true);
    tool.setPropagateTranslation(true);
    tool.setPropagateOrientation(true);
    tool.setBoneCreationActive(true);
    tool.setAutoAlign(true);
    tool.setAutoSnapEndPoints(true);
    QVERIFY(!tool.pushNeighborAngles());
    QVERIFY(tool.propagationEnabled());
    QVERIFY(tool.propagateTranslation());
    QVERIFY(tool.propagateOrientation());
    QVERIFY(tool.boneCreationActive());
    QVERIFY(tool.autoAlign());
    QVERIFY(tool.autoSnapEndPoints());
    QCOMPARE(tool.drawnDataChangeCount(), redraws);
    tool.setDrawMeshBoundaries(false);
    tool.setShowBoneHierarchy(false);
    QVERIFY(!tool.display().drawMeshBoundaries);
    QVERIFY(!tool.display().showBoneHierarchy);
    QCOMPARE(tool.drawnDataChangeCount(), redraws + 2);
    QVERIFY(recorder.accesses.isEmpty());
}

void RyJointEditorToolSettersTest::boneModeByPosition()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    for (int position = 0; position < 4; ++position) {
        tool.setBoneMode(position);
        QCOMPARE(int(tool.boneDrawMode()), 3 - position);
    }
    tool.setBoneMode(-1);
    QCOMPARE(tool.boneDrawMode(), RyJointEditorTool::EntireFigure);
    tool.setBoneMode(4);
    QCOMPARE(tool.boneDrawMode(), RyJointEditorTool::NoBones);
}

RY_TEST(RyJointEditorToolSettersTest)

#include "tst_RyJointEditorToolSetters.moc"
