#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/dialogs/RyConvertPropToFigureDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEConversionActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

#include <functional>

namespace {

const QString propWarning = QStringLiteral(
    "Selection Error|A simple object in the scene containing geometry must be selected to continue.|Ok|warning");
const QString figureWarning =
    QStringLiteral("Selection Error|A figure in the scene must be selected to continue.|Ok|warning");

void giveMesh(RyNode *node, int vertices)
{
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    for (int i = 0; i < vertices; ++i)
        positions.emplace_back(float(i), float(i * i), 1.0f);
    mesh->setPositions(positions);
    if (vertices >= 3)
        mesh->setFacets({{{0, 1, 2, -1}, -1}});
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    node->setObject(object);
}

/// A shape whose geometry has no facets.
class PointShape : public RyShape
{
public:
    PointShape() { m_points->setPositions({{1, 2, 3}, {4, 5, 6}}); }
    RyVertexMesh *getGeometry() const override { return m_points.get(); }

private:
    RyRef<RyVertexMesh> m_points{new RyVertexMesh};
};

void givePoints(RyNode *node)
{
    auto *object = new RyObject;
    object->addShape(new PointShape);
    node->setObject(object);
}

/// The only figure besides the scene's own; null when there is none.
RyFigure *newFigure(const RyToolScene &scene)
{
    for (RySkeleton *skeleton : ryScene()->getSkeletons()) {
        if (skeleton != scene.figure)
            return qobject_cast<RyFigure *>(skeleton);
    }
    return nullptr;
}

template<class Widget>
Widget *child(const QWidget &dialog, const char *suffix)
{
    return dialog.findChild<Widget *>(QStringLiteral("ConvertPropToFigure") + QLatin1String(suffix));
}

} // namespace

/// Props become figures, figures become props.
class RyConversionActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void looks()
    {
        const RyConvertPropToFigureDlg dialog;
        QCOMPARE(dialog.objectName(), QStringLiteral("ConvertPropToFigureDlg"));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Convert Prop to Figure"));
        QCOMPARE(child<QLabel>(dialog, "RootBoneLbl")->text(), QStringLiteral("Root Bone Name :"));
        QCOMPARE(child<QLabel>(dialog, "WeightModeLbl")->text(), QStringLiteral("Rigging Type :"));
        const auto *name = child<QLineEdit>(dialog, "RootBoneLEdit");
        QCOMPARE(name->text(), QStringLiteral("Bone"));
        QCOMPARE(name->placeholderText(), QStringLiteral("The name of the root bone (e.g., \"hip\")..."));
        QVERIFY(qobject_cast<const RyNodeNameValidator *>(name->validator()));
        const auto *modes = child<QWidget>(dialog, "RiggingModeOptionWgt");
        QVERIFY(qobject_cast<QVBoxLayout *>(modes->layout()));
        QStringList buttons;
        for (const QRadioButton *button : modes->findChildren<QRadioButton *>())
            buttons << button->objectName().mid(19) << button->text() << (button->isChecked() ? "on" : "off");
        QCOMPARE(buttons,
                 QStringList({"KorvexRBtn", "Korvex Weight Mapping", "on", "GeneralRBtn", "General Weight Mapping",
                              "off", "LegacyRBtn", "Parametric Joint Parameters", "off"}));
        const auto *parametric = child<QRadioButton>(dialog, "LegacyRBtn");
        QVERIFY(parametric->isEnabled());
        const auto *inherit = child<QCheckBox>(dialog, "InheritParentSkeletonCbx");
        QCOMPARE(inherit->text(), QStringLiteral("Inherit Skeleton of Parent"));
        QVERIFY(inherit->isChecked() && !name->isEnabled());
        const auto *grid = dialog.findChild<QGridLayout *>();
        QCOMPARE(grid->spacing(), RyStandardMetrics::Spacing);
        // Each label stands left of its field, and the box below both.
        const auto at = [&](int row, int column) -> const QWidget * {
            QLayoutItem *item = grid->itemAtPosition(row, column);
            return item ? item->widget() : nullptr;
        };
        QCOMPARE(at(0, 0), child<QLabel>(dialog, "RootBoneLbl"));
        QCOMPARE(at(0, 1), name);
        QCOMPARE(at(1, 0), child<QLabel>(dialog, "WeightModeLbl"));
        QCOMPARE(at(1, 1), modes);
        QCOMPARE(at(2, 0), inherit);
        QCOMPARE(at(2, 1), inherit);
        QCOMPARE(grid->contentsMargins(), QMargins(4, 4, 4, 4));
        QCOMPARE(modes->layout()->contentsMargins(), QMargins());
        QCOMPARE(dialog.minimumWidth(), 300);
        QCOMPARE(dialog.minimumHeight(), dialog.maximumHeight());
        QVERIFY(dialog.findChild<QPushButton *>("BasicDialogApplyBtn")->isHidden());
    }

    void okNeedsANameOnlyForASkeletonOfItsOwn()
    {
        RyConvertPropToFigureDlg dialog;
        auto *name = child<QLineEdit>(dialog, "RootBoneLEdit");
        auto *inherit = child<QCheckBox>(dialog, "InheritParentSkeletonCbx");
        name->clear();
        QVERIFY(dialog.isAcceptEnabled());
        QCOMPARE(dialog.getRootBoneName(), QStringLiteral("Bone"));
        inherit->click();
        QVERIFY(name->isEnabled() && !dialog.isAcceptEnabled());
        name->setText(QStringLiteral("hip"));
        QVERIFY(dialog.isAcceptEnabled());
        name->setText(QStringLiteral("a/b"));
        QVERIFY(!dialog.isAcceptEnabled());
        inherit->click();
        QVERIFY(!name->isEnabled() && dialog.isAcceptEnabled());
        QVERIFY(dialog.inheritsParentSkeleton());
    }

    void refusesWhatIsNoPropWithGeometry()
    {
        RyWindowScene scene;
        auto *empty = new RyNode;
        giveMesh(empty, 0);
        auto *shapeless = new RyNode;
        shapeless->setObject(new RyObject);
        auto *points = new RyNode;
        givePoints(points);
        giveMesh(scene.lFoot, 3);
        for (RyNode *node : {empty, shapeless, points})
            ryScene()->addNode(node);
        RyJEConvertPropToFigureAction action;
        const QString before = scene.dump();
        for (RyNode *node : {static_cast<RyNode *>(nullptr), static_cast<RyNode *>(scene.figure),
                             static_cast<RyNode *>(scene.lFoot), scene.prop, empty, shapeless, points}) {
            ryScene()->selectAllNodes(false);
            if (node)
                node->select(true);
            RyMessageBoxes boxes;
            action.trigger();
            QCOMPARE(boxes.said, QStringList(propWarning));
            QCOMPARE(boxes.parents, QList<QWidget *>{RyApp::getDialogParent()});
        }
        ryScene()->selectAllNodes(false);
        QCOMPARE(scene.dump(), before);
    }

    void convertsAPropAndUndoesIt_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("local");
        QTest::newRow("local maps") << "ConvertPropToFigureKorvexRBtn" << true;
        QTest::newRow("general map") << "ConvertPropToFigureGeneralRBtn" << false;
    }

    void convertsAPropAndUndoesIt()
    {
        QFETCH(QString, mode);
        QFETCH(bool, local);
        RyWindowScene scene;
        giveMesh(scene.prop, 5);
        scene.select(scene.prop);
        ryUndoStack()->clearAll();
        const QString before = scene.dump();
        RyJEConvertPropToFigureAction action;
        int busy = 0;
        const QObject context;
        connect(ryScene(), &RyScene::nodeListChanged, &context,
                [&] { busy = std::max(busy, RyApp::busyCursorDepth()); });
        {
            RyDialogDriver driver;
            driver.setField(QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"), QStringLiteral("false"));
            driver.setField(QStringLiteral("ConvertPropToFigureRootBoneLEdit"), QStringLiteral("root"));
            driver.setField(mode, QStringLiteral("true"));
            action.trigger();
            QCOMPARE(driver.errors(), QStringList());
        }
        QCOMPARE(busy, 1);
        QCOMPARE(RyApp::busyCursorDepth(), 0);
        RyFigure *figure = newFigure(scene);
        QVERIFY(figure);
        QCOMPARE(int(figure->getAllBones().size()), 1);
        QCOMPARE(figure->getAllBones().front()->getName(), QStringLiteral("root"));
        const RyBoneBinding *binding = figure->getSkinBinding()->findBoneBinding(figure->getAllBones().front());
        QVERIFY(binding);
        QCOMPARE(binding->getWeights() == nullptr, local);
        const RyWeightMap *map = local ? binding->getLocalWeights(1) : binding->getWeights();
        for (int v = 0; v < 5; ++v)
            QCOMPARE(map->getWeight(v), quint16(65535));
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Convert Prop to Figure"));
        const QString after = scene.dump();
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
    }

    void boneJoinsTheSkeletonOfTheParent()
    {
        RyWindowScene scene;
        giveMesh(scene.prop, 4);
        scene.lFoot->addNodeChild(scene.prop, false);
        scene.select(scene.prop);
        const size_t bones = scene.figure->getAllBones().size();
        RyJEConvertPropToFigureAction action;
        RyDialogDriver driver; // nothing but OK: the box is ticked
        action.trigger();
        QCOMPARE(scene.figure->getAllBones().size(), bones + 1);
        QVERIFY(scene.figure->findBone(QStringLiteral("Bone")));
    }

    void convertsToAParametricFigure()
    {
        RyWindowScene scene;
        giveMesh(scene.prop, 5);
        scene.select(scene.prop);
        ryUndoStack()->clearAll();
        const QString before = scene.dump();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"), QStringLiteral("false"));
        driver.setField(QStringLiteral("ConvertPropToFigureRootBoneLEdit"), QStringLiteral("root"));
        driver.setField(QStringLiteral("ConvertPropToFigureLegacyRBtn"), QStringLiteral("true"));
        RyJEConvertPropToFigureAction().executeAction();
        QCOMPARE(driver.errors(), QStringList());
        QVERIFY(!newFigure(scene));
        auto *figure = qobject_cast<RyLegacyFigure *>(ryScene()->getSkeletons().back());
        QVERIFY(figure && figure->findBone(QStringLiteral("root")));
        QVERIFY(RyLegacyJoint::findJoint(figure->getAllBones().front()));
        QCOMPARE(RyApp::busyCursorDepth(), 0);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Convert Prop to Figure"));
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        // And back, by the action for it.
        ryScene()->setSelection({figure->getAllBones().front()});
        RyJEConvertFigureToPropAction().executeAction();
        QVERIFY(!qobject_cast<RySkeleton *>(ryScene()->findNode(QStringLiteral("prop"))));
        QCOMPARE(int(ryScene()->getSkeletons().size()), 1);
    }

    void parametricBoneMayNotJoinAWeightMappedSkeleton()
    {
        RyWindowScene scene;
        giveMesh(scene.prop, 4);
        scene.lFoot->addNodeChild(scene.prop, false);
        scene.select(scene.prop);
        ryUndoStack()->clearAll();
        const QString before = scene.dump();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("ConvertPropToFigureLegacyRBtn"), QStringLiteral("true"));
        RyJEConvertPropToFigureAction().executeAction();
        QCOMPARE(int(driver.records().size()), 2);
        QCOMPARE(driver.records().back().title, QStringLiteral("Selection Error"));
        QCOMPARE(driver.records().back().text,
                 QStringLiteral("A bone with joint parameters cannot join the weight mapped skeleton of the parent. "
                                "Convert the object without inheriting that skeleton, or with weight mapping."));
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(RyApp::busyCursorDepth(), 0);
    }

    void cancelChangesNothing()
    {
        RyWindowScene scene;
        giveMesh(scene.prop, 4);
        scene.select(scene.prop);
        const QString before = scene.dump();
        RyJEConvertPropToFigureAction action;
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Convert Prop to Figure"), QStringLiteral("Cancel"));
        action.trigger();
        QCOMPARE(int(driver.records().size()), 1);
        QCOMPARE(scene.dump(), before);
        QVERIFY(!scene.window->findChild<RyConvertPropToFigureDlg *>());
    }

    void refusesFiguresWithoutGeometry()
    {
        RyWindowScene scene;
        RyJEConvertFigureToPropAction action;
        giveMesh(scene.prop, 4);
        RyNode *const figure = scene.figure;
        const std::vector<std::pair<RyNode *, std::function<void()>>> cases = {
            {nullptr, [] {}},
            {scene.prop, [] {}},
            {scene.lShin, [] {}},
            {figure, [figure] { giveMesh(figure, 0); }},
            {scene.hip, [figure] { givePoints(figure); }},
            {figure, [figure] { figure->setObject(new RyObject); }}};
        for (const auto &[node, prepare] : cases) {
            prepare();
            ryScene()->selectAllNodes(false);
            if (node)
                node->select(true);
            const QString before = scene.dump();
            RyMessageBoxes boxes;
            action.trigger();
            QCOMPARE(boxes.said, QStringList(figureWarning));
            QCOMPARE(scene.dump(), before);
        }
    }

    void convertsTheFigureOfABone()
    {
        RyWindowScene scene;
        giveMesh(scene.figure, 6);
        scene.figure->setLabel(QStringLiteral("Old Man"));
        const QString name = scene.figure->getName();
        scene.select(scene.lShin);
        ryUndoStack()->clearAll();
        const QString before = scene.dump();
        RyJEConvertFigureToPropAction action;
        int busy = 0;
        const QObject context;
        connect(ryScene(), &RyScene::nodeListChanged, &context,
                [&] { busy = std::max(busy, RyApp::busyCursorDepth()); });
        action.trigger();
        QCOMPARE(busy, 1);
        QCOMPARE(RyApp::busyCursorDepth(), 0);
        QVERIFY(scene.window->statusBar()->currentMessage().isEmpty()); // its geometry hung on no bone
        QVERIFY(ryScene()->getSkeletons().empty());
        const RyNode *prop = ryScene()->findNode(name);
        QVERIFY(prop);
        QCOMPARE(RyShape::getCurrentShapeForNode(prop)->getGeometry()->getNumVertices(), 6);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Convert Figure to Prop"));
        QCOMPARE(ryUndoStack()->count(), 1);
        const QString after = scene.dump();
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
        ryUndoStack()->undo(); // the scene of the test still knows its nodes
    }

    /// A figure that only stands somewhere is not posed.
    void saysThatAFigureWasPosed()
    {
        RySkinnedScene scene;
        scene.figure->setLabel(QStringLiteral("Old Man"));
        scene.figure->getYRotControl()->setValue(30.0f);
        scene.figure->getScaleControl()->setValue(1.2f);
        const auto message = [&] {
            scene.select(scene.figure);
            scene.window->statusBar()->clearMessage();
            RyJEConvertFigureToPropAction().executeAction();
            const QString said = scene.window->statusBar()->currentMessage();
            ryUndoStack()->undo();
            return said;
        };
        QCOMPARE(message(), QString());
        scene.lShin->getXRotControl()->setValue(40.0f);
        QCOMPARE(message(), QStringLiteral("Old Man was posed: the object has its shape at rest."));
    }
};

RY_TEST(RyConversionActionsTest)

#include "tst_conversionActions.moc"
