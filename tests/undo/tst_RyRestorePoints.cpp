#include "support/RyTest.h"
#include "undo/RestoreStage.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/RyUndoStackSilence.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "rycore/undo/restore/RyUndoKeeper.h"

namespace {

class ToyKeeper : public RyUndoKeeper
{
public:
    std::function<void()> keep() override
    {
        return [this, kept = number] { number = kept; };
    }
    int number = 0;
};

} // namespace

class RyRestorePointsTest : public QObject, private RestoreStage
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void nothingIsTakenUnlessAsked()
    {
        points->setMost(0);
        QVERIFY(!points->take(QStringLiteral("never")));
        ToyValue toy;
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("never"));
            setAndClear(toy, 1);
        }
        QCOMPARE(points->count(), 0);
        QCOMPARE(toy.recordedItems, 0);
        QVERIFY(!points->restore(0));
    }

    void guardKeepsOnlyWhatUndoCannotTakeBack()
    {
        ToyValue toy;
        QSignalSpy taken(points, &RyRestorePoints::taken);
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("step"));
            setInStep(toy, 1);
        }
        QCOMPARE(points->count(), 0);
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("nothing"));
        }
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("cancelled"));
            RyUndoStackHold hold;
            toy.set(9);
        }
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("undo"));
            stack->undo();
            stack->redo();
        }
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("camera"));
            const RyUndoStackSilence silence;
            toy.set(5);
            toy.set(1);
        }
        QCOMPARE(points->count(), 0);
        QCOMPARE(taken.count(), 0);
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("loose"));
            toy.set(2);
        }
        QCOMPARE(points->captions(), QStringList{QStringLiteral("loose")});
        QCOMPARE(taken.count(), 1);
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("clearing"));
            stack->clearAll();
        }
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("clearing nothing"));
            stack->clearAll();
        }
        QCOMPARE(points->captions(), (QStringList{QStringLiteral("clearing"), QStringLiteral("loose")}));
        QCOMPARE(points->text(0), QStringLiteral("Restore to before clearing"));
        QVERIFY(points->time(0) >= points->time(1));
    }

    void outermostGuardCounts()
    {
        ToyValue toy;
        {
            const RyRestoreSpan outer(RyRestoreSpan::Scope::Command, QStringLiteral("outer"));
            const RyRestoreSpan inner(RyRestoreSpan::Scope::Command, QStringLiteral("inner"));
            toy.set(2);
        }
        QCOMPARE(points->captions(), QStringList{QStringLiteral("outer")});
        RyUndoStackHold hold;
        {
            const RyRestoreSpan inHold(RyRestoreSpan::Scope::Command, QStringLiteral("in hold"));
            RyUndoStackLock lock;
            toy.set(3);
        }
        QVERIFY(!points->take(QStringLiteral("in hold")));
        QVERIFY(!points->restore(0));
        QCOMPARE(points->count(), 1);
        QCOMPARE(toy.value, 3);
    }

    void historyComesBackAndIsValid()
    {
        ToyValue toy;
        setInStep(toy, 1, QStringLiteral("one"));
        setInStep(toy, 2, QStringLiteral("two"));
        setInStep(toy, 3, QStringLiteral("three"));
        stack->undo();
        stack->setClean();
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Delete"));
            setAndClear(toy, 10);
        }
        setInStep(toy, 11, QStringLiteral("later"));
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 2);
        QCOMPARE(stack->count(), 3);
        QCOMPARE(stack->index(), 2);
        QVERIFY(stack->isClean());
        stack->redo();
        QCOMPARE(toy.value, 3);
        stack->undo();
        stack->undo();
        stack->undo();
        QCOMPARE(toy.value, 0);
        // Back again, over those undos.
        QCOMPARE(points->count(), 1);
        QCOMPARE(points->text(0), QStringLiteral("Undo Restoring to before Delete"));
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 11);
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->undoText(), QStringLiteral("later"));
        QVERIFY(!stack->isClean());
        stack->undo();
        QCOMPARE(toy.value, 10);
        QCOMPARE(points->text(0), QStringLiteral("Restore to before Delete"));
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 0);
        QCOMPARE(stack->index(), 0);
    }

    void savingMakesOlderStatesUnsaved()
    {
        ToyValue toy;
        {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("edit"));
            toy.set(1);
        }
        stack->setClean();
        QVERIFY(points->restore(0));
        QVERIFY(!stack->isClean());
        QVERIFY(points->restore(0));
        QVERIFY(stack->isClean());
    }

    void stepsOlderThanThePointUndoneAfterIt()
    {
        ToyValue toy, other;
        setInStep(toy, 1);
        QVERIFY(points->take(QStringLiteral("here")));
        other.set(5); // loose
        stack->undo();
        QCOMPARE(toy.value, 0);
        toy.set(7);
        setInStep(toy, 8);
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 1);
        QCOMPARE(other.value, 0);
        stack->undo();
        QCOMPARE(toy.value, 0);
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 8);
        QCOMPARE(other.value, 5);
        stack->undo();
        QCOMPARE(toy.value, 7);
    }

    void cancelledHoldAndClearInAHold()
    {
        ToyValue toy, other;
        QVERIFY(points->take(QStringLiteral("here")));
        toy.set(1);
        {
            RyUndoStackHold hold;
            toy.set(2);
            {
                RyUndoStackLock lock;
                other.set(4);
            }
            stack->clearAll();
            other.set(5);
            toy.set(3);
        }
        QCOMPARE(toy.value, 2);
        QCOMPARE(other.value, 4);
        QVERIFY(points->take(QStringLiteral("there")));
        setInStep(toy, 6);
        QVERIFY(points->restore(1));
        QCOMPARE(toy.value, 0);
        QCOMPARE(other.value, 0);
        QVERIFY(points->restore(1));
        QCOMPARE(points->captions().size(), 2);
        QCOMPARE(toy.value, 2);
        QCOMPARE(other.value, 4);
    }

    void targetsThatAreGone()
    {
        ToyValue toy;
        auto doomed = std::make_unique<ToyValue>();
        QVERIFY(points->take(QStringLiteral("here")));
        doomed->set(1);
        toy.set(1);
        doomed.reset();
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 0);
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 1);
    }

    void listenersSeeARunningUndo()
    {
        ToyValue toy, follower;
        QVERIFY(points->take(QStringLiteral("here")));
        toy.set(4);
        bool inUndo = false;
        connect(&toy, &ToyValue::valueChanged, &toy, [&](int value) {
            inUndo = stack->isInUndoRedo();
            QVERIFY(!points->restore(0));
            follower.set(value);
        });
        QSignalSpy changed(stack, &RyUndoStack::changed);
        QVERIFY(points->restore(0));
        QVERIFY(inUndo);
        QVERIFY(!stack->isInUndoRedo());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(stack->count(), 0);
    }

    void keepersArePutBack()
    {
        ToyKeeper keeper;
        ToyValue toy;
        points->addKeeper(&keeper);
        keeper.number = 3;
        QVERIFY(points->take(QStringLiteral("three")));
        toy.set(1);
        keeper.number = 4;
        QVERIFY(points->restore(0));
        QCOMPARE(keeper.number, 3);
        QVERIFY(points->restore(0));
        QCOMPARE(keeper.number, 4);
        points->removeKeeper(&keeper);
        QCOMPARE(points->count(), 0);
    }

    void oldestGoFirst()
    {
        ToyValue toy;
        points->setMost(3);
        for (int i = 0; i < 6; ++i) {
            QVERIFY(points->take(QString::number(i)));
            toy.set(i + 1);
        }
        QCOMPARE(points->captions(), (QStringList{QStringLiteral("5"), QStringLiteral("4"), QStringLiteral("3")}));
        QVERIFY(points->restore(2));
        QCOMPARE(toy.value, 3);
        QCOMPARE(points->count(), 3);
        points->setMost(1);
        QCOMPARE(points->captions(), QStringList{QStringLiteral("3")});
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 6);
    }

    // A drag under a point keeps one item for both the step and the point.
    void stepsAndPointsShareItems()
    {
        ToyValue toy;
        QVERIFY(points->take(QStringLiteral("here")));
        RyUndoStackHold hold;
        for (int i = 1; i <= 100; ++i)
            toy.set(i);
        hold.accept(QStringLiteral("Drag"));
        QCOMPARE(toy.recordedItems, 1);
        // Commands that leave no point let what lies about them grow together.
        for (int i = 0; i < 50; ++i) {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("step"));
            RyUndoStackHold step;
            toy.set(1000 + i);
            step.accept(QStringLiteral("step"));
        }
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 0);
        QVERIFY(points->restore(0));
        QCOMPARE(toy.value, 1049);
        for (int i = 0; i < 50; ++i)
            stack->undo();
        QCOMPARE(toy.value, 100);
        stack->undo();
        QCOMPARE(toy.value, 0);
    }

    // Each time must swap as little as the first: this would take forever if ways back were walked again.
    void goingBackOftenCostsTheSame()
    {
        struct Counter : RyUndoItem
        {
            explicit Counter(int &count) : swaps(count) {}
            void swap() override { ++swaps; }
            int &swaps;
        };
        int swaps = 0;
        QVERIFY(points->take(QStringLiteral("first")));
        stack->record(std::make_unique<Counter>(swaps));
        QVERIFY(points->take(QStringLiteral("second")));
        stack->record(std::make_unique<Counter>(swaps));
        for (int i = 0; i < 60; ++i)
            QVERIFY(points->restore(1));
        QVERIFY2(swaps <= 60 * 2, qPrintable(QString::number(swaps)));
        QVERIFY(swaps >= 60);
    }

    // Steps that the history has dropped live as long as a point leads through them, and no longer.
    void itemsGoWithThePoints()
    {
        struct Probe : RyUndoItem
        {
            explicit Probe(int &count) : alive(count) { ++alive; }
            ~Probe() override { --alive; }
            void swap() override {}
            int &alive;
        };
        int alive = 0;
        {
            RyUndoStackHold hold;
            stack->record(std::make_unique<Probe>(alive));
            hold.accept(QStringLiteral("probe"));
        }
        QVERIFY(points->take(QStringLiteral("first")));
        stack->clearAll();
        stack->record(std::make_unique<Probe>(alive));
        QVERIFY(points->take(QStringLiteral("second")));
        stack->record(std::make_unique<Probe>(alive));
        QCOMPARE(alive, 3);
        points->setMost(1);
        QCOMPARE(alive, 1);
        points->clear();
        QCOMPARE(alive, 0);
    }
};

RY_TEST(RyRestorePointsTest)
#include "tst_RyRestorePoints.moc"
