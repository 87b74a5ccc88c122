#include "parametric/ParamArm.h"

#include "support/RyTest.h"

#include <QElapsedTimer>

namespace {

/// Bones with a joint of three parameters each, put in by one step that goes back and forth; seconds.
double stepWith(int count)
{
    ParamArm f;
    std::vector<RyBone *> bones;
    for (int i = 0; i < count; ++i) {
        auto *bone = new RyBone;
        f.hand->addNodeChild(bone);
        bones.push_back(bone);
    }
    QElapsedTimer timer;
    timer.start();
    RyUndoStackHold hold;
    for (RyBone *bone : bones) {
        auto *joint = new RyLegacyJoint;
        joint->setBone(bone);
        f.binding->addJoint(joint);
        joint->addJointParam(new RyLegacyTwistParam("twistx", 0, bone));
        joint->addJointParam(new RyLegacyBendParam("jointy", 1, bone));
        joint->addJointParam(new RyLegacyBendParam("jointz", 2, bone));
    }
    hold.accept("Many");
    for (const RyBone *bone : bones) {
        if (f.binding->findJoint(bone)->getBone() != bone)
            return 1e9;
    }
    ryUndoStack()->undo();
    if (f.binding->joints().size() != 3 || f.binding->findJoint(bones.front()))
        return 1e9;
    ryUndoStack()->redo();
    if (!f.binding->findJoint(bones.back()) || f.binding->findJoint(bones.back())->params().size() != 3)
        return 1e9;
    return double(timer.nsecsElapsed()) * 1e-9;
}

} // namespace

/// Large figures.
class ManyJointsTest : public QObject
{
    Q_OBJECT

private slots:
    void timeGrowsWithTheirNumber()
    {
        stepWith(50); // warm
        double best = 1e9;
        for (int attempt = 0; attempt < 4 && best > 3; ++attempt)
            best = std::min(best, stepWith(1000) / stepWith(250) / 4);
        qInfo("four times as many joints: %.2f times as long for each", best);
        QVERIFY(best < 3);
    }

    void jointOfADeletedBoneIsNotFoundByItsAddress()
    {
        const ParamArm f;
        std::vector<RyRef<RyBone>> kept;
        for (int i = 0; i < 50; ++i) {
            {
                const RyRef<RyBone> gone(new RyBone);
                auto *joint = new RyLegacyJoint;
                joint->setBone(gone.get());
                f.binding->addJoint(joint);
                QCOMPARE(f.binding->findJoint(gone.get()), joint);
            }
            kept.emplace_back(new RyBone); // mostly where the other one was
            QVERIFY(!f.binding->findJoint(kept.back().get()));
        }
    }
};

RY_TEST(ManyJointsTest)
#include "tst_manyJoints.moc"
