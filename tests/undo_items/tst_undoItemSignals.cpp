#include "support/RyTest.h"

#include "ItemFamily.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <functional>

/// What undo and redo of one edit of each kind tell, and what is left of a value whose target is gone.
class UndoItemSignalsTest : public QObject
{
    Q_OBJECT
    using Edit = std::function<void(ItemFamily &)>;
    struct Row
    {
        const char *name;
        Edit edit;
        const char *undone;
        const char *redone = nullptr; // null: the same
    };
    static std::vector<Row> rows();

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        m_family = std::make_unique<ItemFamily>(QString());
        for (const auto &skeleton : m_family->skeletons)
            ryScene()->addNode(skeleton);
        // Hangs nowhere and is in no scene.
        m_family->bones.emplace_back(new RyBone);
    }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
        m_family.reset();
    }

    void everySwapTellsTheSame_data()
    {
        QTest::addColumn<int>("row");
        const std::vector<Row> all = rows();
        for (int i = 0; i < int(all.size()); ++i)
            QTest::newRow(all[size_t(i)].name) << i;
    }
    void everySwapTellsTheSame()
    {
        QFETCH(int, row);
        const Row expected = rows()[size_t(row)];
        SignalLog log;
        m_family->watch(log);
        log.watch(QStringLiteral("scene"), ryScene());
        RyUndoStackHold hold;
        expected.edit(*m_family);
        hold.accept(QStringLiteral("edit"));
        log.take();
        for (int round = 0; round < 3; ++round) {
            ryUndoStack()->undo();
            QCOMPARE(log.take().join(QLatin1Char(' ')), QString::fromLatin1(expected.undone));
            ryUndoStack()->redo();
            QCOMPARE(log.take().join(QLatin1Char(' ')),
                     QString::fromLatin1(expected.redone ? expected.redone : expected.undone));
        }
    }
    void membersThatAreGoneAreLeftOut();

private:
    std::unique_ptr<ItemFamily> m_family;
};

std::vector<UndoItemSignalsTest::Row> UndoItemSignalsTest::rows()
{
    return {
        {"name", [](ItemFamily &f) { f.bones[1]->setName(QStringLiteral("new")); },
         "bone1.nameChanged scene.nodeListChanged"},
        {"name that is the label", [](ItemFamily &f) { f.bones[0]->setName(QStringLiteral("new")); },
         "bone0.nameChanged bone0.labelChanged scene.nodeListChanged"},
        {"label", [](ItemFamily &f) { f.bones[1]->setLabel(QStringLiteral("new")); }, "bone1.labelChanged"},
        {"label equal to the name", [](ItemFamily &f) { f.bones[0]->setLabel(f.bones[0]->getName()); }, ""},
        {"raw value", [](ItemFamily &f) { f.bones[1]->getYRotControl()->setValue(3); },
         "bone1.poseChanged scene.drawnDataChanged bone1/yrot.currentValueChanged"},
        {"default", [](ItemFamily &f) { f.bones[1]->getEndXControl()->setDefaultValue(3); },
         "bone1.riggingChanged scene.drawnDataChanged bone1/endX.defaultValueChanged"},
        {"limit", [](ItemFamily &f) { f.bones[1]->getYRotControl()->setMax(300); }, "bone1/yrot.limitsChanged"},
        {"link", [](ItemFamily &f) { RyERCLink::create(f.bones[0]->getXRotControl(), f.bones[4]->getZRotControl()); },
         "bone4.poseChanged scene.drawnDataChanged bone4/zrot.currentValueChanged"},
        {"removed link",
         [](ItemFamily &f) { RyERCLink::remove(f.bones[1]->getXRotControl()->getControllerLinks().front()); },
         "bone1.poseChanged scene.drawnDataChanged bone1/xrot.currentValueChanged"},
        {"positions",
         [](ItemFamily &f) {
             f.meshes[1]->setVertex(3, {7, 7, 7});
         },
         "mesh1.meshChanged shape1.geometryChanged mesh1.contentChanged"},
        {"positions and back",
         [](ItemFamily &f) {
             const RyVec3 position = f.meshes[1]->getPositions()[3];
             f.meshes[1]->setVertex(3, {7, 7, 7});
             f.meshes[1]->setVertex(3, position);
         },
         ""},
        {"facets",
         [](ItemFamily &f) {
             f.meshes[1]->setFacets({{{0, 1, 2, -1}, -1}});
         },
         "mesh1.meshChanged shape1.geometryChanged mesh1.contentChanged mesh1.faceGroupsChanged"},
        {"new group", [](ItemFamily &f) { f.meshes[1]->createFaceGroup(QStringLiteral("new")); },
         "mesh1.faceGroupsChanged shape1.geometryChanged mesh1.contentChanged"},
        {"groups of facets",
         [](ItemFamily &f) {
             f.meshes[1]->setGroupsOfFacets({1, 1, 1, 1, 1, 1, 1});
         },
         "mesh1.faceGroupsChanged shape1.geometryChanged mesh1.contentChanged"},
        {"weights", [](ItemFamily &f) { f.maps[3]->setAffected(12, {1}, {100}); },
         "bulge3.weightsChanged binding3.bindingChanged map3.weightsChanged"},
        {"hidden", [](ItemFamily &f) { f.bones[1]->setHidden(true); }, "bone1.hiddenChanged scene.drawnDataChanged"},
        {"hidden and back",
         [](ItemFamily &f) {
             f.bones[1]->setHidden(true);
             f.bones[1]->setHidden(false);
         },
         ""},
        {"selectable", [](ItemFamily &f) { f.bones[1]->setSelectable(false); }, "scene.drawnDataChanged"},
        {"promoted", [](ItemFamily &f) { f.bones[1]->setPromoteSelection(true); },
         "bone1.promoteSelectionChanged scene.drawnDataChanged"},
        {"scale inherited", [](ItemFamily &f) { f.bones[1]->setInheritScale(false); },
         "bone1.inheritScaleChanged bone1.poseChanged scene.drawnDataChanged"},
        {"rotation order", [](ItemFamily &f) { f.bones[1]->setRotationOrder(RyRotationOrder(5)); },
         "bone1.rotationOrderChanged bone1.poseChanged scene.drawnDataChanged"},
        {"another parent", [](ItemFamily &f) { f.bones[2]->addNodeChild(f.bones[3], false, 0); },
         "bone2.childrenChanged bone1.childrenChanged scene.nodeListChanged",
         "bone1.childrenChanged bone2.childrenChanged scene.nodeListChanged"},
        {"no parent", [](ItemFamily &f) { f.bones[0]->removeNodeChild(f.bones[2]); },
         "bone0.childrenChanged scene.nodeListChanged"},
        {"node added", [](ItemFamily &f) { ryScene()->addNode(f.bones.back()); },
         "scene.nodeRemoved scene.nodeListChanged", "scene.nodeAdded scene.nodeListChanged"},
        {"node removed", [](ItemFamily &) { ryScene()->removeNode(ryScene()->findNode(QStringLiteral("Bone4"))); },
         "scene.nodeAdded scene.nodeListChanged bone1.childrenChanged scene.nodeListChanged",
         "bone1.childrenChanged scene.nodeListChanged bone4.aboutToBeRemoved scene.nodeRemoved scene.nodeListChanged"},
        {"object", [](ItemFamily &f) { f.skeletons[0]->setObject(f.objects[1]); }, "scene.drawnDataChanged"},
        {"selection map", [](ItemFamily &f) { f.skeletons[0]->setSelectionMap(f.pairings[1]); },
         "figure0.selectionMapChanged scene.drawnDataChanged"},
        {"followed skeleton", [](ItemFamily &f) { f.skeletons[0]->setFollowTarget(nullptr); },
         "figure0.followTargetChanged scene.drawnDataChanged"},
        {"drawn bones", [](ItemFamily &f) { f.skeletons[0]->setDrawGLBones(true); }, "scene.drawnDataChanged"},
        {"pairs", [](ItemFamily &f) { f.pairings[0]->removePair(0); }, "scene.drawnDataChanged pairing0.mapChanged"},
        {"modifier added", [](ItemFamily &f) { f.objects[0]->addModifier(f.skins[2]); },
         "object0.modifiersChanged scene.drawnDataChanged object0.contentChanged"},
        {"modifier removed", [](ItemFamily &f) { f.objects[0]->removeModifier(f.skins[0]); },
         "object0.modifiersChanged scene.drawnDataChanged object0.contentChanged"},
        {"shape", [](ItemFamily &f) { f.objects[0]->addShape(f.shapes[1]); },
         "object0.shapesChanged scene.drawnDataChanged object0.contentChanged"},
        {"mesh", [](ItemFamily &f) { f.shapes[0]->setFacetMesh(f.meshes[2]); },
         "shape0.facetMeshChanged scene.drawnDataChanged object0.contentChanged shape0.geometryChanged"},
        {"parts", [](ItemFamily &f) { f.shapes[0]->setParts(nullptr); },
         "scene.drawnDataChanged object0.contentChanged shape0.geometryChanged"},
        {"binding added", [](ItemFamily &f) { f.skins[0]->addBoneBinding(f.bindings[3]); },
         "scene.drawnDataChanged object0.contentChanged skin0.modifierChanged skin0.skinChanged"},
        {"binding removed", [](ItemFamily &f) { f.skins[0]->removeBoneBinding(f.bindings[0]); },
         "scene.drawnDataChanged object0.contentChanged skin0.modifierChanged skin0.skinChanged"},
        {"map kinds", [](ItemFamily &f) { f.skins[2]->setMapKinds(true, false); },
         "skin2.modifierChanged skin2.skinChanged"},
        {"bulge map", [](ItemFamily &f) { f.bulges[0]->setRightWeights(f.maps[3]); },
         "scene.drawnDataChanged object0.contentChanged skin0.modifierChanged skin0.skinChanged "
         "binding0.bindingChanged bulge0.weightsChanged"},
        {"bound bone", [](ItemFamily &f) { f.bindings[0]->setBone(f.bones[3]); },
         "scene.drawnDataChanged object0.contentChanged skin0.modifierChanged skin0.skinChanged "
         "binding0.bindingChanged"},
        {"bound map", [](ItemFamily &f) { f.bindings[1]->setWeights(nullptr); },
         "scene.drawnDataChanged object0.contentChanged skin1.modifierChanged skin1.skinChanged "
         "binding1.bindingChanged"},
        {"bound bulge", [](ItemFamily &f) { f.bindings[1]->setBulgeBinding(1, nullptr); },
         "scene.drawnDataChanged object0.contentChanged skin1.modifierChanged skin1.skinChanged "
         "binding1.bindingChanged"},
    };
}

// Their places stay empty; all else comes back.
void UndoItemSignalsTest::membersThatAreGoneAreLeftOut()
{
    RyRef<RyBone> bone = m_family->bones.back();
    const size_t count = ryScene()->getNodes().size();
    RyUndoStackHold hold;
    ryScene()->addNode(bone);
    m_family->bones[1]->addNodeChild(bone);
    m_family->objects[0]->addShape(m_family->shapes[1]);
    m_family->objects[0]->addShape(m_family->shapes[3]);
    m_family->objects[0]->addModifier(m_family->skins[2]);
    m_family->skins[0]->addBoneBinding(m_family->bindings[3]);
    hold.accept(QStringLiteral("all in"));
    ryUndoStack()->undo();
    QCOMPARE(ryScene()->getNodes().size(), count);
    delete bone.get();
    delete m_family->shapes[1].get();
    delete m_family->skins[2].get();
    delete m_family->bindings[3].get();
    for (int round = 0; round < 2; ++round) {
        ryUndoStack()->redo();
        QCOMPARE(ryScene()->getNodes().size(), count);
        QCOMPARE(m_family->bones[1]->getNumNodeChildren(), 2);
        QCOMPARE(m_family->objects[0]->getShapes(),
                 (std::vector<RyShape *>{m_family->shapes[0].get(), m_family->shapes[3].get()}));
        QCOMPARE(m_family->objects[0]->getModifiers().size(), size_t(2));
        QCOMPARE(m_family->skins[0]->getNumBoneBindings(), 2);
        ryUndoStack()->undo();
        QCOMPARE(m_family->objects[0]->getShapes(), std::vector<RyShape *>{m_family->shapes[0].get()});
    }
}

RY_TEST(UndoItemSignalsTest)
#include "tst_undoItemSignals.moc"
