#include "support/RyTest.h"

#include "RyParamStage.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorDisplayOptionsPanel.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"

#include <QCheckBox>
#include <QComboBox>

/// What the display options panel switches is drawn, or is not.
class RyDisplayPanelDrawingTest : public QObject
{
    Q_OBJECT
private slots:
    void boxes_data()
    {
        QTest::addColumn<QString>("box");
        for (const char *kind : {"MeshBoundaries", "Relationships", "BoneGhosting", "Manipulators"})
            QTest::newRow(kind) << QStringLiteral("JointEditor%1Cbx").arg(QLatin1String(kind));
    }
    void boxes()
    {
        if (!RyDrawingStage::hasGL())
            QSKIP("no OpenGL");
        QFETCH(QString, box);
        RyDrawingStage stage;
        pairShin(stage);
        stage.pose();
        stage.select(stage.lShin);
        RyJointEditorDisplayOptionsPanel panel(stage.tool);
        auto *widget = panel.findChild<QCheckBox *>(box);
        widget->setChecked(true);
        const QVector<int> with = drawn(stage);
        QTest::keyClick(widget, Qt::Key_Space);
        QVERIFY(!widget->isChecked());
        const QVector<int> without = drawn(stage);
        // Ghosts are bones in another colour; everything else comes on top.
        if (box == QLatin1String("JointEditorBoneGhostingCbx"))
            QVERIFY(with != without);
        else
            QVERIFY(with[1] > without[1]);
        QTest::keyClick(widget, Qt::Key_Space);
        QCOMPARE(drawn(stage), with);
    }

    void boxesOfParameters_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("param");
        for (const auto &[kind, param] : {std::pair("VertexWeights", "jointz"), std::pair("JointAngles", "jointz"),
                                          std::pair("StaticSphere", "jointz"), std::pair("DynamicSphere", "jointz"),
                                          std::pair("TwistBlendZone", "twistx"), std::pair("SmoothZones", "smoo")})
            QTest::newRow(kind) << QStringLiteral("JointEditor%1Cbx").arg(QLatin1String(kind)) << QString(param);
    }
    void boxesOfParameters()
    {
        if (!RyDrawingStage::hasGL())
            QSKIP("no OpenGL");
        QFETCH(QString, box);
        QFETCH(QString, param);
        RyParamStage stage;
        RyJointEditorDisplayOptionsPanel panel(stage.tool);
        for (QCheckBox *each : panel.findChildren<QCheckBox *>()) {
            if (each->objectName() != QLatin1String("JointEditorManipulatorsCbx"))
                each->setChecked(false);
        }
        if (param == QLatin1String("twistx"))
            stage.takeTwist();
        else if (param == QLatin1String("smoo"))
            stage.takeSmooth();
        else
            stage.takeBend();
        auto *widget = panel.findChild<QCheckBox *>(box);
        QVERIFY(widget->isEnabled());
        const auto without = contents(stage);
        QTest::keyClick(widget, Qt::Key_Space);
        QVERIFY(widget->isChecked());
        const auto with = contents(stage);
        QVERIFY2(with.size() > without.size(), qPrintable(QString::number(with.size())));
        // Nothing but that: whatever was drawn is drawn still.
        for (const QString &primitive : without)
            QVERIFY(with.contains(primitive));
        QTest::keyClick(widget, Qt::Key_Space);
        QCOMPARE(contents(stage), without);
    }

    void visibleBones()
    {
        if (!RyDrawingStage::hasGL())
            QSKIP("no OpenGL");
        RyDrawingStage stage;
        stage.pose();
        stage.select(stage.lShin);
        RyJointEditorDisplayOptionsPanel panel(stage.tool);
        auto *bones = panel.findChild<QComboBox *>(QStringLiteral("JointEditorVisibleBonesCmb"));
        // All; the shin, its child and its parent; the shin; none.
        for (int expected : {5, 3, 1, 0}) {
            QCOMPARE(int(RyDrawingStage::bodies(*stage.draw()).size()), expected);
            QTest::keyClick(bones, Qt::Key_Down);
        }
    }

private:
    /// What is drawn, by size, color and first place.
    static QStringList contents(RyDrawingStage &stage)
    {
        QStringList list;
        const auto recording = stage.draw();
        const auto add = [&](const RyGLRecorder::Primitive &primitive) {
            const auto color = primitive.color();
            const RyVec3 place = primitive.vertices.empty() ? RyVec3() : stage.world(primitive, 0);
            list.append(QStringLiteral("%1 vertices, %2 %3 %4 %5 at %6 %7 %8")
                            .arg(primitive.vertices.size())
                            .arg(color.r)
                            .arg(color.g)
                            .arg(color.b)
                            .arg(color.a)
                            .arg(double(place.x), 0, 'f', 2)
                            .arg(double(place.y), 0, 'f', 2)
                            .arg(double(place.z), 0, 'f', 2));
        };
        for (const auto &primitive : recording->primitives)
            add(primitive);
        for (const auto &elements : recording->elements)
            add(elements.primitive);
        return list;
    }
    /// Number of bones, of primitives, and of those that are seen through.
    static QVector<int> drawn(RyDrawingStage &stage)
    {
        const auto recording = stage.draw();
        int faint = 0;
        for (const auto &primitive : recording->primitives)
            faint += primitive.color().a < 1;
        return {int(RyDrawingStage::bodies(*recording).size()), int(recording->primitives.size()), faint};
    }
    /// A square that the shin has for its face group.
    static void pairShin(RyDrawingStage &stage)
    {
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
        mesh->setFacets({{{0, 1, 2, 3}}});
        mesh->createFaceGroup(QStringLiteral("shin"));
        mesh->setGroupsOfFacets({0});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        stage.figure->setObject(object);
        auto *map = new RySelectionMap;
        map->addPair(QStringLiteral("shin"), stage.lShin, false);
        stage.figure->setSelectionMap(map);
    }
};

RY_TEST(RyDisplayPanelDrawingTest)
#include "tst_displayPanel.moc"
