#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/RyTest.h"

#include <QPointer>

#include <algorithm>

#include <cmath>

/// How a bone knows what became of its rest, and where its weights came from.
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

    void weightGiverIsUndone()
    {
        const RyRef<RyBone> giver(new RyBone), other(new RyBone), bone(new RyBone);
        bone->setWeightGiver(other);
        RyUndoStackHold hold;
        bone->setWeightGiver(giver);
        hold.accept(QStringLiteral("Give"));
        QVERIFY(hasWeightsOf(*bone, *giver));
        ryUndoStack()->undo();
        QVERIFY(hasWeightsOf(*bone, *other));
        ryUndoStack()->redo();
        QVERIFY(hasWeightsOf(*bone, *giver));
    }

    void weightGiverComesBackWithARestorePoint()
    {
        const RyRef<RyBone> giver(new RyBone), bone(new RyBone);
        RyRestorePoints *points = ryRestorePoints();
        points->setMost(3);
        QVERIFY(points->take(QStringLiteral("Give")));
        bone->setWeightGiver(giver);
        QVERIFY(points->restore(0));
        QVERIFY(bone->getWeightGivers().empty());
        points->clear();
        points->setMost(0);
    }

    /// It is known, with those who gave to it, after it is gone, and holds nobody.
    void weightGiverMayGo()
    {
        const RyRef<RyBone> bone(new RyBone);
        QPointer<RyBone> first(new RyBone), second(new RyBone);
        const std::vector<quint64> serials{second->getSerial(), first->getSerial()};
        QVERIFY(serials[0] != serials[1] && serials[1] != bone->getSerial());
        {
            const RyRef<RyBone> held[] = {first.data(), second.data()};
            second->setWeightGiver(first);
            first->setWeightGiver(second);
            second->setWeightGiver(first);
            bone->setWeightGiver(second);
        }
        QVERIFY(!first && !second);
        QVERIFY(bone->getWeightGivers().size() >= 2);
        QVERIFY(std::equal(serials.begin(), serials.end(), bone->getWeightGivers().begin()));
    }

    /// It may weigh nothing, and belongs to another figure or to none.
    void duplicateHasNoWeightGiver()
    {
        const RyRef<RyBone> giver(new RyBone), bone(new RyBone);
        bone->setWeightGiver(giver);
        RyElementDuplicateContext context(nullptr);
        const RyRef<RyBone> copy(qobject_cast<RyBone *>(bone->doDuplicateElement(&context)));
        QVERIFY(copy && copy->getWeightGivers().empty());
    }

private:
    static bool hasWeightsOf(const RyBone &bone, const RyBone &giver)
    {
        return bone.getWeightGivers() == std::vector<quint64>{giver.getSerial()};
    }
    static RyBone::Carried shift() { return {RyAffine::fromTranslation(5, 0, 0), RyQuat()}; }
    static RyBone::Carried turn(const RyVec3 &axis)
    {
        const RyQuat quarter(axis, float(M_PI / 2));
        return {RyAffine::fromRotation(quarter), quarter};
    }
};

RY_TEST(RyBoneTest)
#include "tst_RyBone.moc"
