#include "parametric/ParamArm.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyScene.h"
#include "support/RyTest.h"

/// A parametric figure in the scene: duplicates, conversion to a prop, removal.
class RyLegacyFigureTest : public QObject
{
    Q_OBJECT

private:
    /// A figure with all that is below it and a binding of its own over the same object's shape.
    static RyLegacyBinding *duplicate(const ParamArm &f, RyLegacyFigure *&figure, RyElementDuplicateContext &context)
    {
        context.setDuplicateFullNodeHierarchy(true);
        figure = qobject_cast<RyLegacyFigure *>(f.skeleton->doDuplicateElement(&context));
        auto *binding = qobject_cast<RyLegacyBinding *>(f.binding->doDuplicateElement(&context));
        figure->setName("copy");
        for (RyBone *bone : figure->getAllBones())
            bone->setName(bone->getName() + '2');
        context.createAlaises();
        context.createERC();
        context.doResolve();
        context.doFinalize();
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(ParamArm::makeTube()));
        object->addModifier(binding);
        figure->setObject(object);
        return binding;
    }

private slots:
    void init() { ryScene()->clear(); }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void isASkeletonAndNoFigure()
    {
        RyLegacyFigure figure;
        QVERIFY(figure.inherits("RySkeleton"));
        QVERIFY(!figure.inherits("RyFigure"));
        QCOMPARE(figure.getSkeleton(), &figure);
    }

    void duplicatedFigureHasJointsOfItsOwn()
    {
        const ParamArm f(new RyLegacyFigure);
        ryScene()->addNode(f.skeleton.get());
        f.bendOf(f.elbow, "jointy")->setAngles(2, 1, -0.5f, -1);
        f.bendOf(f.elbow, "jointy")->setLabel("Bend");
        f.scaleOf(f.arm, "elbow_smoox")->setLoValid(true);
        f.twistOf(f.arm, "elbow_twistx")->setDriver(nullptr);
        f.twistOf(f.hand, "twistx")->getStaticSphere()->getZRotControl()->setValue(33);
        f.jointOf(f.hand)->setName("wrist"); // a name of its own
        RyLegacyFigure *figure = nullptr;
        RyElementDuplicateContext context(nullptr);
        const RyLegacyBinding *binding = duplicate(f, figure, context);
        QVERIFY(figure && figure->getScene() == ryScene());
        QCOMPARE(RyLegacyBinding::findBinding(figure), binding);
        QCOMPARE(figure->getAllBones().size(), size_t(3));
        QCOMPARE(binding->joints().size(), size_t(3));
        for (const RyBone *bone : {f.arm, f.elbow, f.hand}) {
            const RyLegacyJoint *joint = f.jointOf(bone);
            const RyLegacyJoint *copy = RyLegacyJoint::findJoint(figure->findBone(bone->getName() + '2'));
            QVERIFY(copy && copy != joint);
            QCOMPARE(context.findNewElement(joint), copy);
            QCOMPARE(copy->getName(), bone == f.hand ? QString("wrist") : bone->getName() + '2');
            QCOMPARE(copy->params().size(), joint->params().size());
            for (size_t i = 0; i < copy->params().size(); ++i) {
                RyLegacyJointParam *from = joint->params()[i];
                RyLegacyJointParam *to = copy->params()[i];
                QVERIFY(to != from && to->getJoint() == copy);
                QCOMPARE(to->hasOwnLabel(), from->hasOwnLabel());
                QCOMPARE(to->getDriver(), qobject_cast<RyBone *>(context.findNewElement(from->getDriver())));
                to->setDriver(from->getDriver());
                QCOMPARE(ryParamText(*to), ryParamText(*from));
            }
        }
    }

    void linksLeadToDuplicates()
    {
        const ParamArm f(new RyLegacyFigure);
        ryScene()->addNode(f.skeleton.get());
        auto *outside = new RyNode;
        outside->setName("outside");
        ryScene()->addNode(outside);
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyERCLink::create(f.hand->getXTransControl(), bend->getStaticAngleAController());
        RyERCLink::create(outside->getXTransControl(), bend->getDynamicAngleBController());
        RyERCLink::create(bend->getStaticSphere()->getXTransControl(),
                          f.bendOf(f.arm, "elbow_jointy")->getDynamicSphere()->getYTransControl());
        RyERCLink::create(bend->getStaticAngleDController(), f.hand->getYTransControl());
        RyLegacyFigure *figure = nullptr;
        RyElementDuplicateContext context(nullptr);
        const RyLegacyBinding *binding = duplicate(f, figure, context);
        RyBone *hand = figure->findBone("hand2");
        const RyLegacyJoint *joint = binding->findJoint(figure->findBone("elbow2"));
        const auto *copy = qobject_cast<RyLegacyBendParam *>(joint->findParam("jointy"));
        const auto controllerOf = [](const RyFloatProperty *controlled) {
            const std::vector<RyERCLink *> &links = controlled->getControllerLinks();
            return links.size() == 1 ? links[0]->getController() : nullptr;
        };
        QCOMPARE(controllerOf(copy->getStaticAngleAController()), hand->getXTransControl());
        QCOMPARE(controllerOf(copy->getDynamicAngleBController()), outside->getXTransControl());
        QCOMPARE(controllerOf(hand->getYTransControl()), copy->getStaticAngleDController());
        const RyLegacyJointParam *partner = copy->findPartner();
        QVERIFY(partner);
        QCOMPARE(controllerOf(partner->getDynamicSphere()->getYTransControl()),
                 copy->getStaticSphere()->getXTransControl());
    }

    void duplicateWithoutItsBonesKeepsTheOriginals()
    {
        const ParamArm f(new RyLegacyFigure);
        RyElementDuplicateContext context(nullptr);
        const RyRef<RyLegacyBinding> binding(qobject_cast<RyLegacyBinding *>(f.binding->doDuplicateElement(&context)));
        context.doResolve();
        QCOMPARE(binding->findJoint(f.elbow)->getName(), QString("elbow"));
        QCOMPARE(binding->findJoint(f.elbow)->findParam("hand_twistx")->getDriver(), f.hand);
        QVERIFY(!f.binding->doDuplicateElement(nullptr));
        QVERIFY(!f.jointOf(f.elbow)->doDuplicateElement(nullptr));
        QVERIFY(!f.bendOf(f.elbow, "jointy")->doDuplicateElement(nullptr));
    }

    void duplicatesThatNobodyTakesGo()
    {
        const ParamArm f(new RyLegacyFigure);
        QPointer<RyElement> joint;
        QPointer<RyElement> param;
        {
            RyElementDuplicateContext context(nullptr);
            QPointer<RyElement> binding(f.binding->doDuplicateElement(&context));
            joint = context.findNewElement(f.jointOf(f.elbow));
            param = context.findNewElement(f.bendOf(f.elbow, "jointy"));
            QVERIFY(binding && joint && param);
        }
        QVERIFY(!joint && !param);
    }

    void propMadeOfAFigureStaysWhenItsStepGoes()
    {
        ParamArm f(new RyLegacyFigure);
        ryScene()->addNode(f.skeleton.get());
        auto *hat = new RyNode;
        hat->setName("hat");
        ryScene()->addNode(hat);
        f.hand->addNodeChild(hat);
        RyLegacyTwistParam *twist = f.twistOf(f.elbow, "twistx");
        for (RyFloatProperty *controller :
             {twist->getBlendStartPostionController(), twist->getDynamicSphere()->getYTransControl()}) {
            RyERCLink::create(controller, hat->getXScaleControl());
            controller->setValue(controller->getDefaultValue() + 0.25f);
        }
        QCOMPARE(hat->getXScaleControl()->getValue(), 1.5f);
        const QString before = rySceneDump(*ryScene());
        const QPointer<RyLegacyBinding> binding(f.binding);
        RyNode *prop = RySkeleton::convertFigureToProp(f.skeleton.get(), "prop");
        f.skeleton = {};
        QVERIFY(prop->getObject()->getModifiers().empty());
        QCOMPARE(hat->getNodeParent(), prop);
        QVERIFY(hat->getXScaleControl()->getControllerLinks().empty());
        const QString after = rySceneDump(*ryScene());
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(*ryScene()), before);
        QCOMPARE(hat->getXScaleControl()->getValue(), 1.5f);
        ryUndoStack()->redo();
        QCOMPARE(rySceneDump(*ryScene()), after);
        QVERIFY(binding);
        ryUndoStack()->clearAll();
        QVERIFY(!binding);
        QCOMPARE(rySceneDump(*ryScene()), after);
    }

    void removedFigureComesBackWithItsJoints()
    {
        ParamArm f(new RyLegacyFigure);
        ryScene()->addNode(f.skeleton.get());
        const QString before = rySceneDump(*ryScene());
        const QPointer<RyLegacyJointParam> param(f.bendOf(f.elbow, "jointy"));
        {
            RyUndoStackHold hold;
            ryScene()->removeNode(f.skeleton.get());
            hold.accept("Remove");
        }
        f.skeleton = {};
        QVERIFY(!rySceneDump(*ryScene()).contains("figure"));
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(*ryScene()), before);
        ryUndoStack()->redo();
        ryUndoStack()->clearAll();
        QVERIFY(!param);
    }
};

RY_TEST(RyLegacyFigureTest)
#include "tst_RyLegacyFigure.moc"
