#include "support/RyTest.h"

#include "RySkinnedScene.h"
#include "RyUntidyScene.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/operations/listRiggingProperties.h"
#include "pluginsource/RyJointTools/operations/memorizeRigging.h"
#include "pluginsource/RyJointTools/operations/restoreRigging.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

/// A node whose private groups are three levels deep, with values on each.
struct DeepNode : RyNode
{
    DeepNode()
    {
        RyPropertyGroup *root = getPrivatePropertyGroups();
        add(root, "root");
        RyPropertyGroup *first = root->getFirstChild();
        RyPropertyGroup *below = first->addChild(QStringLiteral("below"));
        add(below, "below");
        add(below->addChild(QStringLiteral("deepest")), "deepest");
        add(first->addChild(QStringLiteral("beside")), "beside");
    }
    void add(RyPropertyGroup *group, const char *name)
    {
        group->addProperty(std::make_unique<RyFloatProperty>(this, QLatin1String(name)));
    }
};

QStringList namesOf(const std::vector<RyFloatProperty *> &properties)
{
    QStringList names;
    for (const RyFloatProperty *property : properties)
        names.append(property->getName());
    return names;
}

void addBulge(RyBoneBinding *binding, int axis, float value)
{
    auto *bulge = new RyBulgeBinding(axis);
    binding->setBulgeBinding(axis, bulge);
    bulge->updatePropertyNames();
    bulge->adjustBulgeValues(value, value + 1, value + 2, value + 3);
}

/// "7.5 8.5 9.5 10.5 from 0 0 0 0": current and default values in the order of the getters.
QString bulgeText(const RyBulgeBinding *bulge)
{
    QStringList current, byDefault;
    for (const RyFloatProperty *each : {bulge->getPosLeftBulgeController(), bulge->getNegLeftBulgeController(),
                                        bulge->getPosRightBulgeController(), bulge->getNegRightBulgeController()}) {
        current.append(QString::number(double(each->getValue())));
        byDefault.append(QString::number(double(each->getDefaultValue())));
    }
    return current.join(' ') + QStringLiteral(" from ") + byDefault.join(' ');
}

QStringList undoTexts()
{
    QStringList texts;
    for (int i = 0; i < ryUndoStack()->count(); ++i)
        texts.append(ryUndoStack()->caption(i));
    return texts;
}

/// Nodes whose current rigging is not their default one.
QStringList movedNodes(const RyUntidyScene &scene)
{
    QStringList names;
    for (const RyNode *node : scene.nodes()) {
        const std::vector<RyFloatProperty *> rigging = RyUntidyScene::rigging(*node);
        if (std::any_of(rigging.begin(), rigging.end(),
                        [](const RyFloatProperty *each) { return each->getValue() != each->getDefaultValue(); }))
            names.append(node->getName());
    }
    return names;
}

QString poseOf(const RyUntidyScene &scene)
{
    QString text;
    for (const RyNode *node : scene.nodes()) {
        for (const RyFloatProperty *each : {node->getXTransControl(), node->getXRotControl(), node->getYRotControl(),
                                            node->getZRotControl(), node->getScaleControl(), node->getXScaleControl()})
            text += QStringLiteral("%1 %2,").arg(double(each->getValue())).arg(double(each->getDefaultValue()));
    }
    return text;
}

} // namespace

/// Current rigging as default, and back.
class RyMemorizeRiggingTest : public QObject
{
    Q_OBJECT

private slots:
    void propertiesInOrder();
    void bulgesOfTheBinding();
    void memorizesTheSelection_data() { modes(); }
    void memorizesTheSelection();
    void restoresTheSelection_data() { modes(); }
    void restoresTheSelection();
    void memorizesTheFigure();
    void restoresTheFigure_data() { modes(); }
    void restoresTheFigure();
    void restoresANodeInTheData();
    void dataThatIsGone();
    void dataThatIsNoNode();
    void nothingSelected();
    void emptySteps();
    void bulgesGoAlong();
    void linkedValues();

private:
    static void modes()
    {
        QTest::addColumn<int>("modes");
        for (int modes = 0; modes <= RyUntidyScene::AllModes; ++modes)
            QTest::newRow(qPrintable(QString::number(modes))) << modes;
    }
};

void RyMemorizeRiggingTest::propertiesInOrder()
{
    const DeepNode node;
    QCOMPARE(
        namesOf(listRiggingProperties(node)).join(' '),
        QStringLiteral("deepest below beside originX originY originZ endX endY endZ orientX orientY orientZ root"));
    const RyNode bare(RyNode::Rigging::None);
    QVERIFY(listRiggingProperties(bare).empty());
}

void RyMemorizeRiggingTest::bulgesOfTheBinding()
{
    RySkinnedScene scene;
    addBulge(scene.binding(scene.lShin), 0, 1);
    addBulge(scene.binding(scene.lShin), 2, 1);
    QCOMPARE(namesOf(listRiggingProperties(*scene.lShin)).mid(9).join(' '),
             QStringLiteral("lShin_bulgeXNegLeft lShin_bulgeXNegRight lShin_bulgeXPosLeft lShin_bulgeXPosRight "
                            "lShin_bulgeZNegLeft lShin_bulgeZNegRight lShin_bulgeZPosLeft lShin_bulgeZPosRight"));
    QCOMPARE(int(listRiggingProperties(*scene.lFoot).size()), 9);
    QCOMPARE(int(listRiggingProperties(*scene.figure).size()), 9);
}

void RyMemorizeRiggingTest::memorizesTheSelection()
{
    QFETCH(int, modes);
    RyUntidyScene scene(modes);
    const RyUntidyScene::Values values = scene.values();
    const QString pose = poseOf(scene);
    const QString before = scene.dump();
    QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip lThigh lShin lFoot"));
    RyJEMemorizeNodeRiggingPropertiesAction action;
    QVERIFY(action.isEnabled());
    action.trigger();
    QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip lFoot"));
    QCOMPARE(scene.changesSince(values), QStringList());
    QCOMPARE(poseOf(scene), pose);
    QCOMPARE(undoTexts(), QStringList(QStringLiteral("Memorize Selected Node(s) Rigging")));
    checkLastStep(before);
}

void RyMemorizeRiggingTest::restoresTheSelection()
{
    QFETCH(int, modes);
    RyUntidyScene scene(modes);
    const RyUntidyScene::Values values = scene.values();
    const QString pose = poseOf(scene);
    const QString before = scene.dump();
    RyJERestoreNodeRiggingPropertiesAction().trigger();
    QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip lFoot"));
    QCOMPARE(scene.lThigh->getOrigin(), RyVec3(10, 95, 0));
    QCOMPARE(scene.changesSince(values),
             QStringList({"lShin orient", "lShin origin", "lThigh end", "lThigh orient", "lThigh origin"}));
    QCOMPARE(poseOf(scene), pose);
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}, {"lShin", 1}}));
    QCOMPARE(scene.valuesOutside, 0);
    QCOMPARE(undoTexts(), QStringList(QStringLiteral("Restore Selected Node(s) Rigging")));
    checkLastStep(before);
}

void RyMemorizeRiggingTest::memorizesTheFigure()
{
    RyUntidyScene scene;
    scene.figure->setEndPoint({1, 2, 3});
    const RyUntidyScene::Values values = scene.values();
    const QString before = scene.dump();
    RyJEMemorizeFigureRiggingPropertiesAction action;
    QVERIFY(action.isEnabled());
    action.trigger();
    QCOMPARE(movedNodes(scene), QStringList());
    QCOMPARE(scene.figure->getEndPoint(true), RyVec3(1, 2, 3));
    QCOMPARE(scene.changesSince(values), QStringList());
    QCOMPARE(undoTexts(), QStringList(QStringLiteral("Memorize Figure Rigging")));
    checkLastStep(before);
}

void RyMemorizeRiggingTest::restoresTheFigure()
{
    QFETCH(int, modes);
    RyUntidyScene scene(modes);
    scene.figure->setEndPoint({1, 2, 3});
    scene.valuesOutside = 0;
    QStringList order;
    QObject listener;
    for (const RyNode *node : scene.nodes()) {
        connect(node, &RyNode::riggingChanged, &listener, [&order, node] { order.append(node->getName()); });
    }
    const QString before = scene.dump();
    RyJERestoreFigureRiggingPropertiesAction().trigger();
    QCOMPARE(movedNodes(scene), QStringList());
    QCOMPARE(scene.figure->getEndPoint(), RyVec3());
    QCOMPARE(order.join(' '), QStringLiteral("hip lThigh lShin lFoot figure"));
    QCOMPARE(scene.valuesOutside, 0);
    QCOMPARE(undoTexts(), QStringList(QStringLiteral("Restore Figure Rigging")));
    checkLastStep(before);
}

/// The node and all below it; what is selected plays no part.
void RyMemorizeRiggingTest::restoresANodeInTheData()
{
    RyUntidyScene scene;
    ryScene()->setSelection({});
    const QString before = scene.dump();
    RyJERestoreNodeRiggingPropertiesAction action;
    action.setData(QVariant::fromValue<QObject *>(scene.lThigh));
    action.executeAction();
    QCOMPARE(movedNodes(scene), QStringList(QStringLiteral("hip")));
    QCOMPARE(undoTexts(), QStringList(QStringLiteral("Restore Selected Node(s) Rigging")));
    checkLastStep(before);
}

void RyMemorizeRiggingTest::dataThatIsGone()
{
    RyUntidyScene scene;
    RyJERestoreNodeRiggingPropertiesAction action;
    const RyRef<RyNode> removed(scene.prop);
    action.setData(QVariant::fromValue<RyNode *>(scene.prop));
    ryScene()->removeNode(scene.prop);
    const QString before = scene.dump();
    action.executeAction();
    QCOMPARE(scene.dump(), before);

    auto *deleted = new RyNode;
    ryScene()->addNode(deleted);
    action.setData(QVariant::fromValue<QObject *>(deleted));
    delete deleted;
    action.setEnabled(false);
    action.executeAction();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(undoTexts(), QStringList());

    action.setData(QVariant::fromValue<QObject *>(scene.lShin));
    action.executeAction();
    QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip lThigh"));
    action.setData(QVariant());
    action.executeAction();
    QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip"));
}

void RyMemorizeRiggingTest::dataThatIsNoNode()
{
    for (const QVariant &data :
         {QVariant(7), QVariant(QStringLiteral("lShin")), QVariant::fromValue<QObject *>(qApp)}) {
        RyUntidyScene scene;
        RyJERestoreNodeRiggingPropertiesAction action;
        action.setData(data);
        action.executeAction();
        QCOMPARE(movedNodes(scene).join(' '), QStringLiteral("hip lFoot"));
    }
}

void RyMemorizeRiggingTest::nothingSelected()
{
    RyUntidyScene scene;
    ryScene()->setSelection({});
    const QString before = scene.dump();
    RyJEMemorizeNodeRiggingPropertiesAction().executeAction();
    RyJERestoreNodeRiggingPropertiesAction().executeAction();
    RyJEMemorizeFigureRiggingPropertiesAction().executeAction();
    RyJERestoreFigureRiggingPropertiesAction().executeAction();
    ryScene()->setSelection({scene.prop}); // of no figure
    RyJEMemorizeFigureRiggingPropertiesAction().executeAction();
    RyJERestoreFigureRiggingPropertiesAction().executeAction();
    ryScene()->setSelection({});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(undoTexts(), QStringList());
}

/// What changes nothing is a step all the same.
void RyMemorizeRiggingTest::emptySteps()
{
    RyUntidyScene scene;
    auto *bare = new RyNode(RyNode::Rigging::None);
    ryScene()->addNode(bare);
    ryScene()->setSelection({bare, scene.rThigh});
    const QString before = scene.dump();
    RyJEMemorizeNodeRiggingPropertiesAction().trigger();
    RyJERestoreNodeRiggingPropertiesAction().trigger();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 2);
    QCOMPARE(int(scene.announced.size()), 0);
}

void RyMemorizeRiggingTest::bulgesGoAlong()
{
    RySkinnedScene scene;
    addBulge(scene.binding(scene.lShin), 1, 7.5f);
    addBulge(scene.binding(scene.lFoot), 0, 1);
    const RyBulgeBinding *bulge = scene.binding(scene.lShin)->getBulgeBinding(1);
    ryScene()->setSelection({scene.lShin});
    const QString first = scene.dump();
    RyJERestoreNodeRiggingPropertiesAction().trigger();
    QCOMPARE(bulgeText(bulge), QStringLiteral("0 0 0 0 from 0 0 0 0"));
    checkLastStep(first);
    ryUndoStack()->undo();
    RyJEMemorizeNodeRiggingPropertiesAction().trigger();
    QCOMPARE(bulgeText(bulge), QStringLiteral("7.5 8.5 9.5 10.5 from 7.5 8.5 9.5 10.5"));
    checkLastStep(first);
    QCOMPARE(bulgeText(scene.binding(scene.lFoot)->getBulgeBinding(0)), QStringLiteral("1 2 3 4 from 0 0 0 0"));
}

/// A chain of values, the last of which comes first: each is memorized and restored as it results.
void RyMemorizeRiggingTest::linkedValues()
{
    RyUntidyScene scene;
    RyFloatProperty *last = scene.hip->getOriginXControl();
    RyFloatProperty *middle = scene.lThigh->getOriginXControl();
    RyFloatProperty *first = scene.lShin->getOriginXControl();
    QVERIFY(RyERCLink::create(first, middle));
    QVERIFY(RyERCLink::create(middle, last));
    first->setValue(21.0f); // 10 above its default
    const std::vector<RyNode *> nodes = {scene.hip, scene.lThigh, nullptr, scene.lShin};
    const RyUntidyScene::Values values = scene.values();
    checkUndoInHold([&] { memorizeRigging(nodes); });
    QCOMPARE(scene.changesSince(values), QStringList());
    QCOMPARE(movedNodes(scene), QStringList(QStringLiteral("lFoot")));

    first->setValue(25.0f);
    scene.lThigh->setEndPoint({1, 1, 1});
    QVERIFY(last->getValue() != last->getDefaultValue());
    checkUndoInHold([&] { restoreRigging(nodes); });
    QCOMPARE(scene.changesSince(values), QStringList());
}

RY_TEST(RyMemorizeRiggingTest)

#include "tst_memorizeRigging.moc"
