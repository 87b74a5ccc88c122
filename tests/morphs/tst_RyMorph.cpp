#include "morphs/MorphedSheet.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

QStringList controlsOf(const RyNode &node)
{
    QStringList names;
    for (const RyPropertyGroup *group = node.getPropertyGroups()->getFirstChild(); group;
         group = group->getNextSibling()) {
        for (int i = 0; group->getName() == "Morphs" && i < group->getNumProperties(); ++i)
            names.append(group->getProperty(i)->getName());
    }
    return names;
}

/// A sheet in a scene, with three morphs that have values.
struct Stage
{
    Stage()
    {
        scene.addNode(sheet.skeleton.get());
        for (const char *name : {"smile", "frown", "blink"})
            sheet.addMorph(name, 10, 3, 100)->getValueControl()->setValue(0.25f);
    }
    QString dump() const { return rySceneDump(scene); }
    RyMorph *morph(int index) const { return sheet.shape->getMorphs()[size_t(index)]; }

    RyScene scene;
    MorphedSheet sheet;
};

} // namespace

class RyMorphTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void valuesStandAmongThePropertiesOfTheNode()
    {
        Stage stage;
        RyFloatProperty *control = stage.morph(1)->getValueControl();
        QCOMPARE(controlsOf(*stage.sheet.skeleton), QStringList({"smile", "frown", "blink"}));
        QCOMPARE(control->getDefaultValue(), 0.0f);
        QVERIFY(control->isClamped());
        control->setValue(7);
        QCOMPARE(control->getValue(), 1.0f);
        control->setValue(-7);
        QCOMPARE(control->getValue(), 0.0f);
        QCOMPARE(stage.morph(1)->getNode(), stage.sheet.skeleton.get());
        QString error;
        float value = 0;
        QCOMPARE(RyNodeLookup::findProperty(stage.scene, "figure:frown=0.5", false, &value, &error), control);
        QVERIFY(control->getOwner() == stage.morph(1));
        QVERIFY2(!RyNodeLookup::findProperty(stage.scene, "figure:frown=0.5", true, &value, &error), "it is no pose");
    }

    void otherDeltasShowAndAreUndone()
    {
        Stage stage;
        RyMorph *morph = stage.morph(1);
        const QString before = stage.dump();
        const std::vector<RyVec3> shown = stage.sheet.shape->getCurrentPositions();
        const std::vector<RyVec3> deltas = morph->deltas();
        int changes = 0;
        const QObject context;
        connect(stage.sheet.shape, &RyShape::geometryChanged, &context, [&changes] { ++changes; });
        std::vector<RyVec3> turned;
        for (const RyVec3 &delta : deltas)
            turned.emplace_back(delta.y, -delta.x, 2 * delta.z + 1);
        RyUndoStackHold hold;
        morph->setDeltas(turned);
        morph->setDeltas({RyVec3(1, 2, 3)}); // another number
        morph->setDeltas(turned);
        hold.accept("deltas");
        QCOMPARE(changes, 1);
        QVERIFY(morph->deltas() == turned);
        const std::vector<RyVec3> now = stage.sheet.shape->getCurrentPositions();
        for (size_t i = 0; i < turned.size(); ++i) {
            const auto vertex = size_t(morph->vertices()[i]);
            QVERIFY((now[vertex] - shown[vertex] - 0.25f * (turned[i] - deltas[i])).length() < 1e-4f);
        }
        const QString after = stage.dump();
        QVERIFY(after != before);
        ryUndoStack()->undo();
        QCOMPARE(stage.dump(), before);
        QVERIFY(stage.sheet.shape->getCurrentPositions() == shown);
        ryUndoStack()->redo();
        QCOMPARE(stage.dump(), after);
        QVERIFY(stage.sheet.shape->getCurrentPositions() == now);
    }

    void editsAreUndone()
    {
        Stage stage;
        const QString before = stage.dump();
        const auto edit = [&](auto work) {
            RyUndoStackHold hold;
            work();
            hold.accept("edit");
            const QString after = stage.dump();
            if (after == before)
                return false;
            ryUndoStack()->undo();
            if (stage.dump() != before)
                return false;
            ryUndoStack()->redo();
            if (stage.dump() != after)
                return false;
            ryUndoStack()->undo();
            return stage.dump() == before;
        };
        QVERIFY(edit([&] { stage.morph(0)->getValueControl()->setValue(0.75f); }));
        QVERIFY(edit([&] { stage.morph(0)->getValueControl()->setMax(2); }));
        QVERIFY(edit([&] { stage.sheet.shape->removeMorph(stage.morph(1)); }));
        QVERIFY(edit([&] { stage.sheet.addMorph("new", 0, 50, 9); }));
        QVERIFY(edit([&] {
            stage.sheet.shape->removeMorph(stage.morph(0));
            stage.morph(0)->getValueControl()->setValue(1);
            stage.sheet.addMorph("new", 0, 50, 9)->getValueControl()->setValue(0.5f);
        }));
        QCOMPARE(controlsOf(*stage.sheet.skeleton), QStringList({"smile", "frown", "blink"}));
    }

    void theControlGoesAlongWithTheObject()
    {
        Stage stage;
        RyNode *prop = new RyNode;
        prop->setName("prop");
        stage.scene.addNode(prop);
        RyFloatProperty *control = stage.morph(1)->getValueControl();
        RyERCLink::create(prop->getXRotControl(), control);
        RyERCLink::create(control, prop->getYTransControl());
        prop->getXRotControl()->setValue(0.5f);
        QCOMPARE(control->getValue(), 0.75f);
        QCOMPARE(prop->getYTransControl()->getValue(), 0.75f);
        const QString before = stage.dump();
        {
            RyUndoStackHold hold;
            const RyRef<RyObject> object(stage.sheet.skeleton->getObject());
            control->setValue(0.125f);
            stage.sheet.skeleton->setObject(nullptr);
            QVERIFY(controlsOf(*stage.sheet.skeleton).isEmpty());
            QVERIFY(!stage.morph(1)->getNode());
            prop->setObject(object);
            control->setValue(0.375f);
            hold.accept("move");
        }
        const QString after = stage.dump();
        QCOMPARE(controlsOf(*prop), QStringList({"smile", "frown", "blink"}));
        QCOMPARE(stage.morph(1)->getValueControl(), control);
        QCOMPARE(prop->getYTransControl()->getValue(), 0.875f);
        ryUndoStack()->undo();
        QCOMPARE(stage.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(stage.dump(), after);
    }

    void restoringThePoseLeavesValuesAlone()
    {
        Stage stage;
        stage.sheet.skeleton->clearPose();
        for (RyBone *bone : stage.sheet.bones)
            bone->clearPose();
        QCOMPARE(stage.morph(2)->getValueControl()->getValue(), 0.25f);
        QVERIFY(!stage.sheet.skeleton->isPosed());
    }

    void theDumpTellsOfMorphs()
    {
        Stage stage;
        const QString before = stage.dump();
        QVERIFY(before.contains("morph \"smile\" of 100"));
        auto *other = new RyMorph("blink", stage.morph(2)->vertices(), stage.morph(2)->deltas());
        const std::vector<RyVec3> &deltas = stage.morph(2)->deltas();
        std::vector<RyVec3> swapped = deltas;
        std::swap(swapped[3], swapped[4]);
        other->getValueControl()->setValue(0.25f);
        stage.sheet.shape->removeMorph(stage.morph(2));
        QVERIFY(stage.dump() != before);
        stage.sheet.shape->addMorph(other);
        QCOMPARE(stage.dump(), before);
        auto *turned = new RyMorph("blink", other->vertices(), swapped);
        turned->getValueControl()->setValue(0.25f);
        stage.sheet.shape->removeMorph(other);
        stage.sheet.shape->addMorph(turned);
        QVERIFY(stage.dump() != before);
    }

    /// One that somebody deleted, and a node that goes before its object.
    void endsOfLives()
    {
        auto stage = std::make_unique<Stage>();
        const RyRef<RyObject> object(stage->sheet.skeleton->getObject());
        RyFacetShape *shape = stage->sheet.shape;
        const QPointer<RyFloatProperty> control = shape->getMorphs()[0]->getValueControl();
        stage.reset();
        QVERIFY(control);
        QVERIFY(!shape->getMorphs()[0]->getNode());
        control->setValue(0.5f);
        QCOMPARE(shape->getMorphs()[0]->shownValue(), 0.5f);
        const RyRef<RyNode> node(new RyNode);
        node->setObject(object.get());
        QCOMPARE(controlsOf(*node).size(), 3);
    }
};

RY_TEST(RyMorphTest)
#include "tst_RyMorph.moc"
