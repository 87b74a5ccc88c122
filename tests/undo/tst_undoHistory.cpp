#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QDateTime>
#include <QSignalSpy>

#include <utility>

/// What a list of the steps shows: where one is, which state is the saved one, what came after it and when.
class UndoHistoryTest : public QObject
{
    Q_OBJECT

    RyUndoStack *stack = nullptr;
    ToyValue toy;

    void addSteps(int count)
    {
        for (int i = 0; i < count; ++i) {
            RyUndoStackHold hold;
            toy.set(toy.value + 1);
            hold.accept(QStringLiteral("step"));
        }
    }

private slots:
    void init()
    {
        stack = ryUndoStack();
        stack->clearAll();
        toy.set(0);
        stack->setClean();
    }
    void cleanup() { stack->clearAll(); }

    void walksToAnyStep()
    {
        addSteps(4);
        for (int index : {1, 4, 0, 3, 3}) {
            QVERIFY(stack->goTo(index));
            QCOMPARE(stack->index(), index);
            QCOMPARE(toy.value, index);
            QCOMPARE(stack->count(), 4);
        }
        QVERIFY(!stack->goTo(-1));
        QVERIFY(!stack->goTo(5));
        QCOMPARE(toy.value, 3);
        RyUndoStackHold hold;
        QVERIFY(!stack->goTo(0));
        QCOMPARE(toy.value, 3);
    }

    /// Who shows the steps shows them once, not once for each of them.
    void announcesAWalkOnce()
    {
        addSteps(50);
        QSignalSpy changes(stack, &RyUndoStack::changed), cleans(stack, &RyUndoStack::cleanChanged);
        int index = -1;
        const auto listening = connect(stack, &RyUndoStack::changed, this, [&] { index = stack->index(); });
        QVERIFY(stack->goTo(3));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(index, 3);
        QCOMPARE(cleans.size(), 0);
        QVERIFY(stack->goTo(0));
        QCOMPARE(changes.size(), 2);
        QCOMPARE(cleans, (QList<QVariantList>{{true}}));
        QVERIFY(stack->goTo(0));
        QVERIFY(!stack->goTo(51));
        QCOMPARE(changes.size(), 2);
        disconnect(listening);
    }

    /// Whoever takes hold of the scene on the way keeps it as it then is.
    void aHoldEndsAWalk()
    {
        addSteps(4);
        std::unique_ptr<RyUndoStackHold> hold;
        bool isTaken = false; // a hold that opens is a change to come as well
        const auto listening = connect(stack, &RyUndoStack::aboutToChange, this, [&] {
            if (stack->index() == 2 && !std::exchange(isTaken, true))
                hold = std::make_unique<RyUndoStackHold>();
        });
        QSignalSpy changes(stack, &RyUndoStack::changed);
        QVERIFY(!stack->goTo(0));
        disconnect(listening);
        QCOMPARE(stack->index(), 2);
        QCOMPARE(toy.value, 2);
        QCOMPARE(changes.size(), 2); // the hold, and the walk
        hold.reset();
        QVERIFY(stack->goTo(0));
    }

    void knowsTheSavedState()
    {
        QCOMPARE(stack->cleanIndex(), 0);
        addSteps(2);
        QCOMPARE(stack->cleanIndex(), 0);
        stack->setClean();
        QCOMPARE(stack->cleanIndex(), 2);
        addSteps(1);
        QVERIFY(stack->goTo(1));
        QCOMPARE(stack->cleanIndex(), 2);
        QCOMPARE(stack->index(), 1);
        QCOMPARE(stack->count(), 3);
        addSteps(1);
        QCOMPARE(stack->cleanIndex(), -1);
    }

    void anUnrecordedEditLeadsAway()
    {
        addSteps(1);
        stack->setClean();
        toy.set(50);
        QCOMPARE(stack->cleanIndex(), -1);
        QVERIFY(!stack->isClean());
    }

    void stepsAreToldApart()
    {
        QCOMPARE(stack->number(-1), quint64(0));
        QCOMPARE(stack->number(0), quint64(0));
        QVERIFY(!stack->time(0).isValid());
        const QDateTime before = QDateTime::currentDateTime();
        addSteps(2);
        {
            RyUndoStackHold hold;
            hold.accept(QStringLiteral("nothing"));
        }
        for (int i = 0; i < stack->count(); ++i) {
            QVERIFY(stack->time(i) >= before && stack->time(i) <= QDateTime::currentDateTime());
            QVERIFY(stack->number(i) > stack->number(i - 1));
        }
        QCOMPARE(stack->caption(0), QStringLiteral("step"));
        QVERIFY(stack->entryCount(0) > 0 && stack->entryCount(2) == 0);
        const quint64 second = stack->number(1), third = stack->number(2);
        stack->undo();
        QCOMPARE(stack->number(2), third);
        addSteps(1);
        QCOMPARE(stack->number(1), second);
        const quint64 last = stack->number(2);
        QVERIFY(last > third);
        stack->clearAll();
        addSteps(1);
        QVERIFY(stack->number(0) > last);
    }
};

RY_TEST(UndoHistoryTest)
#include "tst_undoHistory.moc"
