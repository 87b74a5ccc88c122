#include "support/RyTest.h"

#include "RySettingsForTest.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include <QProcess>

/// Settings that one run of the program leaves for the next, value by value.
class RyStoredSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void nextRunReadsWhatThisOneWrote();
    void eachSwitchBothWays_data();
    void eachSwitchBothWays();
    void storedTypes();

private:
    /// What a tool of another process reads.
    static QStringList readElsewhere(const RySettingsStoreForTest &store)
    {
        QProcess process;
        process.start(QStringLiteral(RY_SETTINGS_PROGRAM), {store.folder.path()});
        if (!process.waitForFinished(60000) || process.exitCode() != 0)
            return {QString::fromLocal8Bit(process.readAllStandardError())};
        return QString::fromLocal8Bit(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
};

void RyStoredSettingsTest::nextRunReadsWhatThisOneWrote()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    tool.setSphereOpacity(13);
    tool.setSphereLineDensity(17);
    tool.setWeightMapMode(1);
    tool.setWeightOpacity(91);
    tool.setHandleDrawing(1);
    tool.setSphereDrawing(2);
    tool.setBoneDrawMode(RyJointEditorTool::SelectedBone);
    tool.setBoundaryStyle(0);
    tool.setBoneColoringStyle(0);
    tool.setRestrictRotationAxes(true);
    tool.setGhostBones(true);
    tool.setShowManipulators(false);
    tool.setDynamicColor(QColor(1, 2, 3));
    tool.setStaticColor(QColor(14, 25, 36));
    tool.setSelectedColor(QColor(47, 58, 69));
    tool.setBoundaryColor(QColor(70, 81, 92));
    QCOMPARE(
        readElsewhere(store),
        QStringList({"sphereOpacity 13", "sphereLineDensity 17", "weightMapMode 1", "weightOpacity 91",
                     "handleDrawing 1", "sphereDrawing 2", "boneDrawMode 1", "boundaryStyle 0", "boneColoringStyle 0",
                     "restrictRotationAxes 1", "ghostBones 1", "showManipulators 0", "dynamicColor 1 2 3",
                     "staticColor 14 25 36", "selectedColor 47 58 69", "boundaryColor 70 81 92"}));
}

void RyStoredSettingsTest::eachSwitchBothWays_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("manipulators") << "showManipulators" << QByteArray("setShowManipulators");
    QTest::newRow("ghosts") << "ghostBones" << QByteArray("setGhostBones");
    QTest::newRow("restricted axes") << "restrictRotationAxes" << QByteArray("setRestrictRotationAxes");
}

void RyStoredSettingsTest::eachSwitchBothWays()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, slot);
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    // There and back: what is stored last counts, also where it is the default again.
    for (const bool onOff : {true, false, true}) {
        QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(bool, !onOff)));
        QVERIFY(QMetaObject::invokeMethod(&tool, slot.constData(), Q_ARG(bool, onOff)));
        QVERIFY2(readElsewhere(store).contains(QStringLiteral("%1 %2").arg(name).arg(int(onOff))), qPrintable(name));
    }
}

void RyStoredSettingsTest::storedTypes()
{
    const RySettingsStoreForTest store;
    RyJointEditorTool tool;
    tool.setShowManipulators(false);
    QCOMPARE(store.settings.getBoolValue(QStringLiteral("ShowManipulators"), true), false);
    tool.setShowManipulators(true);
    QCOMPARE(store.settings.getBoolValue(QStringLiteral("ShowManipulators"), false), true);
}

RY_TEST(RyStoredSettingsTest)

#include "tst_storedSettings.moc"
