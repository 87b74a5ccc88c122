#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/RyTest.h"

#include <cmath>

/// How a bone knows what became of its rest.
class RyBoneTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void isCarriedOnceMoreBehindWhatThereIs()
    {
        const RyRef<RyBone> bone(new RyBone);
        QVERIFY(!bone->isCarried());
        bone->carry(RyBone::Carried());
        QVERIFY(!bone->isCarried());
        bone->carry(turn({0, 0, 1}));
        bone->carry(shift());
        QVERIFY(bone->isCarried());
        // A quarter turn first, then the way.
        const RyVec3 place = bone->getCarried().map.mapPoint({2, 0, 0});
        QVERIFY((place - RyVec3(5, -2, 0)).length() < 1e-5f);
        QVERIFY(std::abs(bone->getCarried().turn.dot(turn({0, 0, 1}).turn)) > 0.999999f);
    }

    void isUndone()
    {
        const RyRef<RyBone> bone(new RyBone);
        bone->carry(shift());
        const RyBone::Carried before = bone->getCarried();
        RyUndoStackHold hold;
        bone->carry(turn({1, 0, 0}));
        bone->carry(turn({0, 1, 0}));
        hold.accept(QStringLiteral("Carry"));
        const RyBone::Carried after = bone->getCarried();
        QVERIFY(!(after == before));
        ryUndoStack()->undo();
        QVERIFY(bone->getCarried() == before);
        ryUndoStack()->redo();
        QVERIFY(bone->getCarried() == after);
    }

    void comesBackWithARestorePoint()
    {
        const RyRef<RyBone> bone(new RyBone);
        RyRestorePoints *points = ryRestorePoints();
        points->setMost(3);
        QVERIFY(points->take(QStringLiteral("Carry")));
        bone->carry(shift());
        QVERIFY(points->restore(0));
        QVERIFY(!bone->isCarried());
        points->clear();
        points->setMost(0);
    }

    void duplicateIsCarriedAlike()
    {
        const RyRef<RyBone> bone(new RyBone);
        bone->carry(shift());
        RyElementDuplicateContext context(nullptr);
        const RyRef<RyBone> copy(qobject_cast<RyBone *>(bone->doDuplicateElement(&context)));
        QVERIFY(copy && copy->getCarried() == bone->getCarried());
    }

private:
    static RyBone::Carried shift() { return {RyAffine::fromTranslation(5, 0, 0), RyQuat()}; }
    static RyBone::Carried turn(const RyVec3 &axis)
    {
        const RyQuat quarter(axis, float(M_PI / 2));
        return {RyAffine::fromRotation(quarter), quarter};
    }
};

RY_TEST(RyBoneTest)
#include "tst_RyBone.moc"
