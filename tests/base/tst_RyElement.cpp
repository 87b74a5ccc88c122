#include "support/RyTest.h"

#include "rycore/base/RyElement.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

class RyElementTest : public QObject
{
    Q_OBJECT

    class Edited : public RyElement
    {
    public:
        QStringList calls;

    protected:
        void editBegun() override { calls.append("begun"); }
        void editFinished() override { calls.append("finished"); }
        void editCancelled() override
        {
            calls.append(ryUndoStack()->isLocked() ? "cancelled" : "cancelled without lock");
        }
    };

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void nameIsTheObjectName()
    {
        RyBase base;
        QSignalSpy spy(&base, &RyBase::nameChanged);
        base.setName("hip");
        QCOMPARE(base.objectName(), QString("hip"));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy[0][0].toString(), QString("hip"));
        base.setName("hip");
        QCOMPARE(spy.count(), 1);
        base.setObjectName("chest");
        QCOMPARE(base.getName(), QString("chest"));
    }

    void labelFallsBackToTheName()
    {
        RyElement element;
        QSignalSpy spy(&element, &RyElement::labelChanged);
        element.setName("lHand");
        QCOMPARE(element.getLabel(), QString("lHand"));
        QVERIFY(!element.hasOwnLabel());
        QCOMPARE(spy.count(), 1);
        element.setLabel("Left Hand");
        QCOMPARE(element.getLabel(), QString("Left Hand"));
        QVERIFY(element.hasOwnLabel());
        QCOMPARE(spy.count(), 2);
        element.setName("x");
        QCOMPARE(element.getLabel(), QString("Left Hand"));
        QCOMPARE(spy.count(), 2);
        element.setLabel(QString());
        QCOMPARE(element.getLabel(), QString("x"));
        QVERIFY(!element.hasOwnLabel());
        QCOMPARE(spy.count(), 3);
    }

    void namesAndLabelsAreUndone()
    {
        RyElement element;
        element.setName("a");
        {
            RyUndoStackHold hold;
            element.setName("b");
            element.setName("c");
            element.setLabel("Label");
            hold.accept("rename");
        }
        QCOMPARE(ryUndoStack()->entryCount(0), 2);
        QSignalSpy names(&element, &RyBase::nameChanged);
        QSignalSpy labels(&element, &RyElement::labelChanged);
        ryUndoStack()->undo();
        QCOMPARE(element.getName(), QString("a"));
        QCOMPARE(element.getLabel(), QString("a"));
        QVERIFY(!element.hasOwnLabel());
        QCOMPARE(names.count(), 1);
        QVERIFY(labels.count() >= 1);
        QCOMPARE(labels.last()[0].toString(), QString("a"));
        ryUndoStack()->redo();
        QCOMPARE(element.getName(), QString("c"));
        QCOMPARE(element.getLabel(), QString("Label"));
        QCOMPARE(names.count(), 2);
    }

    void editsNest()
    {
        Edited element;
        element.finishEdit();
        element.cancelEdit();
        QVERIFY(element.calls.isEmpty());
        element.beginEdit();
        element.beginEdit();
        QCOMPARE(element.editLevel(), 2);
        element.finishEdit();
        QCOMPARE(element.calls, QStringList({"begun"}));
        element.finishEdit();
        QCOMPARE(element.calls, QStringList({"begun", "finished"}));
        element.finishEdit();
        QCOMPARE(element.calls.size(), 2);
    }

    void cancelClosesAllLevels()
    {
        Edited element;
        element.beginEdit();
        element.beginEdit();
        element.cancelEdit();
        QCOMPARE(element.editLevel(), 0);
        QVERIFY(!ryUndoStack()->isLocked());
        element.cancelEdit();
        element.finishEdit();
        QCOMPARE(element.calls, QStringList({"begun", "cancelled"}));
        element.beginEdit();
        element.finishEdit();
        QCOMPARE(element.calls, QStringList({"begun", "cancelled", "begun", "finished"}));
    }
};

RY_TEST(RyElementTest)
#include "tst_RyElement.moc"
