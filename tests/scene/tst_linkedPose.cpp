#include "support/RyTest.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

/// Transforms of nodes whose pose controls others control.
class LinkedPoseTest : public QObject
{
    Q_OBJECT

    /// A posed figure with a bone and a control that turns it.
    struct Fixture
    {
        RyScene scene;
        RySkeleton *figure = new RySkeleton;
        RyBone *bone = add(figure, "bone", {3, 10, -2});
        RyBone *child = add(bone, "child", {5, 22, 1});
        RyBone *control = add(figure, "control", {-4, 8, 2});

        Fixture()
        {
            figure->getYRotControl()->setValue(25);
            figure->getXTransControl()->setValue(40);
            figure->getScaleControl()->setValue(1.5f);
            scene.addNode(figure);
            for (RyFloatProperty *property : {control->getXRotControl(), control->getYRotControl()})
                property->setDefaultValue(5);
            control->getXRotControl()->setValue(35);
            control->getYScaleControl()->setValue(1.25f);
            bone->getXRotControl()->setValue(12);
            bone->getZTransControl()->setValue(4);
            link(control->getXRotControl(), bone->getXRotControl());
            link(control->getYScaleControl(), bone->getZScaleControl());
            link(control->getXRotControl(), bone->getYTransControl());
        }

        static RyBone *add(RyNode *parent, const char *name, const RyVec3 &origin)
        {
            auto *bone = new RyBone;
            bone->setName(name);
            bone->setOrigin(origin, true);
            bone->setEndPoint(origin + RyVec3(1, 9, 2), true);
            bone->setOrientation(RyQuat::fromEulerXYZ({10, -20, 30}), true);
            parent->addNodeChild(bone);
            return bone;
        }
        static void link(RyFloatProperty *controller, RyFloatProperty *controlled)
        {
            QVERIFY(RyERCLink::create(controller, controlled));
        }
    };

    static double distance(const RyAffine &a, const RyAffine &b)
    {
        double worst = 0;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column)
                worst = std::max(worst, std::abs(a.m[row][column] - b.m[row][column]));
        }
        return worst;
    }

private slots:
    /// Whatever the order in which a bone and its control are set to a neutral pose, both end there.
    void settingWritesTheOwnShare()
    {
        for (const bool controlFirst : {true, false}) {
            Fixture f;
            std::vector<RyBone *> bones{f.control, f.bone};
            if (!controlFirst)
                std::swap(bones[0], bones[1]);
            f.control->getXRotControl()->setDefaultValue(0);
            for (RyBone *bone : bones)
                bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
            for (const RyFloatProperty *property :
                 {f.bone->getXRotControl(), f.bone->getYTransControl(), f.bone->getZTransControl()}) {
                QCOMPARE(property->getRawValue(), 0.0f);
                QCOMPARE(property->getValue(), 0.0f);
            }
            QCOMPARE(f.bone->getZScaleControl()->getValue(), 1.0f);
        }
    }

    void whatLinksAddComesOnTop()
    {
        Fixture f;
        f.bone->setLocalTransform({1, 2, 3}, RyQuat(), RyMatrix3(), 1.0f);
        QCOMPARE(f.bone->getYTransControl()->getRawValue(), 2.0f);
        QCOMPARE(f.bone->getYTransControl()->getValue(), 32.0f);
        QCOMPARE(f.bone->getXRotControl()->getValue(), 30.0f);
        QCOMPARE(f.bone->getZScaleControl()->getValue(), 1.25f);
    }

    void adjustingIsTheInverseOfReading()
    {
        Fixture f;
        RyVec3 position;
        RyQuat rotation;
        RyMatrix3 scale;
        float general = 0;
        f.bone->getLocalTransform(position, rotation, scale, general);
        const RyAffine before = f.bone->worldMap();
        f.bone->clearPose();
        QVERIFY(distance(f.bone->worldMap(), before) > 1.0);
        f.bone->adjustLocalTransform(position, rotation, scale, general);
        QVERIFY(distance(f.bone->worldMap(), before) < 1e-4);
        QVERIFY(std::abs(f.bone->getXRotControl()->getRawValue() - 12.0f) < 1e-4f);
        QVERIFY(std::abs(f.bone->getYTransControl()->getRawValue()) < 1e-4f);
    }

    void aChildThatKeepsItsPlaceIsAdjusted()
    {
        Fixture f;
        RyNode *const other = Fixture::add(f.figure, "other", {20, 3, 3});
        other->getZRotControl()->setValue(50);
        Fixture::link(f.control->getXRotControl(), f.child->getZRotControl());
        const RyAffine before = f.child->worldMap();
        QVERIFY(other->addNodeChild(f.child, true));
        QVERIFY(distance(f.child->worldMap(), before) < 1e-3);
        QVERIFY(other->removeNodeChild(f.child, true));
        QVERIFY(distance(f.child->worldMap(), before) < 1e-3);
        QCOMPARE(f.child->getZRotControl()->getValue() - f.child->getZRotControl()->getRawValue(), 30.0f);
    }

    /// A scene of values that hang on one another goes without telling each death to all that are left; what stays is
    /// told once.
    void clearingTheScene()
    {
        RyScene scene;
        auto *figure = new RySkeleton;
        std::vector<RyBone *> bones;
        for (int i = 0; i < 200; ++i)
            bones.push_back(Fixture::add(bones.empty() ? static_cast<RyNode *>(figure) : bones.back(), "bone", {}));
        scene.addNode(figure);
        const RyRef<RyNode> outside(new RyBone);
        outside->getXRotControl()->setValue(7);
        for (size_t i = 0; i < bones.size(); ++i) {
            bones[i]->getXRotControl()->setValue(1);
            Fixture::link(bones[i]->getXRotControl(), outside->getXRotControl());
            if (i % 2 == 0 && i + 1 < bones.size())
                Fixture::link(bones[i]->getXRotControl(), bones[i + 1]->getXRotControl());
            if (i % 2 == 0 && i > 0) // from both ends, whichever goes first
                Fixture::link(bones[bones.size() - i]->getXRotControl(), bones[bones.size() - i - 2]->getXRotControl());
        }
        int told = 0, toldOutside = 0;
        for (const RyBone *bone : bones)
            connect(bone->getXRotControl(), &RyFloatProperty::currentValueChanged, this, [&told] { ++told; });
        connect(outside->getXRotControl(), &RyFloatProperty::currentValueChanged, this, [&] { ++toldOutside; });
        scene.clear();
        QCOMPARE(told, 0);
        QCOMPARE(toldOutside, 1);
        QCOMPARE(outside->getXRotControl()->getValue(), 7.0f);
        QVERIFY(outside->getXRotControl()->getControllerLinks().empty());
    }

    /// A camera goes where it is sent, wherever links would have it.
    void aCameraLooksWhereItIsTold()
    {
        Fixture f;
        auto *camera = new RyCamera;
        f.scene.addNode(camera);
        Fixture::link(f.control->getXRotControl(), camera->getXTransControl());
        Fixture::link(f.control->getXRotControl(), camera->getYRotControl());
        camera->lookAt({100, 150, 300}, {0, 90, 0}, {0, 1, 0});
        QVERIFY((camera->getWSPos() - RyVec3(100, 150, 300)).length() < 1e-3f);
        QVERIFY((camera->viewDirection() - (RyVec3(0, 90, 0) - RyVec3(100, 150, 300)).normalized()).length() < 1e-4f);
        QCOMPARE(camera->getXTransControl()->getRawValue(), 70.0f);
    }
};

RY_TEST(LinkedPoseTest)
#include "tst_linkedPose.moc"
