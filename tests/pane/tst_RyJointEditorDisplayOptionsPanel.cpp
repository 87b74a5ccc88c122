#include "parametric/ParametricScene.h"
#include "support/RyTest.h"
#include "tool/RyToolScene.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorDisplayOptionsPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>

namespace {

struct Box
{
    int row, column;
    const char *text;
    const char *name;
    bool RyJointToolDisplay::*flag;
    bool ofParam;
};

using Display = RyJointToolDisplay;
const Box boxes[] = {
    {1, 0, "Vertex Weights", "JointEditorVertexWeightsCbx", &Display::weightVis, true},
    {1, 1, "Joint Angles", "JointEditorJointAnglesCbx", &Display::angleVis, true},
    {2, 0, "Static Sphere", "JointEditorStaticSphereCbx", &Display::matBVis, true},
    {2, 1, "Twist Blend Zone", "JointEditorTwistBlendZoneCbx", &Display::twistVis, true},
    {3, 0, "Dynamic Sphere", "JointEditorDynamicSphereCbx", &Display::matAVis, true},
    {3, 1, "Smooth Zones", "JointEditorSmoothZonesCbx", &Display::smoothVis, true},
    {4, 0, "Mesh Boundaries", "JointEditorMeshBoundariesCbx", &Display::drawMeshBoundaries, false},
    {4, 1, "Relationships", "JointEditorRelationshipsCbx", &Display::showBoneHierarchy, false},
    {5, 0, "Bone Ghosting", "JointEditorBoneGhostingCbx", &Display::ghostBones, false},
    {5, 1, "Manipulators", "JointEditorManipulatorsCbx", &Display::showManipulators, false},
};

} // namespace

class RyJointEditorDisplayOptionsPanelTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_scene = std::make_unique<RyToolScene>();
        m_panel = std::make_unique<RyJointEditorDisplayOptionsPanel>(tool());
        m_panel->show();
    }
    void cleanup()
    {
        m_panel.reset();
        m_doll.reset();
        m_scene.reset();
    }

    void looks()
    {
        const auto *group = m_panel->findChild<QGroupBox *>(QStringLiteral("JointEditorDisplayGrpBox"));
        QCOMPARE(group->title(), QStringLiteral("Display :"));
        QVERIFY(qobject_cast<QVBoxLayout *>(group->layout()));
        const auto *label = m_panel->findChild<QLabel *>(QStringLiteral("JointEditorVisibleBonesLbl"));
        QCOMPARE(label->text(), QStringLiteral("Visible Bones :"));
        QCOMPARE(label->buddy(), bones());
        QCOMPARE(bones()->accessibleName(), QStringLiteral("Visible Bones"));
        int row = 0, column = 0, rows = 0, columns = 0;
        grid()->getItemPosition(0, &row, &column, &rows, &columns);
        QCOMPARE(QRect(column, row, columns, rows), QRect(0, 0, 2, 1));
        for (const QWidget *widget : {static_cast<const QWidget *>(label), static_cast<const QWidget *>(bones())})
            QVERIFY(grid()->itemAt(0)->layout()->indexOf(const_cast<QWidget *>(widget)) >= 0);
        for (const Box &box : boxes) {
            const auto *widget = qobject_cast<QCheckBox *>(grid()->itemAtPosition(box.row, box.column)->widget());
            QCOMPARE(widget->text(), QLatin1String(box.text));
            QCOMPARE(widget->objectName(), QLatin1String(box.name));
        }
    }

    void boxesSwitch()
    {
        emit tool()->paramChanged(param());
        for (const Box &box : boxes) {
            auto *widget = m_panel->findChild<QCheckBox *>(QLatin1String(box.name));
            const bool before = tool()->display().*box.flag;
            QCOMPARE(widget->isChecked(), before);
            QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(8, widget->height() / 2));
            QCOMPARE(widget->isChecked(), !before);
            QCOMPARE(tool()->display().*box.flag, !before);
            QTest::keyClick(widget, Qt::Key_Space);
            QCOMPARE(tool()->display().*box.flag, before);
        }
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void startsAsTheToolStands()
    {
        m_panel.reset();
        for (const Box &box : boxes)
            setFlag(box, !(tool()->display().*box.flag));
        tool()->setBoneDrawMode(RyJointEditorTool::SelectedBone);
        m_panel = std::make_unique<RyJointEditorDisplayOptionsPanel>(tool());
        for (const Box &box : boxes)
            QCOMPARE(m_panel->findChild<QCheckBox *>(QLatin1String(box.name))->isChecked(),
                     tool()->display().*box.flag);
        QCOMPARE(bones()->currentIndex(), 2);
    }

    void visibleBones()
    {
        QStringList items;
        for (int i = 0; i < bones()->count(); ++i)
            items.append(bones()->itemText(i));
        QCOMPARE(items, (QStringList{"Entire Figure", "Selected, Children, and Parent", "Selected Only", "None"}));
        QCOMPARE(bones()->currentIndex(), 0);
        for (int mode : {2, 1, 0}) {
            QTest::keyClick(bones(), Qt::Key_Down);
            QCOMPARE(int(tool()->boneDrawMode()), mode);
            QCOMPARE(bones()->currentIndex(), 3 - mode);
        }
        QTest::keyClick(bones(), Qt::Key_Home);
        QCOMPARE(int(tool()->boneDrawMode()), 3);
        // It follows the tool without writing back.
        QSignalSpy activated(bones(), QOverload<int>::of(&QComboBox::activated));
        QSignalSpy changed(bones(), QOverload<int>::of(&QComboBox::currentIndexChanged));
        tool()->setBoneDrawMode(RyJointEditorTool::NoBones);
        QCOMPARE(bones()->currentIndex(), 3);
        QCOMPARE(activated.count() + changed.count(), 0);
        QVERIFY(QMetaObject::invokeMethod(m_panel.get(), "updateBoneMode",
                                          Q_ARG(RyJointEditorTool::BoneDrawMode, RyJointEditorTool::SelectedBone)));
        QCOMPARE(bones()->currentIndex(), 2);
        QCOMPARE(tool()->boneDrawMode(), RyJointEditorTool::NoBones);
    }

    void whatIsOfAParameterNeedsOne()
    {
        RyLegacyJointParam *current = param();
        for (RyLegacyJointParam *each : {static_cast<RyLegacyJointParam *>(nullptr), current}) {
            emit tool()->paramChanged(each);
            for (const Box &box : boxes)
                QCOMPARE(m_panel->findChild<QCheckBox *>(QLatin1String(box.name))->isEnabled(), each || !box.ofParam);
        }
        m_panel = std::make_unique<RyJointEditorDisplayOptionsPanel>(tool());
        QVERIFY(!m_panel->findChild<QCheckBox *>(QStringLiteral("JointEditorJointAnglesCbx"))->isEnabled());
    }

    void followsWhatScriptsSwitch()
    {
        for (const Box &box : boxes) {
            const auto *widget = m_panel->findChild<QCheckBox *>(QLatin1String(box.name));
            QSignalSpy toggles(widget, &QCheckBox::toggled);
            const bool before = tool()->display().*box.flag;
            for (const bool on : {!before, before, !before}) {
                setFlag(box, on);
                QVERIFY2(widget->isChecked() == on, box.name);
            }
            QCOMPARE(toggles.count(), 0);
        }
    }

    void slotsAreFoundByName()
    {
        const QMetaObject *meta = m_panel->metaObject();
        for (const char *slot : {"updateBoneMode(RyJointEditorTool::BoneDrawMode)", "updateParam(RyLegacyJointParam*)"})
            QVERIFY2(meta->indexOfSlot(slot) >= meta->methodOffset(), slot);
    }

private:
    RyJointEditorTool *tool() const { return m_scene->tool; }
    QComboBox *bones() const { return m_panel->findChild<QComboBox *>(QStringLiteral("JointEditorVisibleBonesCmb")); }
    QGridLayout *grid() const { return m_panel->findChild<QGridLayout *>(); }
    RyLegacyJointParam *param()
    {
        m_doll = std::make_unique<ParametricScene>(false);
        m_doll->makeJoints();
        return m_doll->param(m_doll->lTip, "jointy");
    }
    void setFlag(const Box &box, bool onOff) const
    {
        const std::pair<bool Display::*, void (RyJointEditorTool::*)(bool)> setters[] = {
            {&Display::weightVis, &RyJointEditorTool::setWeightVis},
            {&Display::angleVis, &RyJointEditorTool::setAngleVis},
            {&Display::matBVis, &RyJointEditorTool::setMatBVis},
            {&Display::twistVis, &RyJointEditorTool::setTwistVis},
            {&Display::matAVis, &RyJointEditorTool::setMatAVis},
            {&Display::smoothVis, &RyJointEditorTool::setSmoothVis},
            {&Display::drawMeshBoundaries, &RyJointEditorTool::setDrawMeshBoundaries},
            {&Display::showBoneHierarchy, &RyJointEditorTool::setShowBoneHierarchy},
            {&Display::ghostBones, &RyJointEditorTool::setGhostBones},
            {&Display::showManipulators, &RyJointEditorTool::setShowManipulators},
        };
        for (const auto &[flag, setter] : setters) {
            if (flag == box.flag)
                (tool()->*setter)(onOff);
        }
    }

    std::unique_ptr<RyToolScene> m_scene;
    std::unique_ptr<ParametricScene> m_doll;
    std::unique_ptr<RyJointEditorDisplayOptionsPanel> m_panel;
};

RY_TEST(RyJointEditorDisplayOptionsPanelTest)
#include "tst_RyJointEditorDisplayOptionsPanel.moc"
