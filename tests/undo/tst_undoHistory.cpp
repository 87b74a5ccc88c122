#include "support/RyTest.h"
#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoHistory.h"
#include "rycore/undo/RyUndoStackHold.h"

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
            QVERIFY(RyUndoHistory::walk(*stack, index));
            QCOMPARE(stack->index(), index);
            QCOMPARE(toy.value, index);
            QCOMPARE(stack->count(), 4);
        }
        QVERIFY(!RyUndoHistory::walk(*stack, -1));
        QVERIFY(!RyUndoHistory::walk(*stack, 5));
        QCOMPARE(toy.value, 3);
        RyUndoStackHold hold;
        QVERIFY(!RyUndoHistory::walk(*stack, 0));
        QCOMPARE(toy.value, 3);
    }

    void knowsTheSavedState()
    {
        QCOMPARE(RyUndoHistory(*stack).cleanIndex, 0);
        addSteps(2);
        QCOMPARE(RyUndoHistory(*stack).cleanIndex, 0);
        stack->setClean();
        QCOMPARE(RyUndoHistory(*stack).cleanIndex, 2);
        addSteps(1);
        QVERIFY(RyUndoHistory::walk(*stack, 1));
        const RyUndoHistory history(*stack);
        QCOMPARE(history.cleanIndex, 2);
        QCOMPARE(history.index, 1);
        QCOMPARE(history.steps.size(), size_t(3));
        addSteps(1);
        QCOMPARE(RyUndoHistory(*stack).cleanIndex, -1);
    }

    void anUnrecordedEditLeadsAway()
    {
        addSteps(1);
        stack->setClean();
        toy.set(50);
        QCOMPARE(RyUndoHistory(*stack).cleanIndex, -1);
        QVERIFY(!stack->isClean());
    }

    void stepsAreToldApart()
    {
        QCOMPARE(RyUndoHistory(*stack).lastNumber(), quint64(0));
        const QDateTime before = QDateTime::currentDateTime();
        addSteps(2);
        {
            RyUndoStackHold hold;
            hold.accept(QStringLiteral("nothing"));
        }
        const RyUndoHistory first(*stack);
        for (size_t i = 0; i < first.steps.size(); ++i) {
            QVERIFY(first.steps[i].time >= before && first.steps[i].time <= QDateTime::currentDateTime());
            QVERIFY(first.steps[i].number > (i > 0 ? first.steps[i - 1].number : 0));
        }
        QCOMPARE(first.steps[0].caption, QStringLiteral("step"));
        QVERIFY(!first.steps[0].isEmpty && first.steps[2].isEmpty);
        QCOMPARE(first.lastNumber(), first.steps[2].number);
        stack->undo();
        QCOMPARE(RyUndoHistory(*stack).steps[2].number, first.steps[2].number);
        addSteps(1);
        const RyUndoHistory second(*stack);
        QCOMPARE(second.steps[1].number, first.steps[1].number);
        QVERIFY(second.steps[2].number > first.steps[2].number);
        stack->clearAll();
        addSteps(1);
        QVERIFY(RyUndoHistory(*stack).lastNumber() > second.lastNumber());
    }
};

RY_TEST(UndoHistoryTest)
#include "tst_undoHistory.moc"
