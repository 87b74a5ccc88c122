#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/duplicateBones.h"
#include "pluginsource/RyJointTools/operations/hierarchyLevel.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"
#include "rycore/scene/assets/RyAssetLoadScope.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

/// What happened while bones were duplicated, in order.
QStringList calls;

struct NotingAssets : RyAssetIOMgr
{
    void doScopedLoad(RyAssetLoadScope &scope, bool isolated) override
    {
        calls.append(QStringLiteral("load %1 locked %2").arg(isolated).arg(ryUndoStack()->isLocked()));
        RyAssetIOMgr::doScopedLoad(scope, isolated);
        list = scope.getAssets();
    }
    void loadFinished(RyAssetLoadScope &) override { calls.append(QStringLiteral("finish")); }
    RyAssetList *list = nullptr;
};

/// The application's asset manager for as long as it lives.
struct AssetsInUse
{
    explicit AssetsInUse(RyAssetIOMgr *manager) : before(RyApp::getAssetIOMgr())
    {
        calls.clear();
        RyApp::setAssetIOMgr(manager);
    }
    ~AssetsInUse() { RyApp::setAssetIOMgr(before); }
    RyAssetIOMgr *before;
};

/// A bone that notes the context that duplicates it.
class NotingBone : public RyBone
{
public:
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override
    {
        owner = context->parent();
        assets = context->duplicateAssets();
        options = QStringLiteral("%1%2%3%4%5%6%7%8%9")
                      .arg(context->duplicateAssets() != nullptr)
                      .arg(context->remapAliases())
                      .arg(context->skipNonUserProperties())
                      .arg(context->duplicateBoneHierarchy())
                      .arg(context->duplicateFullNodeHierarchy())
                      .arg(context->treatHiddenAndPromotingAsBones())
                      .arg(context->facetCompatible())
                      .arg(context->vertexCompatible())
                      .arg(context->duplicateRoot() == nullptr);
        calls.append(getName() + " below " + context->getParentNode()->getName());
        if (!connected) {
            QObject::connect(
                context, &RyElementDuplicateContext::stageDone,
                [](RyElementDuplicateContext::Stage stage) { calls.append(QVariant::fromValue(stage).toString()); });
            connected = true;
        }
        if (!fails)
            return RyBone::doDuplicateElement(context);
        failed = new RyNode;
        return failed;
    }
    const void *assets = nullptr;
    QPointer<RyNode> failed;
    QPointer<QObject> owner;
    QString options;
    bool fails = false;
    static bool connected;
};
bool NotingBone::connected = false;

NotingBone *makeNotingBone(RyNode *parent, const char *name)
{
    auto *bone = new NotingBone;
    bone->setName(QString::fromLatin1(name));
    parent->addNodeChild(bone);
    ryScene()->addNode(bone);
    NotingBone::connected = false;
    return bone;
}

QStringList childNames(const RyNode *node)
{
    QStringList names;
    for (const RyNode *child : node->nodeChildrenIterator())
        names.append(child->getName());
    return names;
}

} // namespace

class RyDuplicateBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { RyMessageLog::global().setEcho(false); }
    void cleanupTestCase() { RyMessageLog::global().setEcho(true); }
    void depths();
    void duplicateIsLikeTheOriginal();
    void childrenHangUnderDuplicates();
    void bindingsHaveNoWeights_data();
    void bindingsHaveNoWeights();
    void bulgesHaveNoWeights();
    void linksGoToDuplicates();
    void runsInOrder();
    void boneThatCannotBeDuplicated();
    void unboundBone();
    void bindingOfAnotherClass();
    void everyFailureHasItsLine();
    void figureWithoutSkin();
    void severalFigures();
    void needsABone_data();
    void needsABone();
    void needsAssets();
    void leavesUndoAndSelectionAlone();
    void manyBonesAtOnce();
};

void RyDuplicateBonesTest::depths()
{
    RyToolScene scene;
    QCOMPARE(boneDepth(nullptr), 1);
    QCOMPARE(boneDepth(scene.figure), 1);
    QCOMPARE(boneDepth(scene.hip), 1);
    QCOMPARE(boneDepth(scene.lThigh), 2);
    QCOMPARE(boneDepth(scene.lFoot), 4);
    // A figure worn by a bone starts anew; without a skeleton the chain's end counts.
    auto *worn = new RyFigure;
    scene.lFoot->addNodeChild(worn);
    QCOMPARE(boneDepth(RyToolScene::makeBone(worn, "a", {}, {})), 1);
    const RyRef<RyNode> loose(new RyNode);
    RyBone *bone = RyToolScene::makeBone(loose.get(), "b", {}, {});
    QCOMPARE(boneDepth(bone), 1);
    QCOMPARE(boneDepth(RyToolScene::makeBone(bone, "c", {}, {})), 2);
}

void RyDuplicateBonesTest::duplicateIsLikeTheOriginal()
{
    RySkinnedScene scene;
    RyBone *bone = scene.lThigh;
    bone->setLabel(QStringLiteral("Left Thigh"));
    bone->setRotationOrder(RyRotationOrder(3));
    bone->setEndPoint({7, 7, 7});
    bone->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.3f));
    bone->setInheritScale(false);
    ryScene()->setSelection({bone});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(childNames(scene.hip), QStringList({"lThigh", "rThigh", "lThigh2"}));
    const auto *copy = qobject_cast<RyBone *>(scene.hip->getNodeChild(2));
    QVERIFY(copy);
    QCOMPARE(copy->getLabel(), QStringLiteral("Left Thigh 2"));
    QCOMPARE(copy->getRotationOrder().order(), 3);
    QCOMPARE(copy->getOrigin(), bone->getOrigin());
    QCOMPARE(copy->getEndPoint(), RyVec3(7, 7, 7));
    QCOMPARE(copy->getEndPoint(true), RyVec3(11, 50, 2));
    QCOMPARE(copy->getOrientation(), bone->getOrientation());
    QVERIFY(!copy->inheritsScale());
    QCOMPARE(copy->getNumNodeChildren(), 0);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDuplicateBonesTest::childrenHangUnderDuplicates()
{
    RySkinnedScene scene;
    // Selected the other way round; the shin between them is not.
    ryScene()->setSelection({scene.lFoot, scene.rThigh, scene.lThigh, scene.hip});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(childNames(scene.figure), QStringList({"hip", "hip2"}));
    QCOMPARE(childNames(scene.figure->getNodeChild(1)), QStringList({"rThigh2", "lThigh2"}));
    QCOMPARE(childNames(scene.lShin), QStringList({"lFoot", "lFoot2"}));
    QCOMPARE(childNames(scene.hip), QStringList({"lThigh", "rThigh"}));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    // And once more, with duplicates among them.
    ryScene()->selectAllNodes(true);
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(int(scene.figure->getAllBones().size()), 18);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDuplicateBonesTest::bindingsHaveNoWeights_data()
{
    QTest::addColumn<int>("maps");
    QTest::addColumn<int>("count");
    QTest::newRow("general") << int(RySkinnedScene::General) << 1;
    QTest::newRow("local") << int(RySkinnedScene::Local) << 4;
    QTest::newRow("both") << int(RySkinnedScene::Both) << 5;
}

void RyDuplicateBonesTest::bindingsHaveNoWeights()
{
    QFETCH(int, maps);
    RySkinnedScene scene{RySkinnedScene::Maps(maps)};
    scene.pose();
    const std::vector<RyVec3> shown = scene.shown();
    const std::vector<int> before = ryWeightsOf(scene.binding(scene.lShin)->getAllWeightMaps().front());
    ryScene()->setSelection({scene.lShin, scene.lFoot});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(scene.skin->getNumBoneBindings(), 7);
    for (const char *name : {"lShin2", "lFoot2"}) {
        const RyBoneBinding *binding = scene.binding(ryScene()->findNode(QString::fromLatin1(name)));
        QVERIFY(binding);
        QCOMPARE(binding->getName(), QString::fromLatin1(name));
        QTEST(int(binding->getAllWeightMaps().size()), "count");
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            QCOMPARE(ryWeightsOf(map), std::vector<int>(60, 0));
    }
    QCOMPARE(ryWeightsOf(scene.binding(scene.lShin)->getAllWeightMaps().front()), before);
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

/// They have the values and would push vertices that the copy does not move.
void RyDuplicateBonesTest::bulgesHaveNoWeights()
{
    RySkinnedScene scene;
    auto *bulge = new RyBulgeBinding(1);
    bulge->setLeftWeights(ryMapOf(std::vector<quint16>(60, 40000), "inner"));
    bulge->adjustBulgeValues(0.5f, -0.25f, 1.5f, 2);
    scene.binding(scene.lShin)->setBulgeBinding(1, bulge);
    scene.pose();
    scene.lShin->getYRotControl()->setValue(60);
    const std::vector<RyVec3> shown = scene.shown();
    ryScene()->setSelection({scene.lShin});
    RyJEDuplicateBonesAction().executeAction();
    const RyBulgeBinding *copied = scene.binding(ryScene()->findNode("lShin2"))->getBulgeBinding(1);
    QVERIFY(copied && copied != bulge);
    QCOMPARE(ryWeightsOf(copied->getLeftWeights()), std::vector<int>(60, 0));
    QCOMPARE(copied->getLeftWeights()->getName(), QString("inner"));
    QVERIFY(!copied->getRightWeights());
    QCOMPARE(copied->getPosRightBulgeController()->getValue(), 1.5f);
    QCOMPARE(copied->getPosRightBulgeController()->getName(), QString("lShin2_bulgeYPosRight"));
    QCOMPARE(ryWeightsOf(bulge->getLeftWeights()), std::vector<int>(60, 40000));
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
}

void RyDuplicateBonesTest::linksGoToDuplicates()
{
    RySkinnedScene scene;
    RyERCLink::create(scene.lThigh->getXRotControl(), scene.lShin->getXRotControl());
    ryScene()->setSelection({scene.lThigh, scene.lShin});
    RyJEDuplicateBonesAction().executeAction();
    const RyNode *thigh = ryScene()->findNode(QStringLiteral("lThigh2"));
    const RyNode *shin = ryScene()->findNode(QStringLiteral("lShin2"));
    QVERIFY(thigh && shin);
    thigh->getXRotControl()->setValue(25);
    QCOMPARE(shin->getXRotControl()->getValue(), 25.0f);
    QCOMPARE(scene.lShin->getXRotControl()->getValue(), 0.0f);
}

void RyDuplicateBonesTest::runsInOrder()
{
    RySkinnedScene scene;
    NotingAssets assets;
    const AssetsInUse use(&assets);
    NotingBone *deep = makeNotingBone(scene.lFoot, "deep");
    NotingBone *flat = makeNotingBone(scene.hip, "flat");
    NotingBone *deeper = makeNotingBone(deep, "deeper");
    for (RyBone *bone : {deep, flat, deeper}) {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        scene.skin->addBoneBinding(binding);
    }
    ryScene()->setSelection({deeper, deep, flat});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(calls, QStringList({"load 1 locked 1", "flat below hip", "deep below lFoot", "deeper below deep2",
                                 "AliasesCreated", "ERCCreated", "Resolved", "Finalized", "AssetsCleared", "finish"}));
    QCOMPARE(deep->options, QStringLiteral("111001111"));
    QVERIFY(assets.list);
    QCOMPARE(deep->assets, static_cast<const void *>(assets.list));
    QVERIFY(!deep->owner);
    QCOMPARE(assets.getNumOpenScopes(), 0);
    QVERIFY(!ryUndoStack()->isLocked());
}

void RyDuplicateBonesTest::boneThatCannotBeDuplicated()
{
    RySkinnedScene scene;
    NotingBone *bad = makeNotingBone(scene.hip, "bad");
    bad->fails = true;
    const size_t nodes = ryScene()->getNodes().size();
    RyMessageLog::global().clear();
    ryScene()->setSelection({bad, scene.lThigh});
    RyJEDuplicateBonesAction().executeAction();
    QVERIFY(!calls.filter("bad below").isEmpty() && !bad->failed);
    QCOMPARE(ryScene()->getNodes().size(), nodes + 1);
    QVERIFY(scene.figure->findBone(QStringLiteral("lThigh2")));
    const QStringList warnings = RyMessageLog::global().warnings();
    QCOMPARE(warnings.size(), 1);
    const QRegularExpression format(QStringLiteral("^\\\\src\\\\pluginsource\\\\RyJointTools\\\\ryjeaction\\\\[A-Za-z]+"
                                                   "\\.cpp\\(\\d+\\): Could not duplicate bone : bad "
                                                   "\\(RyBone\\)$"));
    QVERIFY2(format.match(warnings.first()).hasMatch(), qPrintable(warnings.first()));
}

void RyDuplicateBonesTest::unboundBone()
{
    RySkinnedScene scene;
    scene.skin->removeBoneBinding(scene.binding(scene.lThigh));
    scene.skin->normalize(0, RySkinBinding::AllWeights, false);
    RyMessageLog::global().clear();
    ryScene()->setSelection({scene.lThigh, scene.lShin});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(RyMessageLog::global().warnings().size(), 1);
    QVERIFY(RyMessageLog::global().warnings().first().endsWith(
        QStringLiteral(": Could not duplicate bone binding : lThigh (RyBone)")));
    const RyNode *thigh = ryScene()->findNode(QStringLiteral("lThigh2"));
    QVERIFY(thigh && !scene.binding(thigh));
    QCOMPARE(childNames(thigh), QStringList("lShin2"));
    QVERIFY(scene.binding(thigh->getNodeChild(0)));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDuplicateBonesTest::bindingOfAnotherClass()
{
    struct OddBinding : RyBoneBinding
    {
        RyElement *doDuplicateElement(RyElementDuplicateContext *) override
        {
            made = new RyNode;
            ++asked;
            return made;
        }
        QPointer<RyElement> made;
        int asked = 0;
    };
    RySkinnedScene scene;
    scene.skin->removeBoneBinding(scene.binding(scene.lFoot));
    auto *odd = new OddBinding;
    odd->setBone(scene.lFoot);
    scene.skin->addBoneBinding(odd);
    bool changed = false;
    QObject listener;
    connect(scene.skin, &RySkinBinding::skinChanged, &listener, [&] { changed = true; });
    RyMessageLog::global().clear();
    ryScene()->setSelection({scene.lFoot});
    const int bindings = scene.skin->getNumBoneBindings();
    RyJEDuplicateBonesAction().executeAction();
    QVERIFY(scene.figure->findBone(QStringLiteral("lFoot2")));
    QCOMPARE(odd->asked, 1);
    QVERIFY(!odd->made);
    QCOMPARE(scene.skin->getNumBoneBindings(), bindings);
    QVERIFY(!changed);
    QCOMPARE(RyMessageLog::global().warnings(), QStringList());
}

void RyDuplicateBonesTest::everyFailureHasItsLine()
{
    RySkinnedScene scene;
    auto *bare = new RyFigure;
    ryScene()->addNode(bare);
    RyBone *its = RyToolScene::makeBone(bare, "its", {}, {0, 1, 0});
    NotingBone *bad = makeNotingBone(scene.hip, "bad");
    bad->fails = true;
    RyBone *unbound = RyToolScene::makeBone(scene.hip, "unbound", {}, {0, 1, 0});
    RyMessageLog::global().clear();
    ryScene()->setSelection({its, bad, unbound});
    RyJEDuplicateBonesAction().executeAction();
    QSet<QString> lines;
    for (const QString &warning : RyMessageLog::global().warnings())
        lines.insert(warning.section('(', 1, 1).section(')', 0, 0));
    QCOMPARE(RyMessageLog::global().warnings().size(), 3);
    QCOMPARE(lines.size(), 3);
}

void RyDuplicateBonesTest::figureWithoutSkin()
{
    RyWindowScene scene;
    NotingAssets assets;
    const AssetsInUse use(&assets);
    RyMessageLog::global().clear();
    ryScene()->setSelection({scene.lThigh});
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(boxes.facts, QStringList());
    QCOMPARE(calls, QStringList());
    QCOMPARE(RyMessageLog::global().warnings().size(), 1);
    QVERIFY(RyMessageLog::global().warnings().first().endsWith(QStringLiteral("): Figure with no skin")));
}

void RyDuplicateBonesTest::severalFigures()
{
    RySkinnedScene scene;
    auto *bare = new RyFigure;
    bare->setName(QStringLiteral("bare"));
    ryScene()->addNode(bare);
    RyBone *its = RyToolScene::makeBone(bare, "its", {}, {0, 1, 0});
    NotingAssets assets;
    const AssetsInUse use(&assets);
    RyMessageLog::global().clear();
    ryScene()->setSelection({its, scene.lThigh, scene.prop, scene.figure, scene.rThigh});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(RyMessageLog::global().warnings().size(), 1);
    QCOMPARE(childNames(scene.hip), QStringList({"lThigh", "rThigh", "lThigh2", "rThigh2"}));
    QCOMPARE(bare->getNumNodeChildren(), 1);
    QCOMPARE(calls, QStringList({"load 1 locked 1", "finish"}));
}

void RyDuplicateBonesTest::needsABone_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("nothing") << "";
    QTest::newRow("a prop") << "prop";
    QTest::newRow("the figure") << "figure";
    QTest::newRow("a bone of another skeleton") << "its";
}

void RyDuplicateBonesTest::needsABone()
{
    QFETCH(QString, selected);
    RySkinnedScene scene;
    auto *skeleton = new RySkeleton;
    ryScene()->addNode(skeleton);
    RyToolScene::makeBone(skeleton, "its", {}, {0, 1, 0});
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(boxes.facts, QStringList(QStringLiteral("information|Selection Error|A bone must be selected to "
                                                     "continue.|Ok|Ok|Ok")));
    QCOMPARE(boxes.parents, QList<QWidget *>({scene.window.get()}));
    QCOMPARE(scene.dump(), before);
}

void RyDuplicateBonesTest::needsAssets()
{
    RySkinnedScene scene;
    const AssetsInUse use(nullptr);
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    RyJEDuplicateBonesAction().executeAction();
    ryScene()->setSelection({scene.lThigh});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(boxes.facts, QStringList());
    ryScene()->selectAllNodes(false);
    QCOMPARE(scene.dump(), before);
}

void RyDuplicateBonesTest::leavesUndoAndSelectionAlone()
{
    RySkinnedScene scene;
    {
        RyUndoStackHold hold;
        scene.rThigh->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    ryScene()->setSelection({scene.lThigh, scene.lShin});
    RyJEDuplicateBonesAction action;
    QVERIFY(action.isEnabled());
    action.trigger();
    QCOMPARE(int(scene.figure->getAllBones().size()), 7);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>({scene.lThigh, scene.lShin}));
    ryUndoStack()->undo();
    QCOMPARE(int(scene.figure->getAllBones().size()), 7);
    ryScene()->selectAllNodes(false);
    QVERIFY(!action.isEnabled() && !RyJEDuplicateBonesAction().isEnabled());
}

void RyDuplicateBonesTest::manyBonesAtOnce()
{
    RySkinnedScene scene;
    const int count = 2000;
    for (int i = 0; i < count; ++i)
        RyToolScene::makeBone(scene.hip, qPrintable(QStringLiteral("finger%1").arg(i + 1)), {}, {0, 1, 0});
    const std::vector<RyBone *> bones = scene.figure->getAllBones();
    const std::vector<RyDuplicateFailure> failures = duplicateBones(scene.figure, bones, *RyApp::defaultAssetIOMgr());
    QCOMPARE(int(failures.size()), count); // the fingers are not bound
    QCOMPARE(failures.front().reason, RyDuplicateFailure::NoBinding);
    QCOMPARE(failures.front().bone, QStringLiteral("finger1 (RyBone)"));
    QCOMPARE(int(scene.figure->getAllBones().size()), 2 * (count + 5));
    QVERIFY(scene.figure->findBone(QStringLiteral("finger%1").arg(2 * count)));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

RY_TEST(RyDuplicateBonesTest)

#include "tst_duplicateBones.moc"
