#include "parametric/ParamArm.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "support/RyTest.h"

#include <functional>
#include <set>

namespace {

using Edit = std::pair<const char *, std::function<void(ParamArm &)>>;

std::vector<Edit> edits()
{
    return {
        {"joint's name", [](ParamArm &f) { f.jointOf(f.elbow)->setName("knee"); }},
        {"joint's label", [](ParamArm &f) { f.jointOf(f.elbow)->setLabel("elbow"); }},
        {"joint's bone", [](ParamArm &f) { f.jointOf(f.elbow)->setBone(f.skeleton->findBone("hand")); }},
        {"joint without bone", [](ParamArm &f) { f.jointOf(f.elbow)->setBone(nullptr); }},
        {"joint gone", [](ParamArm &f) { f.binding->removeJoint(f.jointOf(f.arm)); }},
        {"another joint", [](ParamArm &f) { f.binding->addJoint(new RyLegacyJoint); }},
        {"joints in another order",
         [](ParamArm &f) {
             const RyRef<RyLegacyJoint> joint(f.jointOf(f.arm));
             f.binding->removeJoint(joint.get());
             f.binding->addJoint(joint.get());
         }},
        {"parameter's name", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setName("x"); }},
        {"parameter's label", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setLabel("x"); }},
        {"axis", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setAxis(0); }},
        {"driver", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setDriver(f.hand); }},
        {"no driver", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setDriver(nullptr); }},
        {"flag", [](ParamArm &f) { f.scaleOf(f.elbow, "arm_smoox")->setLoValid(true); }},
        {"angle", [](ParamArm &f) { f.bendOf(f.elbow, "jointy")->setStaticD(-1.5f); }},
        {"zone", [](ParamArm &f) { f.twistOf(f.elbow, "twistx")->setStart(7); }},
        {"default",
         [](ParamArm &f) { f.twistOf(f.elbow, "twistx")->getBlendEndPostionController()->setDefaultValue(7); }},
        {"limit", [](ParamArm &f) { f.twistOf(f.elbow, "twistx")->getBlendEndPostionController()->setMax(7); }},
        {"dynamic sphere",
         [](ParamArm &f) { f.twistOf(f.elbow, "twistx")->getDynamicSphere()->getYRotControl()->setValue(7); }},
        {"static sphere",
         [](ParamArm &f) { f.twistOf(f.elbow, "twistx")->getStaticSphere()->getYRotControl()->setValue(7); }},
        {"parameter gone", [](ParamArm &f) { f.jointOf(f.elbow)->removeJointParam(f.bendOf(f.elbow, "hand_jointy")); }},
        {"another parameter", [](ParamArm &f) { f.jointOf(f.elbow)->addJointParam(new RyLegacyCurve); }},
        {"parameters in another order",
         [](ParamArm &f) {
             const RyRef<RyLegacyJointParam> param(f.bendOf(f.elbow, "jointy"));
             f.jointOf(f.elbow)->removeJointParam(param.get());
             f.jointOf(f.elbow)->addJointParam(param.get());
         }},
        {"link from a node",
         [](ParamArm &f) {
             RyERCLink::create(f.hand->getXTransControl(), f.bendOf(f.elbow, "jointy")->getStaticAngleAController());
         }},
        {"link to a node",
         [](ParamArm &f) {
             RyERCLink::create(f.bendOf(f.elbow, "jointy")->getStaticAngleAController(), f.hand->getXTransControl());
         }},
        {"link to a node from another parameter",
         [](ParamArm &f) {
             RyERCLink::create(f.bendOf(f.elbow, "jointz")->getStaticAngleAController(), f.hand->getXTransControl());
         }},
        {"link to a node from a sphere",
         [](ParamArm &f) {
             RyERCLink::create(f.bendOf(f.elbow, "jointz")->getStaticSphere()->getScaleControl(),
                               f.hand->getXTransControl());
         }},
        {"link between spheres",
         [](ParamArm &f) {
             RyERCLink::create(f.bendOf(f.elbow, "jointz")->getStaticSphere()->getXTransControl(),
                               f.bendOf(f.arm, "elbow_jointz")->getStaticSphere()->getXTransControl());
         }},
        {"no binding", [](ParamArm &f) { f.skeleton->getObject()->removeModifier(f.binding); }},
        {"figure gone", [](ParamArm &f) { ryScene()->removeNode(f.skeleton.get()); }},
        {"made a prop", [](ParamArm &f) { RySkeleton::convertFigureToProp(f.skeleton.get(), "prop"); }},
    };
}

} // namespace

/// The dump shows all of joints and parameters that undo brings back.
class LegacyDumpTest : public QObject
{
    Q_OBJECT

private:
    static QString dump() { return rySceneDump(*ryScene()); }

private slots:
    void init() { ryScene()->clear(); }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void everyEditShowsAndGoesBack_data()
    {
        QTest::addColumn<int>("index");
        const std::vector<Edit> list = edits();
        for (size_t i = 0; i < list.size(); ++i)
            QTest::newRow(list[i].first) << int(i);
    }

    void everyEditShowsAndGoesBack()
    {
        QFETCH(int, index);
        ParamArm f;
        ryScene()->addNode(f.skeleton.get());
        RyERCLink::create(f.arm->getXTransControl(), f.bendOf(f.hand, "jointy")->getDynamicAngleCController());
        const QString before = dump();
        {
            RyUndoStackHold hold;
            edits()[size_t(index)].second(f);
            hold.accept("Edit");
        }
        const QString after = dump();
        QVERIFY(after != before);
        for (int i = 0; i < 2; ++i) {
            ryUndoStack()->undo();
            QCOMPARE(dump(), before);
            ryUndoStack()->redo();
            QCOMPARE(dump(), after);
        }
    }

    void noTwoEditsLookAlike()
    {
        std::set<QString> seen;
        for (const Edit &edit : edits()) {
            ParamArm f;
            ryScene()->addNode(f.skeleton.get());
            edit.second(f);
            const QString text = dump();
            QVERIFY2(seen.insert(text).second, edit.first);
            ryScene()->clear();
        }
    }

    void equalFiguresGiveEqualTexts()
    {
        QString first;
        {
            ParamArm f;
            ryScene()->addNode(f.skeleton.get());
            first = dump();
            ryScene()->clear();
        }
        ParamArm f;
        ryScene()->addNode(f.skeleton.get());
        QCOMPARE(dump(), first);
        QVERIFY(first.contains("    joint \"elbow\" of #3 \"elbow\"\n"
                               "      RyLegacyTwistParam \"twistx\" axis 0 flags 0 driver #3 \"elbow\"\n"
                               "        \"start\" -24384 default -24384 limits -24384 24384 label \"Start\"\n"));
    }

    void figureGoesFromMemoryWithTheLastStep()
    {
        QPointer<RyLegacyJointParam> param;
        QPointer<RyLegacyJoint> joint;
        {
            ParamArm f;
            ryScene()->addNode(f.skeleton.get());
            param = f.bendOf(f.elbow, "jointy");
            joint = f.jointOf(f.elbow);
            RyUndoStackHold hold;
            ryScene()->removeNode(f.skeleton.get());
            f.skeleton = {};
            hold.accept("Remove");
            QVERIFY(param && joint);
        }
        QVERIFY(!param && !joint); // the stack was emptied

        ParamArm f;
        ryScene()->addNode(f.skeleton.get());
        param = f.bendOf(f.elbow, "jointy");
        joint = f.jointOf(f.elbow);
        RySkeleton::convertFigureToProp(f.skeleton.get(), "prop");
        QVERIFY(param && joint);
        ryUndoStack()->clearAll();
        QVERIFY(!param && !joint);
    }
};

RY_TEST(LegacyDumpTest)
#include "tst_legacy_dump.moc"
