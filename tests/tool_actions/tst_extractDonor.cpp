#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RyTwoFigures.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/operations/extractDonor.h"
#include "pluginsource/RyJointTools/operations/listRiggingProperties.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QStatusBar>

namespace {

/// What a donor takes of a node beside its name: resulting rigging, limits, labels, flags, rotation order.
QString traits(const RyNode *node)
{
    QString text = node->getRotationOrder().name() + QStringLiteral(" %1%2%3%4 ")
                                                         .arg(node->isHidden())
                                                         .arg(node->isSelectable())
                                                         .arg(node->isSelectionPromoted())
                                                         .arg(node->inheritsScale());
    for (const RyFloatProperty *each : listRiggingProperties(*node))
        text += QStringLiteral("%1 of %2, ")
                    .arg(double(each->getValue()), 0, 'g', 9)
                    .arg(double(each->getDefaultValue()), 0, 'g', 9);
    for (const RyFloatProperty *each : {node->getXRotControl(), node->getYTransControl()})
        text += QStringLiteral("%1 %2 %3 %4, ")
                    .arg(double(each->getMin()))
                    .arg(double(each->getMax()))
                    .arg(each->isClamped())
                    .arg(each->getLabel());
    return text;
}

QString tree(const RyNode *node)
{
    QStringList children;
    for (const RyNode *child : node->nodeChildrenIterator())
        children.append(tree(child));
    return node->getName() +
           (children.isEmpty() ? QString() : QLatin1Char('(') + children.join(' ') + QLatin1Char(')'));
}

/// The figure of the base with all that a donor has to take along.
struct RichFigure : RyTwoFigures
{
    RichFigure() : RyTwoFigures(Both)
    {
        figure->setLabel("Hero");
        lThigh->setLabel("Left Thigh");
        lShin->setHidden(true);
        lShin->setInheritScale(false);
        lShin->setRotationOrder(RyRotationOrder(5));
        lFoot->setSelectable(false);
        lFoot->setPromoteSelection(true);
        lFoot->getXRotControl()->setIsClamped(true);
        lFoot->getXRotControl()->setMin(-30.0f);
        lFoot->getYTransControl()->setLabel("Lift");
        RyERCLink::create(lShin->getOriginXControl(), rThigh->getEndXControl());
        lShin->getOriginXControl()->setValue(25.0f);
        lShin->addNodeChild(new RyNode);
        figure->setEndPoint({0, 3, 0});
        auto *bulge = new RyBulgeBinding(1);
        binding(lFoot)->setBulgeBinding(1, bulge);
        bulge->adjustBulgeValues(1, 2, 3, 4);
        bulge->setRightWeights(binding(lShin)->getLocalWeights(0)->copy());
        // A binding of a bone of another figure moves nothing that a donor has.
        auto *foreign = new RyBoneBinding;
        foreign->setBone(otherHip);
        skin->addBoneBinding(foreign);
        ryUndoStack()->clearAll();
    }
};

const QString box =
    QStringLiteral("warning|Selection Error|A weight mapped figure must be selected to continue.|Ok|Ok|Ok");

} // namespace

/// A skeleton taken off a figure.
class RyExtractDonorTest : public QObject
{
    Q_OBJECT

private slots:
    void takesTheBones();
    void takesTheWeights();
    void oneStep();
    void namesAreUnique();
    void movesByItself();
    void figureWithoutSkin();
    void refuses_data();
    void refuses();
};

void RyExtractDonorTest::takesTheBones()
{
    RichFigure scene;
    ryScene()->setSelection({scene.prop, scene.lFoot});
    const std::vector<RyNode *> selection = ryScene()->selectedNodeListIterator();
    const RyFigure *donor = extractDonor(*scene.figure);
    QCOMPARE(donor->getName(), QStringLiteral("Donor_figure"));
    QCOMPARE(donor->getLabel(), QStringLiteral("Donor Hero"));
    QVERIFY(donor->drawsGLBones());
    QVERIFY(!scene.figure->drawsGLBones());
    QCOMPARE(donor->getScene(), ryScene());
    QVERIFY(!donor->getNodeParent());
    QVERIFY(!donor->isPosed());
    QVERIFY(donor->getObject() && donor->getObject() != scene.object);
    QVERIFY(donor->getObject()->getShapes().empty());
    QCOMPARE(tree(donor), QStringLiteral("Donor_figure(hip(lThigh(lShin(lFoot)) rThigh))"));
    QCOMPARE(traits(donor), traits(scene.figure));
    for (const RyBone *copy : donor->getAllBones()) {
        const RyBone *bone = scene.figure->findBone(copy->getName());
        QCOMPARE(copy->getLabel(), bone->getLabel());
        QCOMPARE(traits(copy), traits(bone));
        QVERIFY(!copy->isPosed());
        QVERIFY(copy->getEndXControl()->getControllerLinks().empty());
        QCOMPARE(copy->getScene(), ryScene());
    }
    QVERIFY(ryScene()->selectedNodeListIterator() == selection);
}

void RyExtractDonorTest::takesTheWeights()
{
    RichFigure scene;
    const RySkinBinding *skin = extractDonor(*scene.figure)->getSkinBinding();
    QCOMPARE(skin->getNumBoneBindings(), 5);
    for (int i = 0; i < 5; ++i) {
        const RyBoneBinding *from = scene.skin->bindings()[size_t(i)];
        const RyBoneBinding *to = skin->bindings()[size_t(i)];
        QCOMPARE(to->getBone()->getName(), from->getBone()->getName());
        QVERIFY(to->getBone() != from->getBone());
        const std::vector<RyWeightMap *> maps = to->getAllWeightMaps();
        QCOMPARE(maps.size(), size_t(5));
        for (size_t map = 0; map < maps.size(); ++map) {
            QVERIFY(maps[map] != from->getAllWeightMaps()[map]);
            QCOMPARE(ryWeightsOf(maps[map]), ryWeightsOf(from->getAllWeightMaps()[map]));
        }
    }
    const RyBulgeBinding *from = scene.binding(scene.lFoot)->getBulgeBinding(1);
    const RyBulgeBinding *to = skin->bindings()[3]->getBulgeBinding(1);
    QVERIFY(to && to != from && !to->getLeftWeights());
    QCOMPARE(to->getNegLeftBulgeController()->getValue(), 2.0f);
    QCOMPARE(ryWeightsOf(to->getRightWeights()), ryWeightsOf(from->getRightWeights()));

    // Maps that are not full in sum are made so among themselves.
    RyWeightMap *hip = scene.binding(scene.hip)->getWeights();
    hip->beginEdit();
    for (int i = 0; i < hip->getNumWeights(); ++i)
        hip->getWeights()[i] = quint16(hip->getWeight(i) / 2);
    hip->finishEdit();
    QCOMPARE(ryFaultsOf(extractDonor(*scene.figure)), QString());
}

void RyExtractDonorTest::oneStep()
{
    for (const bool byBone : {false, true}) {
        RichFigure scene;
        ryScene()->setSelection({byBone ? static_cast<RyNode *>(scene.lFoot) : scene.figure});
        const QString before = scene.dump();
        RyJECreateDonorFigureAction action;
        QVERIFY(action.isEnabled());
        action.trigger();
        QVERIFY(ryScene()->findNode("Donor_figure"));
        QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Donor Hero was added to the scene."));
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Extract Donor Figure"));
        checkLastStep(before);
    }
}

void RyExtractDonorTest::namesAreUnique()
{
    RichFigure scene;
    extractDonor(*scene.figure);
    const RyFigure *second = extractDonor(*scene.figure);
    QCOMPARE(second->getName(), QStringLiteral("Donor_figure2"));
    QCOMPARE(second->getLabel(), QStringLiteral("Donor Hero 2"));
}

void RyExtractDonorTest::movesByItself()
{
    RichFigure scene;
    const RyFigure *donor = extractDonor(*scene.figure);
    const std::vector<RyVec3> shown = scene.shown();
    const RyVec3 origin = scene.hip->getOrigin();
    RyBone *hip = donor->findBone("hip");
    hip->setOrigin({1, 2, 3});
    hip->getXRotControl()->setValue(40.0f);
    QCOMPARE(scene.hip->getOrigin(), origin);
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
    const RyVec3 moved = hip->getWSPos();
    scene.hip->setOrigin({4, 5, 6});
    scene.figure->getXTransControl()->setValue(99.0f);
    QCOMPARE(hip->getWSPos(), moved);
}

/// It is a figure with a skin all the same, for what will be bound to it.
void RyExtractDonorTest::figureWithoutSkin()
{
    RyTwoFigures scene;
    const RyFigure *donor = extractDonor(*scene.other);
    QCOMPARE(donor->getLabel(), QStringLiteral("Donor The giant"));
    QVERIFY(donor->getSkinBinding());
    QCOMPARE(donor->getSkinBinding()->getNumBoneBindings(), 0);
    QCOMPARE(int(donor->getAllBones().size()), 5);
}

void RyExtractDonorTest::refuses_data()
{
    QTest::addColumn<QString>("selected");
    for (const char *name : {"", "prop", "plain", "parametric", "its bone", "bare bone"})
        QTest::newRow(name) << QString(name);
}

void RyExtractDonorTest::refuses()
{
    QFETCH(QString, selected);
    RyTwoFigures scene;
    RySkeleton *others[] = {new RySkeleton, new RyLegacyFigure};
    others[0]->setName("plain");
    others[1]->setName("parametric");
    RyToolScene::makeBone(others[1], "its bone", {}, {});
    auto *bare = new RyBone;
    bare->setName("bare bone");
    for (RyNode *each :
         {static_cast<RyNode *>(others[0]), static_cast<RyNode *>(others[1]), static_cast<RyNode *>(bare)})
        ryScene()->addNode(each);
    RyNode *node = selected.isEmpty() ? nullptr : ryScene()->findNode(selected);
    QCOMPARE(node != nullptr, !selected.isEmpty());
    ryScene()->setSelection(node ? std::vector<RyNode *>{node} : std::vector<RyNode *>());
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    RyJECreateDonorFigureAction().trigger();
    QCOMPARE(boxes.facts, QStringList(box));
    QCOMPARE(boxes.parents, QList<QWidget *>{scene.window.get()});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

RY_TEST(RyExtractDonorTest)

#include "tst_extractDonor.moc"
