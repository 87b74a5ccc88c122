#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyRig.h"
#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

#include <QComboBox>

namespace {

/// A sleeve of eleven rings along X, radius 2 and 20 long, that hangs somewhere on the doll's left hand as somebody
/// left it, converted so that its bone joins the doll.
struct Sleeve : RyParametricToolScene
{
    static constexpr int Around = 8, Rings = 11;

    explicit Sleeve(const QStringList &groups = {"gold"}, bool onProp = false, bool inheritsScale = true)
    {
        doll.lArm->getYScaleControl()->setValue(1.4f);
        for (RyBone *each : doll.figure->getAllBones())
            each->setInheritScale(inheritsScale);
        // Bones that inherit none drop that of the figure as well, which its mesh does not.
        doll.figure->getScaleControl()->setValue(inheritsScale ? 1.2f : 1.0f);
        RyNode *parent = doll.lHand;
        if (onProp) {
            parent = new RyNode;
            parent->setName("handle");
            doll.lHand->addNodeChild(parent);
            ryScene()->addNode(parent);
            pose(parent, {0.7f, 1, 1.2f});
        }
        prop = new RyNode;
        prop->setName("sleeve");
        prop->setObject(makeTube(groups));
        prop->setOrigin({-1, 0, 2}, true);
        prop->setEndPoint({9, 1, 0}, true);
        prop->setOrientation(RyQuat({1, 2, 3}, 0.6f), true);
        prop->setOrigin({0, 0, 0});
        prop->setEndPoint({10, 0, 0});
        prop->setInheritScale(inheritsScale);
        parent->addNodeChild(prop);
        ryScene()->addNode(prop);
        pose(prop, {1.5f, 0.8f, 1});
        ryUndoStack()->clearAll();
    }

    void convert()
    {
        figure = RyLegacyFigure::convertPropToFigure(prop, "cuff", true);
        binding = RyLegacyBinding::findBinding(figure);
        bone = doll.figure->findBone("cuff");
    }
    RyBone *addChild()
    {
        select(bone);
        RyFilledBoneDialog dialog(tool);
        dialog.fill("claw", "Claw");
        dialog.order->setCurrentIndex(dialog.order->findData(int(RyRotationOrder::XYZ)));
        return dialog.accepts() ? doll.figure->findBone("claw") : nullptr;
    }

    static void pose(RyNode *node, const RyVec3 &scale)
    {
        node->getXTransControl()->setValue(3);
        node->getYRotControl()->setValue(40);
        node->getZRotControl()->setValue(-25);
        node->getXScaleControl()->setValue(scale.x);
        node->getYScaleControl()->setValue(scale.y);
        node->getZScaleControl()->setValue(scale.z);
    }
    std::vector<RyVec3> rest() const
    {
        return qobject_cast<RyFacetShape *>(figure->getObject()->getCurrentShape())->getFacetMesh()->getPositions();
    }
    std::vector<RyVec3> world() const
    {
        std::vector<RyVec3> points = figure->getObject()->getDeformedPositions();
        for (RyVec3 &point : points)
            point = figure->worldMap().mapPoint(point);
        return points;
    }
    /// How far a ring is from where that bone takes it, in figure space.
    float awayFrom(const RyNode *node, int ring) const
    {
        const std::vector<RyVec3> &points = figure->getObject()->getDeformedPositions();
        float most = 0;
        for (int i = ring * Around; i < (ring + 1) * Around; ++i)
            most = std::max(most, (points[size_t(i)] - node->figureMap().mapPoint(rest()[size_t(i)])).length());
        return most;
    }
    float awayFrom(const RyNode *node) const
    {
        float most = 0;
        for (int ring = 0; ring < Rings; ++ring)
            most = std::max(most, awayFrom(node, ring));
        return most;
    }

    RyNode *prop = nullptr;
    RyLegacyFigure *figure = nullptr;
    RyLegacyBinding *binding = nullptr;
    RyBone *bone = nullptr;

private:
    static RyObject *makeTube(const QStringList &groups)
    {
        std::vector<RyVec3> points;
        std::vector<RyFacet> facets;
        std::vector<int> groupOf;
        for (int ring = 0; ring < Rings; ++ring) {
            for (int i = 0; i < Around; ++i) {
                const float angle = 0.785398163f * float(i);
                points.push_back({2.0f * float(ring), 2 * std::cos(angle), 2 * std::sin(angle)});
                if (ring + 1 == Rings)
                    continue;
                const int next = (i + 1) % Around;
                const int row = ring * Around;
                facets.push_back({{row + i, row + next, row + Around + next, row + Around + i}, -1});
                groupOf.push_back(ring % int(groups.size()));
            }
        }
        auto *mesh = new RyFacetMesh;
        mesh->setPositions(points);
        mesh->setFacets(facets);
        for (const QString &group : groups)
            mesh->createFaceGroup(group);
        mesh->setGroupsOfFacets(groupOf);
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        return object;
    }
};

} // namespace

/// Parametric figures whose bone joined another skeleton.
class RyJoinedFigureTest : public QObject
{
    Q_OBJECT

private slots:
    /// Bones that joined another skeleton stand behind the figure's own where weights are fitted.
    void isSavedBesideBonesOfItsOwn()
    {
        Sleeve sleeve;
        sleeve.convert();
        createChildBone(sleeve.figure, "tassel", "Tassel", RyRotationOrder());
        const QTemporaryDir folder;
        QString error;
        QVERIFY2(RySceneFile::save(ryScene(), folder.filePath("joined.glb"), &error), qPrintable(error));
        const std::vector<RyNode *> bones = RyLegacyRig::bonesOf(sleeve.binding, *sleeve.figure);
        const auto fit = sleeve.binding->keptFit();
        QVERIFY(fit && bones.size() > 2);
        QCOMPARE(fit->bones.size(), bones.size());
        QCOMPARE(fit->input.limits.size(), bones.size());
        for (size_t i = 0; i < bones.size(); ++i)
            QCOMPARE(fit->bones[i].bone.data(), qobject_cast<RyBone *>(bones[i]));
    }

    void nothingMovesAndItFollowsWhatItJoined_data()
    {
        QTest::addColumn<bool>("onProp");
        QTest::addColumn<bool>("inheritsScale");
        QTest::newRow("on a bone") << false << true;
        QTest::newRow("on a bone, scale not inherited") << false << false;
        QTest::newRow("on a prop on a bone") << true << true;
        QTest::newRow("on a prop on a bone, scale not inherited") << true << false;
    }
    void nothingMovesAndItFollowsWhatItJoined()
    {
        QFETCH(bool, onProp);
        QFETCH(bool, inheritsScale);
        Sleeve f({"gold"}, onProp, inheritsScale);
        std::vector<RyVec3> before = f.prop->getObject()->getDeformedPositions();
        for (RyVec3 &point : before)
            point = f.prop->worldMap().mapPoint(point);
        const QString dumpBefore = rySceneDump(*ryScene());
        f.convert();
        QVERIFY(f.bone);
        for (size_t i = 0; i < before.size(); ++i)
            QVERIFY(ryIsNear(f.world()[i], before[i], 1e-3f));
        const QString dumpAfter = rySceneDump(*ryScene());
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(*ryScene()), dumpBefore);
        QVERIFY(!RyLegacyJoint::findJoint(f.bone));
        ryUndoStack()->redo();
        QCOMPARE(rySceneDump(*ryScene()), dumpAfter);
        for (RyNode *posed : std::vector<RyNode *>{f.bone, f.bone->getNodeParent(), f.doll.lArm, f.doll.chest}) {
            const std::vector<RyVec3> last = f.world();
            posed->getXRotControl()->setValue(posed->getXRotControl()->getValue() + 50.0f);
            posed->getZScaleControl()->setValue(1.3f);
            QVERIFY((f.world()[0] - last[0]).length() > 0.5f);
            QVERIFY2(f.awayFrom(f.bone) < 1e-3f, qPrintable(posed->getName()));
        }
    }

    void childBendsTheMesh()
    {
        Sleeve f;
        f.convert();
        const size_t ofDoll = f.doll.binding->joints().size();
        QCOMPARE(RyLegacyJoint::findJoint(f.bone), f.binding->joints()[0]);
        QCOMPARE(RyLegacyJoint::findJoint(f.doll.lHand), f.doll.joint(f.doll.lHand));
        RyBone *claw = f.addChild();
        QVERIFY(claw && claw->getSkeleton() == f.doll.figure);
        QCOMPARE(f.doll.binding->joints().size(), ofDoll);
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(claw);
        QVERIFY(joint && joint->getBinding() == f.binding);
        for (const RyLegacyJoint *each : f.binding->joints())
            QCOMPARE(each->getGroupName(), QString("gold"));
        QCOMPARE(legacyParamsOf(f.binding->joints()[0]).mid(3),
                 QStringList({"claw_twistx X claw", "claw_jointy Y claw", "claw_jointz Z claw", "claw_smoox X claw"}));

        claw->getZRotControl()->setValue(60);
        f.doll.lArm->getYRotControl()->setValue(-30);
        QVERIFY(f.awayFrom(f.bone, 0) < 1e-3f);
        QVERIFY(f.awayFrom(f.bone, 4) < 1e-3f);
        QVERIFY(f.awayFrom(claw, 10) < 1e-3f);
        QVERIFY(f.awayFrom(f.bone, 10) > 5.0f);
        // Between the rays: on the way from one to the other.
        QVERIFY(f.awayFrom(claw, 5) > 0.5f);

        // Of the own mesh, and of the doll's skeleton the same.
        RyLegacyJointParam *copy = f.binding->joints()[0]->findParam(QString("claw_jointz"));
        const RyRef<RyWeightMap> weights(copy->getWeights(f.figure));
        QCOMPARE(weights->getNumWeights(), int(f.rest().size()));
        QCOMPARE(int(weights->getWeight(10 * Sleeve::Around)), 65535);
        QCOMPARE(int(weights->getWeight(0)), 0);
        const RyRef<RyWeightMap> asked(copy->getWeights(f.doll.figure));
        QCOMPARE(asked->getNumWeights(), weights->getNumWeights());
        for (int i = 0; i < weights->getNumWeights(); ++i)
            QCOMPARE(asked->getWeight(i), weights->getWeight(i));
    }

    void childJointIsUndone()
    {
        Sleeve f;
        f.convert();
        checkUndoInHold(
            [&] { createChildBone(f.bone, QStringLiteral("claw"), QStringLiteral("Claw"), RyRotationOrder(0)); });
        RyBone *claw = f.doll.figure->findBone("claw");
        claw->getZRotControl()->setValue(60);
        QVERIFY(f.awayFrom(claw, 10) < 1e-3f);
    }

    void ungroupedVerticesAreTheJoinedBones()
    {
        Sleeve f({"gold", "stone"});
        f.convert();
        const RyLegacyRig rig = RyLegacyRig::of(*f.binding, *f.figure);
        const std::vector<RyNode *> bones = RyLegacyRig::bonesOf(f.binding, *f.figure);
        QCOMPARE(bones, (std::vector<RyNode *>{f.doll.chest, f.doll.lArm, f.doll.lHand, f.bone}));
        QCOMPARE(rig.bones.size(), bones.size());
        QVERIFY(!rig.owners.empty());
        for (const int owner : rig.owners)
            QCOMPARE(owner, 3);
        QVERIFY(f.awayFrom(f.bone) < 1e-3f);
    }

    void spheresLieAroundTheFaceGroup()
    {
        Sleeve f;
        f.convert();
        const RyVec3 center = f.binding->joints()[0]->params()[0]->getDynamicMatrix().translation();
        // Of the box in the bone's axes; the origin is (0,0,0), so that these turn about it.
        RyBox3 box;
        for (const RyVec3 &point : f.rest())
            box.include(f.bone->getOrientation().inverse().multVec(point));
        QVERIFY(ryIsNear(center, box.getCenter(), 1e-3f));
    }

    void paneListsWhatComesAndGoes()
    {
        Sleeve f;
        f.convert();
        f.select(f.bone);
        const auto *list = f.tool->frame()->findChild<QComboBox *>("JointEditorParameterCmb");
        const int all = list->count();
        QVERIFY(all > 1);
        {
            RyUndoStackHold hold;
            f.figure->getObject()->removeModifier(f.binding);
            hold.accept("Remove");
        }
        QCOMPARE(list->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(list->count(), all);
        {
            RyUndoStackHold hold;
            ryScene()->removeNode(f.figure);
            hold.accept("Remove");
        }
        QCOMPARE(list->count(), 1);
        const RyRef<RyLegacyBinding> binding(f.binding);
        RyObject *object = f.figure->getObject();
        object->removeModifier(binding.get());
        ryUndoStack()->undo();
        QCOMPARE(list->count(), 1);
        object->addModifier(binding.get());
        QCOMPARE(list->count(), all);
        f.figure->getNodeParent()->removeNodeChild(f.figure);
        QCOMPARE(list->count(), all);
        f.figure->setFollowTarget(nullptr);
        QCOMPARE(list->count(), 1);
        f.figure->setFollowTarget(f.doll.figure);
        QCOMPARE(list->count(), all);
    }

    void endsWithTheFigure()
    {
        Sleeve f;
        f.convert();
        f.figure->setFollowTarget(nullptr);
        QVERIFY(RyLegacyJoint::findJoint(f.bone)); // it still hangs there
        f.figure->setFollowTarget(f.doll.figure);
        ryScene()->removeNode(f.figure);
        QVERIFY(!RyLegacyJoint::findJoint(f.bone));
        QVERIFY(!RyLegacyJoint::findJoint(nullptr));
        QVERIFY(RyLegacyJoint::findJoint(f.doll.lHand));
    }
};

RY_TEST(RyJoinedFigureTest)
#include "tst_joinedFigure.moc"
