#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyTest.h"

#include <random>

namespace {

struct Random
{
    float number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(generator); }
    RyVec3 point() { return {number(-80, 80), number(0, 180), number(-40, 40)}; }
    RyQuat rotation() { return RyQuat(RyVec3(number(-1, 1), number(-1, 1), 1.1f), number(-3, 3)); }
    std::mt19937 generator{ryTestSeed()};
};

} // namespace

/// What no pose control moves says nothing of its rigging, to the bit.
class NeutralPoseTest : public QObject
{
    Q_OBJECT

private slots:
    void localMapIsTheIdentity()
    {
        Random random;
        const RyRef<RyNode> bone(new RyBone);
        for (int i = 0; i < 200; ++i) {
            bone->setOrigin(random.point(), true);
            bone->setOrientation(random.rotation());
            QVERIFY(bone->getLocalMap() == RyAffine());
            QCOMPARE(bone->getLocalRot(), RyQuat());
            // What moves alone moves by just that.
            const RyVec3 way = random.point();
            bone->getXTransControl()->setValue(way.x);
            bone->getZTransControl()->setValue(way.z);
            QVERIFY(bone->getLocalMap() == RyAffine::fromTranslation(way.x, 0, way.z));
            bone->clearPose();
            // A turn or a scale, however small, does say where it happens.
            bone->getYRotControl()->setValue(1e-3f);
            QVERIFY(!(bone->getLocalMap() == RyAffine()));
            bone->clearPose();
            bone->getZScaleControl()->setValue(1.001f);
            QVERIFY(!(bone->getLocalMap() == RyAffine()));
            bone->clearPose();
        }
    }

    /// Scales that cancel each other are none.
    void scalesThatCancelAreNone()
    {
        const RyRef<RyNode> bone(new RyBone);
        bone->setOrigin({3, 7, -2}, true);
        bone->getScaleControl()->setValue(2.0f);
        bone->getXScaleControl()->setValue(0.5f);
        bone->getYScaleControl()->setValue(0.5f);
        bone->getZScaleControl()->setValue(0.5f);
        QVERIFY(bone->getLocalMap() == RyAffine());
    }

    /// Down a chain with bones that take over scale and others that do not, below a figure that is turned and scaled.
    void figureMapsOfAChain()
    {
        Random random;
        const RyRef<RyNode> skeleton(new RySkeleton);
        skeleton->getYRotControl()->setValue(33);
        skeleton->getScaleControl()->setValue(1.3f);
        std::vector<RyBone *> bones;
        for (int i = 0; i < 12; ++i) {
            auto *bone = new RyBone;
            (bones.empty() ? skeleton.get() : static_cast<RyNode *>(bones.back()))->addNodeChild(bone);
            bone->setOrigin(random.point(), true);
            bone->setOrientation(random.rotation(), true);
            bone->setInheritScale(i % 3 != 1);
            bones.push_back(bone);
        }
        for (int i = 0; i < 100; ++i) {
            RyBone *bone = bones[random.generator() % bones.size()];
            bone->setOrigin(random.point(), i % 2 == 0);
            bone->setOrientation(random.rotation());
            for (const RyBone *each : bones)
                QVERIFY(each->figureMap() == RyAffine());
            QVERIFY(bones[0]->worldMap() == skeleton->worldMap());
        }
        // Below a posed bone, the map of that bone.
        bones[3]->getXRotControl()->setValue(40);
        bones[3]->getYScaleControl()->setValue(1.5f);
        bones[4]->setInheritScale(true);
        bones[4]->setOrigin(random.point());
        QVERIFY(bones[4]->figureMap() == bones[3]->figureMap());
        QVERIFY(!(bones[4]->figureMap() == RyAffine()));
    }

    void changesAreCountedThoughNobodyLooks()
    {
        const RyRef<RySkeleton> skeleton(new RySkeleton);
        auto *upper = new RyBone;
        auto *lower = new RyBone;
        skeleton->addNodeChild(upper);
        upper->addNodeChild(lower);
        for (int i = 1; i < 6; ++i) {
            const quint64 before = lower->mapRevision();
            QCOMPARE(lower->mapRevision(), before);
            upper->getXRotControl()->setValue(float(i));
            QVERIFY(lower->mapRevision() > before);
        }
    }
};

RY_TEST(NeutralPoseTest)
#include "tst_neutralPose.moc"
