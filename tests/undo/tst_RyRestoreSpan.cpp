#include "support/RyTest.h"
#include "undo/RestoreStage.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

class RyRestoreSpanTest : public QObject, private RestoreStage
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void goesBackOverAClearedHistory_data()
    {
        QTest::addColumn<int>("most");
        QTest::newRow("with restore points") << 20;
        QTest::newRow("without") << 0;
    }

    void goesBackOverAClearedHistory()
    {
        QFETCH(int, most);
        points->setMost(most);
        ToyValue a, b;
        setInStep(a, 1, QStringLiteral("One"));
        setInStep(a, 2, QStringLiteral("Two"));
        stack->undo();
        {
            RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Work"));
            setInStep(b, 5, QStringLiteral("Five"));
            QVERIFY(!span.isNeeded() && !span.hasLostSteps());
            setAndClear(b, 6);
            QVERIFY(span.isNeeded() && span.hasLostSteps());
            setInStep(a, 9, QStringLiteral("Nine"));
            QVERIFY(span.goBack());
            QVERIFY(!span.goBack());
        }
        QCOMPARE(a.value, 1);
        QCOMPARE(b.value, 0);
        QCOMPARE(stack->count(), 2);
        QCOMPARE(stack->index(), 1);
        QCOMPARE(points->count(), 0);
        stack->redo();
        QCOMPARE(a.value, 2);
        stack->undo();
        stack->undo();
        QCOMPARE(a.value, 0);
        QVERIFY(stack->isClean());
    }

    void keepsThePointsFromBefore()
    {
        points->setMost(3);
        ToyValue a;
        for (const char *name : {"One", "Two", "Three"}) {
            points->take(QString::fromLatin1(name));
            a.set(a.value + 1);
        }
        const QStringList before = points->captions();
        {
            RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Work"));
            for (int i = 0; i < 5; ++i) {
                points->take(QStringLiteral("Within"));
                a.set(a.value + 10);
            }
            QCOMPARE(points->count(), 6);
            QVERIFY(span.goBack());
        }
        QCOMPARE(points->captions(), before);
        QCOMPARE(a.value, 3);
        QVERIFY(points->restore(2));
        QCOMPARE(a.value, 0);
    }

    void replacesThePointsWithin()
    {
        ToyValue a;
        points->take(QStringLiteral("Before"));
        {
            RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run it"));
            for (int value : {3, 4}) {
                RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Set %1").arg(value));
                setAndClear(a, value);
            }
            QCOMPARE(points->captions(), QStringList({"Set 4", "Set 3", "Before"}));
            QVERIFY(points->restore(0));
            QCOMPARE(a.value, 3);
            QVERIFY(span.finish());
        }
        QCOMPARE(points->captions(), QStringList({"Run it", "Before"}));
        QVERIFY(points->restore(0));
        QCOMPARE(a.value, 0);
    }

    void leavesNothingWhereStepsLeadBack()
    {
        ToyValue a;
        {
            RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run it"));
            setInStep(a, 3, QStringLiteral("Three"));
        }
        QCOMPARE(points->count(), 0);
        QCOMPARE(stack->count(), 1);
        points->setMost(0);
        {
            RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run it"));
            a.set(4);
            QVERIFY(!span.finish());
        }
        QCOMPARE(points->count(), 0);
    }

    void waitsForNoHold()
    {
        ToyValue a;
        RyUndoStackHold hold;
        RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run it"));
        a.set(4);
        QVERIFY(!span.goBack());
        QCOMPARE(a.value, 4);
    }

    void aClearedHoldCountsAsLost()
    {
        ToyValue a;
        RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Set"));
        RyUndoStackHold hold;
        stack->clearAll();
        QVERIFY(!guard.isNeeded());
        a.set(4);
        QVERIFY(!guard.isNeeded());
        stack->clearAll();
        QVERIFY(guard.isNeeded());
        hold.accept(QStringLiteral("Set"));
        guard.finish();
        QVERIFY(points->restore(0));
        QCOMPARE(a.value, 0);
    }

    void aForgottenHoldLeavesNoStep()
    {
        ToyValue a;
        QVERIFY(stack->isClean());
        RyUndoStackHold hold;
        a.set(4);
        hold.forget();
        hold.accept(QStringLiteral("Set"));
        QCOMPARE(a.value, 4);
        QCOMPARE(stack->count(), 0);
        QVERIFY(!stack->isClean());
        QVERIFY(!stack->isHoldOpen());
    }
};

RY_TEST(RyRestoreSpanTest)
#include "tst_RyRestoreSpan.moc"
