#include "support/RyMapOf.h"
#include "support/RyTest.h"

#include "tool/RyToolScene.h"

#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>
#include <QTranslator>

namespace {

constexpr int vertexCount = 3;

/// A ray down the world's -Z through a point of the plane z = 0, for a camera that looks that way.
RyLine3 rayAt(float x, float y)
{
    return {RyVec3(x, y, 300), RyVec3(x, y, 0)};
}

RySkinBinding *giveSkin(RyFigure *figure, int vertices)
{
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(std::vector<RyVec3>(size_t(vertices), RyVec3(1, 2, 3)));
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    figure->setObject(object);
    return skin;
}

bool isEmptyMap(const RyWeightMap *map)
{
    return map && map->getName().isEmpty() && map->getNumWeights() == vertexCount && map->getNumAffected() == 0;
}

} // namespace

/// Bones where a click was.
class RyBoneCreationTest : public QObject
{
    Q_OBJECT

private slots:
    void takesOverFromTheNode();
    void endsOnThePlaneThroughTheOrigin();
    void planeIgnoresTheDepthOfTheNode();
    void startsAtTheEndOfTheSkeleton();
    void names_data();
    void names();
    void namesUnderTheSkeleton();
    void nameIsOfNoLanguage();
    void becomesTheLastChild();
    void needsASkeleton();
    void withoutSkin();
    void skinWithoutMaps();
    void mapKinds_data();
    void mapKinds();
    void skinWithoutVertices();
    void normalizesTheSkin();
    void skeletonThatIsNoFigure();
    void leavesUndoAndSelectionAlone();
    void joinsAnOpenHold();
};

void RyBoneCreationTest::takesOverFromTheNode()
{
    RyToolScene scene;
    scene.pose();
    RyBone *parent = scene.lShin;
    parent->setRotationOrder(RyRotationOrder(3));
    parent->setOrientation(RyQuat(RyVec3(0, 0, 1), 0.2f), true);
    // Current values count, not those at rest.
    parent->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.7f));
    parent->setEndPoint({12, 7, -3});
    const RyBone *bone = createBoneAtClick(parent, rayAt(20, 5), RyQuat());
    QVERIFY(bone);
    QCOMPARE(bone->getRotationOrder().order(), 3);
    for (bool byDefault : {false, true}) {
        QCOMPARE(bone->getOrigin(byDefault), RyVec3(12, 7, -3));
        QVERIFY((bone->getEndPoint(byDefault) - RyVec3(20, 5, 0)).length() < 1e-4f);
        const RyVec3 axis = bone->getOrientation(byDefault).multVec(RyVec3(1, 0, 0));
        QVERIFY((axis - parent->getOrientation().multVec(RyVec3(1, 0, 0))).length() < 1e-5f);
    }
    QVERIFY(bone->inheritsScale());
    QVERIFY(!bone->isPosed());
}

void RyBoneCreationTest::endsOnThePlaneThroughTheOrigin()
{
    RyToolScene scene;
    const RyQuat camera(RyVec3(0, 1, 0), -0.6f); // 0.6 right-handed
    const RyVec3 normal(std::sin(0.6f), 0, std::cos(0.6f));
    const RyVec3 eye(130, 80, 260);
    const RyVec3 target(-7, 33, 12);
    const RyBone *bone = createBoneAtClick(scene.hip, RyLine3(eye, target), camera);
    const RyVec3 endPoint = bone->getEndPoint();
    QVERIFY(std::abs(endPoint.dot(normal)) < 1e-3f);
    const RyVec3 way = endPoint - eye;
    QVERIFY(way.cross(target - eye).length() / way.length() / (target - eye).length() < 1e-5f);
}

void RyBoneCreationTest::planeIgnoresTheDepthOfTheNode()
{
    RyToolScene scene;
    scene.lFoot->setOrigin({0, 0, -500}, true);
    scene.lFoot->setEndPoint({10, 0, -500}, true);
    const RyBone *bone = createBoneAtClick(scene.lFoot, rayAt(30, 40), RyQuat());
    QCOMPARE(bone->getOrigin(), RyVec3(10, 0, -500));
    QVERIFY((bone->getEndPoint() - RyVec3(30, 40, 0)).length() < 1e-4f);
}

void RyBoneCreationTest::startsAtTheEndOfTheSkeleton()
{
    RyToolScene scene;
    scene.figure->setEndPoint({0, 42, 0});
    const RyBone *bone = createBoneAtClick(scene.figure, rayAt(1, 2), RyQuat());
    QCOMPARE(bone->getOrigin(), RyVec3(0, 42, 0));
    QCOMPARE(bone->getNodeParent(), static_cast<RyNode *>(scene.figure));
}

void RyBoneCreationTest::names_data()
{
    QTest::addColumn<QString>("parentName");
    QTest::addColumn<QString>("parentLabel");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::newRow("free without its number") << "Arm2"
                                             << "Left Arm 2"
                                             << "Arm"
                                             << "Left Arm";
    QTest::newRow("taken by the parent") << "Arm"
                                         << "Left Arm"
                                         << "Arm2"
                                         << "Left Arm 2";
    QTest::newRow("taken by another") << "hip7"
                                      << "Hip 7"
                                      << "hip2"
                                      << "Hip";
}

void RyBoneCreationTest::names()
{
    QFETCH(QString, parentName);
    QFETCH(QString, parentLabel);
    RyToolScene scene;
    scene.lFoot->setName(parentName);
    scene.lFoot->setLabel(parentLabel);
    const RyBone *bone = createBoneAtClick(scene.lFoot, rayAt(1, 2), RyQuat());
    QTEST(bone->getName(), "name");
    QTEST(bone->getLabel(), "label");
    QCOMPARE(bone->objectName(), bone->getName());
}

void RyBoneCreationTest::namesUnderTheSkeleton()
{
    RyToolScene scene;
    QStringList names;
    for (int i = 0; i < 3; ++i) {
        const RyBone *bone = createBoneAtClick(scene.figure, rayAt(1, 2), RyQuat());
        names << bone->getName() << bone->getLabel();
    }
    QCOMPARE(names, QStringList({"Bone", "Bone", "Bone2", "Bone 2", "Bone3", "Bone 3"}));
}

void RyBoneCreationTest::nameIsOfNoLanguage()
{
    struct Translator : QTranslator
    {
        QString translate(const char *context, const char *text, const char *, int) const override
        {
            return qstrcmp(context, "RyJointEditorTool") == 0 && qstrcmp(text, "Bone") == 0 ? QStringLiteral("Knochen")
                                                                                            : QString();
        }
        bool isEmpty() const override { return false; }
    } translator;
    RyToolScene scene;
    QCoreApplication::installTranslator(&translator);
    const RyBone *bone = createBoneAtClick(scene.figure, rayAt(1, 2), RyQuat());
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(bone->getName(), QStringLiteral("Bone"));
    QCOMPARE(bone->getLabel(), QStringLiteral("Knochen"));
}

void RyBoneCreationTest::becomesTheLastChild()
{
    RyToolScene scene;
    QStringList calls;
    QObject listener; // goes before the scene does
    connect(ryScene(), &RyScene::nodeAdded, &listener,
            [&](RyNode *node) { calls.append(node->getNodeParent() ? "added below" : "added"); });
    connect(scene.hip, &RyNode::childrenChanged, &listener, [&] { calls.append("child"); });
    RyBone *bone = createBoneAtClick(scene.hip, rayAt(1, 2), RyQuat());
    QCOMPARE(calls, QStringList({"added", "child"}));
    QCOMPARE(bone->getScene(), ryScene());
    QCOMPARE(ryScene()->getNodes().back(), static_cast<RyNode *>(bone));
    QCOMPARE(scene.hip->getNodeChild(scene.hip->getNumNodeChildren() - 1), static_cast<RyNode *>(bone));
    QCOMPARE(int(scene.figure->getAllBones().size()), 6);
}

void RyBoneCreationTest::needsASkeleton()
{
    RyToolScene scene;
    const QString before = scene.dump();
    QVERIFY(!createBoneAtClick(nullptr, rayAt(1, 2), RyQuat()));
    QVERIFY(!createBoneAtClick(scene.prop, rayAt(1, 2), RyQuat()));
    QCOMPARE(scene.dump(), before);
}

void RyBoneCreationTest::withoutSkin()
{
    RyToolScene scene;
    QVERIFY(!scene.figure->getSkinBinding());
    QVERIFY(createBoneAtClick(scene.hip, rayAt(1, 2), RyQuat()));
    QVERIFY(!scene.figure->getSkinBinding());
    QVERIFY(!scene.figure->getObject());
}

void RyBoneCreationTest::skinWithoutMaps()
{
    RyToolScene scene;
    const RySkinBinding *skin = giveSkin(scene.figure, vertexCount);
    RyBone *bone = createBoneAtClick(scene.hip, rayAt(1, 2), RyQuat());
    QCOMPARE(skin->getNumBoneBindings(), 1);
    const RyBoneBinding *binding = skin->findBoneBinding(bone);
    QVERIFY(binding);
    QVERIFY(binding->getAllWeightMaps().empty());
    QCOMPARE(binding->getName(), bone->getName());
}

void RyBoneCreationTest::mapKinds_data()
{
    QTest::addColumn<bool>("local");
    QTest::addColumn<bool>("general");
    QTest::newRow("local") << true << false;
    QTest::newRow("general") << false << true;
    QTest::newRow("both") << true << true;
}

void RyBoneCreationTest::mapKinds()
{
    QFETCH(bool, local);
    QFETCH(bool, general);
    RyToolScene scene;
    RySkinBinding *skin = giveSkin(scene.figure, vertexCount);
    auto *ofHip = new RyBoneBinding;
    ofHip->setBone(scene.hip);
    if (local)
        ofHip->setLocalWeights(ryMapOf({65535, 65535, 65535}), 1);
    if (general)
        ofHip->setWeights(ryMapOf({65535, 65535, 65535}));
    skin->addBoneBinding(ofHip);

    const RyBoneBinding *binding = skin->findBoneBinding(createBoneAtClick(scene.lFoot, rayAt(1, 2), RyQuat()));
    QVERIFY(binding);
    QCOMPARE(skin->bindings().back(), binding);
    QCOMPARE(int(binding->getAllWeightMaps().size()), (local ? 4 : 0) + (general ? 1 : 0));
    for (int axis = 0; axis < 3; ++axis)
        QCOMPARE(isEmptyMap(binding->getLocalWeights(axis)), local);
    QCOMPARE(isEmptyMap(binding->getScaleWeights()), local);
    QCOMPARE(isEmptyMap(binding->getWeights()), general);
}

void RyBoneCreationTest::skinWithoutVertices()
{
    RyToolScene scene;
    RySkinBinding *skin = giveSkin(scene.figure, 0);
    skin->setMapKinds(true, true);
    const RyBoneBinding *binding = skin->findBoneBinding(createBoneAtClick(scene.hip, rayAt(1, 2), RyQuat()));
    QVERIFY(binding);
    QVERIFY(binding->getAllWeightMaps().empty());

    // The same for a figure whose object has no shape at all.
    auto *object = new RyObject;
    auto *bare = new RySkinBinding;
    bare->setMapKinds(true, true);
    object->addModifier(bare);
    scene.figure->setObject(object);
    const RyBoneBinding *second = bare->findBoneBinding(createBoneAtClick(scene.hip, rayAt(1, 2), RyQuat()));
    QVERIFY(second);
    QVERIFY(second->getAllWeightMaps().empty());
}

void RyBoneCreationTest::normalizesTheSkin()
{
    RyToolScene scene;
    RySkinBinding *skin = giveSkin(scene.figure, vertexCount);
    auto *ofHip = new RyBoneBinding;
    ofHip->setBone(scene.hip);
    ofHip->setWeights(ryMapOf({40000, 65535, 0}));
    ofHip->setLocalWeights(ryMapOf({100, 0, 65535}), 2);
    ofHip->setScaleWeights(ryMapOf({0, 7, 65535}));
    skin->addBoneBinding(ofHip);
    auto *ofThigh = new RyBoneBinding;
    ofThigh->setBone(scene.lThigh);
    ofThigh->setWeights(ryMapOf({40000, 0, 0}));
    skin->addBoneBinding(ofThigh);

    createBoneAtClick(scene.lFoot, rayAt(1, 2), RyQuat());
    const auto weights = [](const RyWeightMap *map) {
        return std::vector<int>{map->getWeight(0), map->getWeight(1), map->getWeight(2)};
    };
    // Shares of one half each: the rounding rest goes to the first. What nobody moves stays unmoved.
    QCOMPARE(ofHip->getWeights()->getWeight(0) + ofThigh->getWeights()->getWeight(0), 65535);
    QVERIFY(std::abs(ofHip->getWeights()->getWeight(0) - 32768) <= 1);
    QCOMPARE(int(ofHip->getWeights()->getWeight(1)), 65535);
    QCOMPARE(int(ofHip->getWeights()->getWeight(2)), 0);
    QCOMPARE(weights(ofHip->getLocalWeights(2)), std::vector<int>({65535, 0, 65535}));
    QCOMPARE(weights(ofHip->getScaleWeights()), std::vector<int>({0, 65535, 65535}));
}

void RyBoneCreationTest::skeletonThatIsNoFigure()
{
    RyToolScene scene;
    auto *skeleton = new RySkeleton;
    skeleton->setName(QStringLiteral("other"));
    ryScene()->addNode(skeleton);
    auto *object = new RyObject;
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    skeleton->setObject(object);
    const RyBone *bone = createBoneAtClick(skeleton, rayAt(1, 2), RyQuat());
    QVERIFY(bone);
    QCOMPARE(bone->getSkeleton(), skeleton);
    QCOMPARE(skin->getNumBoneBindings(), 0);
}

void RyBoneCreationTest::leavesUndoAndSelectionAlone()
{
    RyToolScene scene;
    giveSkin(scene.figure, vertexCount)->setMapKinds(true, true);
    scene.select(scene.lShin);
    {
        RyUndoStackHold hold;
        scene.lShin->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    const QSignalSpy selection(ryScene(), SIGNAL(nodeSelectionListChanged()));
    createBoneAtClick(scene.lShin, rayAt(1, 2), RyQuat());
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Earlier"));
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(selection.count(), 0);
    QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(scene.lShin));
    ryUndoStack()->undo();
    QCOMPARE(int(scene.figure->getAllBones().size()), 6);
}

void RyBoneCreationTest::joinsAnOpenHold()
{
    RyToolScene scene;
    giveSkin(scene.figure, vertexCount)->setMapKinds(true, true);
    const QString before = scene.dump();
    RyUndoStackHold hold;
    createBoneAtClick(scene.lShin, rayAt(1, 2), RyQuat());
    hold.accept(QStringLiteral("Bone"));
    const QString after = scene.dump();
    QVERIFY(after != before);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

RY_TEST(RyBoneCreationTest)

#include "tst_boneCreation.moc"
