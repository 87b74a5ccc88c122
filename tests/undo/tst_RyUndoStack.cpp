#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <optional>

class RyUndoStackTest : public QObject
{
    Q_OBJECT

    RyUndoStack *stack = nullptr;

    static void setInStep(ToyValue &toy, int value, const QString &caption = QStringLiteral("step"))
    {
        RyUndoStackHold hold;
        toy.set(value);
        hold.accept(caption);
    }

private slots:
    void init()
    {
        stack = ryUndoStack();
        stack->clearAll();
        stack->setClean();
    }
    void cleanup() { stack->clearAll(); }

    void manyWritesAreOneEntry()
    {
        ToyValue toy;
        RyUndoStackHold hold;
        for (int i = 1; i <= 1000; ++i)
            toy.set(i);
        hold.accept(QStringLiteral("Drag"));
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->entryCount(0), 1);
        QCOMPARE(toy.recordedItems, 1);
        stack->undo();
        QCOMPARE(toy.value, 0);
        stack->redo();
        QCOMPARE(toy.value, 1000);
    }

    void emptyHoldIsAStep()
    {
        RyUndoStackHold hold;
        hold.accept(QStringLiteral("Nothing"));
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->entryCount(0), 0);
        QCOMPARE(stack->caption(0), QStringLiteral("Nothing"));
        QCOMPARE(stack->undoText(), QStringLiteral("Nothing"));
        QVERIFY(stack->canUndo());
    }

    void destructionCancels()
    {
        ToyValue toy;
        {
            RyUndoStackHold hold;
            toy.set(3);
        }
        QCOMPARE(toy.value, 0);
        QCOMPARE(stack->count(), 0);
        QVERIFY(!stack->isHoldOpen());
    }

    void secondEndIsHarmless()
    {
        ToyValue toy;
        RyUndoStackHold accepted;
        toy.set(1);
        accepted.accept(QStringLiteral("one"));
        accepted.accept(QStringLiteral("two"));
        accepted.cancel();
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->caption(0), QStringLiteral("one"));
        QCOMPARE(toy.value, 1);

        RyUndoStackHold cancelled;
        toy.set(2);
        cancelled.cancel();
        cancelled.accept(QStringLiteral("three"));
        cancelled.cancel();
        QCOMPARE(stack->count(), 1);
        QCOMPARE(toy.value, 1);
    }

    void innerCancelRevertsItsShareOnly()
    {
        ToyValue toy, other;
        RyUndoStackHold outer;
        toy.set(1);
        {
            RyUndoStackHold inner;
            toy.set(2);
            other.set(5);
            inner.cancel();
        }
        QCOMPARE(toy.value, 1);
        QCOMPARE(other.value, 0);
        {
            RyUndoStackHold inner;
            toy.set(3);
            inner.accept(QStringLiteral("inner"));
        }
        outer.accept(QStringLiteral("outer"));
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->caption(0), QStringLiteral("outer"));
        QCOMPARE(stack->entryCount(0), 1);
        stack->undo();
        QCOMPARE(toy.value, 0);
        stack->redo();
        QCOMPARE(toy.value, 3);
    }

    void outerCancelRevertsAcceptedInner()
    {
        ToyValue toy;
        RyUndoStackHold outer;
        {
            RyUndoStackHold inner;
            toy.set(3);
            inner.accept(QStringLiteral("inner"));
        }
        outer.cancel();
        QCOMPARE(toy.value, 0);
        QCOMPARE(stack->count(), 0);
    }

    void holdsThatEndOutOfOrder()
    {
        ToyValue toy;
        {
            auto first = std::make_unique<RyUndoStackHold>();
            toy.set(1);
            auto second = std::make_unique<RyUndoStackHold>();
            toy.set(2);
            first->accept(QStringLiteral("first"));
            QCOMPARE(stack->count(), 1);
            QVERIFY(stack->isHoldOpen());
            second->accept(QStringLiteral("second"));
        }
        QCOMPARE(stack->count(), 2);
        stack->undo();
        QCOMPARE(toy.value, 1);
        stack->undo();
        QCOMPARE(toy.value, 0);

        stack->clearAll();
        auto first = std::make_unique<RyUndoStackHold>();
        toy.set(1);
        auto second = std::make_unique<RyUndoStackHold>();
        toy.set(2);
        first.reset();
        QCOMPARE(toy.value, 0);
        toy.set(4);
        second->accept(QStringLiteral("second"));
        QCOMPARE(stack->count(), 1);
        stack->undo();
        QCOMPARE(toy.value, 0);
    }

    void undoIsRefusedWhileAHoldIsOpen()
    {
        ToyValue toy;
        setInStep(toy, 1);
        RyUndoStackHold hold;
        toy.set(2);
        QVERIFY(!stack->canUndo());
        stack->undo();
        QCOMPARE(toy.value, 2);
        QCOMPARE(stack->index(), 1);
        hold.cancel();
        QVERIFY(stack->canUndo());
    }

    void newStepDropsRedo()
    {
        ToyValue toy;
        setInStep(toy, 1, QStringLiteral("one"));
        setInStep(toy, 2, QStringLiteral("two"));
        stack->undo();
        QCOMPARE(stack->redoText(), QStringLiteral("two"));
        {
            RyUndoStackHold cancelled;
            toy.set(8);
        }
        QVERIFY2(stack->canRedo(), "a cancelled hold leaves redo alone");
        setInStep(toy, 3, QStringLiteral("three"));
        QVERIFY(!stack->canRedo());
        QCOMPARE(stack->count(), 2);
        QCOMPARE(stack->caption(1), QStringLiteral("three"));
        stack->undo();
        QCOMPARE(toy.value, 1);
    }

    void deletedTargetsAreSkipped()
    {
        ToyValue kept;
        auto doomed = std::make_unique<ToyValue>();
        {
            RyUndoStackHold hold;
            kept.set(1);
            doomed->set(1);
            hold.accept(QStringLiteral("both"));
        }
        doomed.reset();
        stack->undo();
        QCOMPARE(kept.value, 0);
        stack->redo();
        QCOMPARE(kept.value, 1);
    }

    // An object that dies in a hold must not hide the changes of one that gets its address.
    void newObjectAtAnOldAddress()
    {
        alignas(ToyValue) unsigned char memory[sizeof(ToyValue)];
        RyUndoStackHold hold;
        auto *first = new (memory) ToyValue;
        first->set(1);
        first->~ToyValue();
        auto *second = new (memory) ToyValue;
        second->set(2);
        hold.accept(QStringLiteral("both"));
        stack->undo();
        QCOMPARE(second->value, 0);
        stack->redo();
        QCOMPARE(second->value, 2);
        second->~ToyValue();
    }

    void undoEmitsTheSignalsOfEdits()
    {
        ToyValue toy;
        setInStep(toy, 4);
        QSignalSpy spy(&toy, &ToyValue::valueChanged);
        bool inUndo = false;
        connect(&toy, &ToyValue::valueChanged, &toy, [&] { inUndo = stack->isInUndoRedo(); });
        stack->undo();
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy[0][0].toInt(), 0);
        QVERIFY(inUndo);
        stack->redo();
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy[1][0].toInt(), 4);
        QVERIFY(!stack->isInUndoRedo());
        RyUndoStackHold hold;
        toy.set(5);
        QVERIFY(!inUndo);
        hold.cancel();
        QVERIFY(inUndo);
        QVERIFY(!stack->isInUndoRedo());
    }

    void listenersOfUndoChangeNothing()
    {
        ToyValue toy, follower;
        connect(&toy, &ToyValue::valueChanged, &follower, [&](int value) {
            if (!stack->isInUndoRedo())
                return;
            RyUndoStackHold hold;
            follower.set(value + 100);
            hold.accept(QStringLiteral("follow"));
            stack->undo();
            stack->redo();
        });
        int answers = 0;
        connect(&follower, &ToyValue::valueChanged, &follower, [&] { ++answers; });
        setInStep(toy, 1);
        stack->undo();
        // What the listener wrote is put back, since the state of before had it otherwise.
        QCOMPARE(follower.value, 0);
        QCOMPARE(answers, 2);
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->index(), 0);
        stack->redo();
        QCOMPARE(follower.value, 0);
        QCOMPARE(toy.value, 1);
        QCOMPARE(stack->count(), 1);
    }

    void clearAllByAListenerOfUndo()
    {
        ToyValue toy;
        setInStep(toy, 1);
        setInStep(toy, 2);
        connect(&toy, &ToyValue::valueChanged, &toy, [&] { stack->clearAll(); });
        stack->undo();
        QCOMPARE(toy.value, 1);
        QCOMPARE(stack->count(), 0);
        QCOMPARE(stack->index(), 0);
        QVERIFY(!stack->canUndo());
    }

    void clearAllUnderLockAndHold()
    {
        ToyValue toy;
        setInStep(toy, 1);
        {
            RyUndoStackLock lock;
            stack->clearAll();
            QCOMPARE(stack->count(), 0);
        }
        RyUndoStackHold hold;
        toy.set(2);
        stack->clearAll();
        QVERIFY(stack->isHoldOpen());
        toy.set(3);
        hold.cancel();
        QCOMPARE(toy.value, 2);
        QCOMPARE(stack->count(), 0);
    }

    void locksAreCounted()
    {
        ToyValue toy;
        RyUndoStackHold hold;
        RyUndoStackLock first;
        {
            RyUndoStackLock second;
            first.unlock();
            first.unlock();
            QVERIFY(stack->isLocked());
            toy.set(1);
        }
        QVERIFY(!stack->isLocked());
        toy.set(2);
        hold.accept(QStringLiteral("part"));
        stack->undo();
        QCOMPARE(toy.value, 1);
    }

    void holdUnderALockIsAnEmptyStep()
    {
        ToyValue toy;
        RyUndoStackLock lock;
        setInStep(toy, 5);
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->entryCount(0), 0);
        QCOMPARE(toy.value, 5);
    }

    void cleanState()
    {
        ToyValue toy;
        QSignalSpy spy(stack, &RyUndoStack::cleanChanged);
        QVERIFY(stack->isClean());
        setInStep(toy, 1);
        QVERIFY(!stack->isClean());
        QCOMPARE(spy.count(), 1);
        stack->undo();
        QVERIFY(stack->isClean());
        stack->redo();
        stack->setClean();
        QVERIFY(stack->isClean());
        stack->undo();
        QVERIFY(!stack->isClean());
        setInStep(toy, 2); // the saved state cannot be reached any more
        QVERIFY(!stack->isClean());
        stack->undo();
        QVERIFY(!stack->isClean());
        stack->setClean();
        QVERIFY(stack->isClean());
        {
            RyUndoStackHold hold;
            QVERIFY(stack->isClean());
            toy.set(9);
            QVERIFY(!stack->isClean());
        }
        QVERIFY(stack->isClean());
        {
            RyUndoStackHold empty;
            empty.accept(QStringLiteral("empty"));
        }
        QVERIFY2(stack->isClean(), "an empty step changes nothing");
        stack->clearAll();
        QVERIFY(stack->isClean());
    }

    void unrecordedEditIsNotClean()
    {
        ToyValue toy;
        setInStep(toy, 1);
        stack->setClean();
        toy.set(2);
        QVERIFY(!stack->isClean());
        stack->undo();
        stack->redo();
        QVERIFY(!stack->isClean());
        stack->clearAll();
        QVERIFY(!stack->isClean());
        stack->setClean();
        RyUndoStackHold hold;
        RyUndoStackLock lock;
        toy.set(3);
        QVERIFY(!stack->isClean());
        hold.cancel();
        QVERIFY(!stack->isClean());
    }

    void makerIsAskedOnlyWhenItCounts()
    {
        ToyValue toy;
        int made = 0;
        const auto record = [&] {
            stack->record(RyUndoKey{&toy, 7}, [&]() -> std::unique_ptr<RyUndoItem> {
                ++made;
                return std::make_unique<ToyValueItem>(&toy);
            });
        };
        record();
        QCOMPARE(made, 0);
        RyUndoStackHold hold;
        record();
        record();
        QCOMPARE(made, 1);
    }

    void changedTellsWhatCanBeUndone()
    {
        ToyValue toy;
        QSignalSpy spy(stack, &RyUndoStack::changed);
        setInStep(toy, 1);
        QVERIFY(spy.count() >= 1);
        spy.clear();
        stack->undo();
        QCOMPARE(spy.count(), 1);
        stack->redo();
        QCOMPARE(spy.count(), 2);
        stack->undo();
        stack->undo();
        QCOMPARE(spy.count(), 3);
    }
};

RY_TEST(RyUndoStackTest)
#include "tst_RyUndoStack.moc"
