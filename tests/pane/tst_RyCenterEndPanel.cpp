#include "RyGroupedScene.h"
#include "slotsOf.h"
#include "support/RyTest.h"

#include "pluginsource/RyJointTools/pane/RyBindingBulgeView.h"
#include "pluginsource/RyJointTools/pane/RyCenterEndGeneralPage.h"
#include "pluginsource/RyJointTools/pane/RyCenterEndPanel.h"
#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QAccessible>
#include <QTabWidget>

namespace {

/// A skinned figure whose left thigh bulges about Z at both sides and about X at the right, and whose shin does not.
struct Scene : RyGroupedScene
{
    Scene()
        : skin(new RySkinBinding), panel(*tool->frame()->findChild<RyCenterEndPanel *>()),
          tabs(*panel.findChild<QTabWidget *>(QStringLiteral("JointEditorParameterTabWgt"))),
          view(*panel.findChild<RyBindingBulgeView *>(QStringLiteral("JointEditorBindingBulgeView")))
    {
        for (RyBone *bone : {lThigh, lShin}) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            binding->setWeights(new RyWeightMap(bone->getName()));
            skin->addBoneBinding(binding);
        }
        thigh()->setBulgeBinding(2, makeBulge(2, "outside", "inside"));
        thigh()->setBulgeBinding(0, makeBulge(0, nullptr, "calf"));
        figure->getObject()->addModifier(skin);
        tool->frame()->resize(350, 900);
        tool->frame()->show();
        QApplication::setActiveWindow(tool->frame());
        select(lThigh);
        ryUndoStack()->clearAll();
    }
    RyBoneBinding *thigh() const { return skin->findBoneBinding(lThigh); }
    static RyBulgeBinding *makeBulge(int axis, const char *left, const char *right)
    {
        auto *bulge = new RyBulgeBinding(axis);
        if (left)
            bulge->setLeftWeights(new RyWeightMap(QString::fromLatin1(left)));
        if (right)
            bulge->setRightWeights(new RyWeightMap(QString::fromLatin1(right)));
        bulge->adjustBulgeValues(0.25f, -0.5f, 0.75f, 1.5f);
        return bulge;
    }
    bool hasBulges() const { return tabs.isTabEnabled(1); }
    /// Rows, deeper ones after a dot for each level; of leaves with what their field shows.
    QStringList rows() const
    {
        QStringList list;
        for (QTreeWidgetItemIterator it(&view); *it; ++it) {
            QString row = (*it)->text(0);
            for (const QTreeWidgetItem *item = (*it)->parent(); item; item = item->parent())
                row.prepend(QLatin1Char('.'));
            if (const RyFloatPropertyWgt *field = fieldOf(*it))
                row += QLatin1Char('=') + field->numberField()->text();
            list.append(row);
        }
        return list;
    }
    RyFloatPropertyWgt *fieldOf(QTreeWidgetItem *item) const
    {
        return qobject_cast<RyFloatPropertyWgt *>(view.itemWidget(item, 1));
    }
    RyFloatPropertyWgt *field(int axis, int side, int sign) const
    {
        return fieldOf(view.topLevelItem(axis)->child(side)->child(sign));
    }

    RySkinBinding *skin;
    RyCenterEndPanel &panel;
    QTabWidget &tabs;
    RyBindingBulgeView &view;
};

} // namespace

/// The tabs that show a node, and how its bulges are listed.
class RyCenterEndPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void looks()
    {
        Scene scene;
        QCOMPARE(slotsOf<RyCenterEndPanel>(), QStringList({"updateNode(RyNode*)"}));
        QCOMPARE(scene.panel.objectName(), QStringLiteral("JointEditorCenterEndPanel"));
        QCOMPARE(scene.tabs.count(), 2);
        QCOMPARE(scene.tabs.tabText(0), QStringLiteral("General"));
        QCOMPARE(scene.tabs.tabText(1), QStringLiteral("Bulges"));
        QVERIFY(qobject_cast<RyCenterEndGeneralPage *>(scene.tabs.widget(0)));
        QCOMPARE(scene.tabs.widget(0)->objectName(), QStringLiteral("JointEditorCenterEndGeneralPage"));
        QCOMPARE(scene.tabs.widget(1), static_cast<QWidget *>(&scene.view));
        QCOMPARE(scene.view.columnCount(), 2);
        QCOMPARE(scene.view.headerItem()->text(0), QStringLiteral("Bulge"));
        QCOMPARE(scene.view.headerItem()->text(1), QStringLiteral("Property"));
        QVERIFY(!scene.view.allColumnsShowFocus());
    }

    void listsBulges()
    {
        Scene scene;
        QVERIFY(scene.hasBulges());
        QCOMPARE(scene.rows(),
                 QStringList({"X Axis", ".calf", "..Pos=0.75", "..Neg=1.5", "Y Axis", "Z Axis", ".outside",
                              "..Pos=0.25", "..Neg=-0.5", ".inside", "..Pos=0.75", "..Neg=1.5"}));
        const RyBulgeBinding &bulge = *scene.thigh()->getBulgeBinding(2);
        QCOMPARE(scene.field(2, 0, 0)->getFirstProperty(), bulge.getPosLeftBulgeController());
        QCOMPARE(scene.field(2, 0, 1)->getFirstProperty(), bulge.getNegLeftBulgeController());
        QCOMPARE(scene.field(2, 1, 0)->getFirstProperty(), bulge.getPosRightBulgeController());
        QCOMPARE(scene.field(2, 1, 1)->getFirstProperty(), bulge.getNegRightBulgeController());
        scene.tabs.setCurrentIndex(1);
        QCoreApplication::processEvents();
        for (QTreeWidgetItemIterator it(&scene.view); *it; ++it) {
            QVERIFY((*it)->childCount() == 0 || (*it)->isExpanded());
            if (const RyFloatPropertyWgt *field = scene.fieldOf(*it)) {
                QVERIFY(field->isVisible() && field->label()->isHidden());
                QVERIFY(field->numberField()->height() <= scene.view.visualItemRect(*it).height());
                QVERIFY(!field->numberField()->accessibleName().isEmpty());
            } else {
                // A name has the whole row.
                QVERIFY((*it)->isFirstColumnSpanned());
            }
        }
        // Screen readers find a name in every cell.
        QAccessibleTableInterface *cells = QAccessible::queryAccessibleInterface(&scene.view)->tableInterface();
        QCOMPARE(cells->rowCount(), int(scene.rows().size()));
        for (int row = 0; row < cells->rowCount(); ++row) {
            for (int column : {0, 1})
                QVERIFY(!cells->cellAt(row, column)->text(QAccessible::Name).isEmpty());
        }
    }

    void bulgesAreEdited()
    {
        Scene scene;
        scene.tabs.setCurrentIndex(1);
        RyFloatPropertyWgt *field = scene.field(2, 1, 0);
        const QString before = scene.dump();
        field->numberField()->setFocus();
        field->numberField()->selectAll();
        QTest::keyClicks(field->numberField(), QStringLiteral("*2"));
        QTest::keyClick(field->numberField(), Qt::Key_Return);
        QCOMPARE(scene.thigh()->getBulgeBinding(2)->getPosRightBulgeController()->getValue(), 1.5f);
        // The list is the same one.
        QCOMPARE(scene.field(2, 1, 0), field);
        QVERIFY(field->numberField()->hasFocus());
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        QCOMPARE(field->numberField()->text(), QStringLiteral("0.75"));
    }

    void theTabKeyGoesFromFieldToField()
    {
        Scene scene;
        scene.tabs.setCurrentIndex(1);
        scene.view.setFocus();
        QList<QWidget *> wanted;
        for (QTreeWidgetItemIterator it(&scene.view); *it; ++it) {
            if (scene.fieldOf(*it))
                wanted.append(scene.fieldOf(*it)->numberField());
        }
        QCOMPARE(wanted.size(), 6);
        wanted.append(qobject_cast<QWidget *>(scene.tool->frame()->getDividerBar()));
        for (QWidget *each : wanted) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), each);
        }
    }

    void onlyWhatHasBulges()
    {
        Scene scene;
        scene.tabs.setCurrentIndex(1);
        for (RyNode *node : {static_cast<RyNode *>(scene.lShin), static_cast<RyNode *>(scene.figure), scene.prop,
                             static_cast<RyNode *>(scene.hip), static_cast<RyNode *>(nullptr)}) {
            scene.select(node);
            QVERIFY(!scene.hasBulges());
            QCOMPARE(scene.rows(), QStringList());
            QCOMPARE(scene.tabs.currentIndex(), 0);
        }
        scene.select(scene.lThigh);
        QVERIFY(scene.hasBulges());
        QCOMPARE(scene.tabs.currentIndex(), 1);
        // By hand, whatever the tool's node is.
        scene.panel.updateNode(scene.lShin);
        QVERIFY(!scene.hasBulges());
    }

    /// A map without a name is told by its side.
    void mapsWithoutNames()
    {
        Scene scene;
        scene.thigh()->setBulgeBinding(0, Scene::makeBulge(0, "", nullptr));
        scene.thigh()->setBulgeBinding(1, Scene::makeBulge(1, nullptr, ""));
        scene.thigh()->setBulgeBinding(2, Scene::makeBulge(2, "", "inside"));
        QCOMPARE(scene.rows(), QStringList({"X Axis", ".Left", "..Pos=0.25", "..Neg=-0.5", "Y Axis", ".Right",
                                            "..Pos=0.75", "..Neg=1.5", "Z Axis", ".Left", "..Pos=0.25", "..Neg=-0.5",
                                            ".inside", "..Pos=0.75", "..Neg=1.5"}));
        QCOMPARE(scene.field(1, 0, 1)->numberField()->accessibleName(), QStringLiteral("Y Axis Right Neg"));
    }

    void followsTheNames()
    {
        Scene scene;
        RyWeightMap *map = scene.thigh()->getBulgeBinding(2)->getRightWeights();
        map->setName("hamstring");
        QVERIFY(scene.rows().contains(".hamstring") && !scene.rows().contains(".inside"));
        QCOMPARE(scene.field(2, 1, 0)->numberField()->accessibleName(), QStringLiteral("Z Axis hamstring Pos"));
        map->setName("");
        QVERIFY(scene.rows().contains(".Right"));
        // What is not shown has no say.
        scene.select(scene.lShin);
        map->setName("again");
        QCOMPARE(scene.rows(), QStringList());
    }

    void anotherMapOfTheSameName()
    {
        Scene scene;
        scene.thigh()->getBulgeBinding(2)->setRightWeights(new RyWeightMap(QStringLiteral("inside")));
        scene.thigh()->getBulgeBinding(2)->getRightWeights()->setName("hamstring");
        QVERIFY(scene.rows().contains(".hamstring"));
    }

    /// Bulges are of weight-mapped figures.
    void aSkeletonThatIsNoFigure()
    {
        Scene scene;
        auto *skeleton = new RySkeleton;
        skeleton->setObject(new RyObject);
        auto *bone = new RyBone;
        skeleton->addNodeChild(bone);
        ryScene()->addNode(skeleton);
        ryScene()->addNode(bone);
        auto *skin = new RySkinBinding;
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        skin->addBoneBinding(binding);
        binding->setBulgeBinding(1, Scene::makeBulge(1, "outside", "inside"));
        skeleton->getObject()->addModifier(skin);
        QCOMPARE(RySkinBinding::findSkinFromNode(bone), skin);
        QVERIFY(binding->hasBulgeWeights());
        scene.select(bone);
        QVERIFY(!scene.hasBulges());
        QCOMPARE(scene.rows(), QStringList());
    }

    void followsBulges()
    {
        Scene scene;
        const QStringList before = scene.rows();
        {
            RyUndoStackHold hold;
            scene.thigh()->setBulgeBinding(0, nullptr);
            hold.accept("Remove");
        }
        QCOMPARE(scene.rows(), QStringList({"X Axis", "Y Axis", "Z Axis", ".outside", "..Pos=0.25", "..Neg=-0.5",
                                            ".inside", "..Pos=0.75", "..Neg=1.5"}));
        ryUndoStack()->undo();
        QCOMPARE(scene.rows(), before);
        scene.thigh()->getBulgeBinding(2)->setLeftWeights(nullptr);
        QVERIFY(!scene.rows().contains(".outside"));
        scene.thigh()->setBulgeBinding(0, nullptr);
        scene.thigh()->setBulgeBinding(2, nullptr);
        QVERIFY(!scene.hasBulges());
        QCOMPARE(scene.rows(), QStringList());
        scene.thigh()->setBulgeBinding(1, Scene::makeBulge(1, "new", nullptr));
        QVERIFY(scene.hasBulges());
        QVERIFY(scene.rows().contains(".new"));
    }

    void followsTheSkin()
    {
        Scene scene;
        const QStringList before = scene.rows();
        {
            RyUndoStackHold hold;
            scene.figure->getObject()->removeModifier(scene.skin);
            hold.accept("Remove");
        }
        QVERIFY(!scene.hasBulges());
        QCOMPARE(scene.rows(), QStringList());
        ryUndoStack()->undo();
        QVERIFY(scene.hasBulges());
        QCOMPARE(scene.rows(), before);
        {
            RyUndoStackHold hold;
            scene.skin->removeBoneBinding(scene.thigh());
            hold.accept("Remove");
        }
        QVERIFY(!scene.hasBulges());
        ryUndoStack()->undo();
        QCOMPARE(scene.rows(), before);
    }
};

RY_TEST(RyCenterEndPanelTest)

#include "tst_RyCenterEndPanel.moc"
