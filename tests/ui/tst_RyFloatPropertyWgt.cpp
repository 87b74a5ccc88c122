#include "RyShownField.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>

/// What a field shows, and what is typed into it.
class RyFloatPropertyWgtTest : public QObject, private RyShownField
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void showsTheFirstAndWritesAll()
    {
        QCOMPARE(m_widget->getFirstProperty(), m_first);
        m_second->setValue(99);
        type("3*4+1");
        QCOMPARE(m_first->getValue(), 13.0f);
        QCOMPARE(m_second->getValue(), 13.0f);
        QCOMPARE(field()->text(), QStringLiteral("13"));
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 0.0f);
        QCOMPARE(m_second->getValue(), 99.0f);
        QCOMPARE(field()->text(), QString());
        ryUndoStack()->redo();
        QCOMPARE(field()->text(), QStringLiteral("13"));
    }

    /// With the field still in use, as after Enter; while something is typed they are those of the text.
    void undoAndRedoAreThoseOfTheScene()
    {
        QAction undo, redo;
        undo.setShortcut(QKeySequence::Undo);
        redo.setShortcut(QKeySequence::Redo);
        connect(&undo, &QAction::triggered, this, [] { ryUndoStack()->undo(); });
        connect(&redo, &QAction::triggered, this, [] { ryUndoStack()->redo(); });
        m_widget->addActions({&undo, &redo});
        setBoth(3);
        type("12.5");
        QCOMPARE(m_first->getValue(), 12.5f);
        QVERIFY(field()->hasFocus());
        QTest::keyClick(field(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_first->getValue(), 3.0f);
        QTest::keyClick(field(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_first->getValue(), 12.5f);
        QTest::keyClick(field(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field(), QStringLiteral("7"));
        QTest::keyClick(field(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_first->getValue(), 12.5f);
        QCOMPARE(field()->text(), QStringLiteral("12.5"));
    }

    void showsThatValuesDiffer()
    {
        setBoth(3);
        QCOMPARE(field()->text(), QStringLiteral("3"));
        QCOMPARE(field()->placeholderText(), QString());
        m_second->setValue(4);
        QCOMPARE(field()->text(), QString());
        QCOMPARE(field()->placeholderText(), QStringLiteral("mixed"));
        // What differs beyond the digits shown does not differ.
        m_second->setValue(3.00001f);
        QCOMPARE(field()->text(), QStringLiteral("3"));
        // Also one that is already the first one's is written to the others.
        m_second->setValue(4);
        type("3");
        QCOMPARE(m_second->getValue(), 3.0f);
        QCOMPARE(field()->text(), QStringLiteral("3"));
        QCOMPARE(ryUndoStack()->count(), 1);
        // Focus that only comes by writes nothing.
        m_second->setValue(4);
        field()->setFocus();
        QTest::keyClick(field(), Qt::Key_Tab);
        QCOMPARE(m_second->getValue(), 4.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void aStepFromMixedValuesMakesThemOne()
    {
        m_first->setValue(3);
        m_second->setValue(40);
        field()->setFocus();
        QTest::keyClick(field(), Qt::Key_Up);
        QCOMPARE(m_first->getValue(), 4.0f);
        QCOMPARE(m_second->getValue(), 4.0f);
        ryUndoStack()->undo();
        QCOMPARE(m_second->getValue(), 40.0f);
        // A drag that ends where it began leaves the others as they were.
        drag({8, 16, 8, 4, 0});
        QCOMPARE(m_first->getValue(), 3.0f);
        QCOMPARE(m_second->getValue(), 3.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(m_second->getValue(), 40.0f);
    }

    void followsTheProperty()
    {
        setBoth(1.23456f);
        QCOMPARE(field()->text(), QStringLiteral("1.2346"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void confirmingWhatIsShownChangesNothing()
    {
        setBoth(1.23456f);
        type("1.2346");
        QCOMPARE(m_first->getValue(), 1.23456f);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void nonsenseGoesBackAndSaysWhy()
    {
        setBoth(5);
        QSignalSpy messages(m_widget.get(), &RyFloatPropertyWgt::messagePosted);
        type("five");
        QCOMPARE(m_first->getValue(), 5.0f);
        QCOMPARE(field()->text(), QStringLiteral("5"));
        QCOMPARE(messages.count(), 1);
        QVERIFY(messages[0][0].toString().contains(QStringLiteral("five")));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void escapeLeavesTheValue()
    {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QStringLiteral("77"));
        QTest::keyClick(field(), Qt::Key_Escape);
        QCOMPARE(field()->text(), QStringLiteral("0"));
        m_widget->setFocus();
        QCOMPARE(m_first->getValue(), 0.0f);
    }

    void anEditSurvivesItsMenu()
    {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QStringLiteral("12"));
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(5, 5), field()->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(field(), &menu);
        QWidget *opened = QApplication::activePopupWidget();
        QVERIFY(opened);
        QCOMPARE(field()->text(), QStringLiteral("12"));
        QCOMPARE(m_first->getValue(), 0.0f);
        opened->close();
        QCOMPARE(m_first->getValue(), 0.0f);
        QTest::keyClick(field(), Qt::Key_Return);
        QCOMPARE(m_first->getValue(), 12.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        // Any other menu finds what was typed.
        field()->selectAll();
        QTest::keyClicks(field(), QStringLiteral("13"));
        QMenu other;
        other.addAction(QStringLiteral("Save"));
        other.popup(m_widget->mapToGlobal(QPoint(0, 40)));
        QCOMPARE(m_first->getValue(), 13.0f);
        other.close();
    }

    void anEditSurvivesSignalsWhileTyping()
    {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QStringLiteral("12"));
        m_first->setValue(3);
        QCOMPARE(field()->text(), QStringLiteral("12"));
        QTest::keyClick(field(), Qt::Key_Return);
        QCOMPARE(m_first->getValue(), 12.0f);
    }

    void arrowKeysStep()
    {
        field()->setFocus();
        QTest::keyClick(field(), Qt::Key_Up);
        QCOMPARE(m_first->getValue(), 1.0f);
        QTest::keyClick(field(), Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(m_first->getValue(), 11.0f);
        QTest::keyClick(field(), Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(m_first->getValue(), 10.9f);
        QCOMPARE(ryUndoStack()->count(), 3);
    }

    void limitsHold()
    {
        for (RyFloatProperty *property : {m_first, m_second}) {
            property->setIsClamped(true);
            property->setMin(-2);
            property->setMax(2);
        }
        type("50");
        QCOMPARE(m_first->getValue(), 2.0f);
        QCOMPARE(field()->text(), QStringLiteral("2"));
        QVERIFY(m_widget->slider()->isVisible());
        QCOMPARE(m_widget->slider()->value(), m_widget->slider()->maximum());
        m_widget->setFullLengthTextEdit(true);
        QVERIFY(!m_widget->slider()->isVisible());
    }

    void suffixMayBeTypedOrNot()
    {
        m_widget->setSuffix(QStringLiteral(" cm"));
        QCOMPARE(field()->text(), QStringLiteral("0 cm"));
        type("7 cm");
        QCOMPARE(m_first->getValue(), 7.0f);
        type("8");
        QCOMPARE(m_first->getValue(), 8.0f);
        QCOMPARE(field()->text(), QStringLiteral("8 cm"));
    }

    void tooLargeForAFloat()
    {
        setBoth(5);
        QSignalSpy messages(m_widget.get(), &RyFloatPropertyWgt::messagePosted);
        for (const char *text : {"1e39", "-3.5e38"}) {
            type(text);
            QCOMPARE(m_first->getValue(), 5.0f);
            QCOMPARE(field()->text(), QStringLiteral("5"));
        }
        QCOMPARE(messages.count(), 2);
        QVERIFY(messages[0][0].toString().endsWith(QStringLiteral("not taken, the number is too large.")));
        QCOMPARE(ryUndoStack()->count(), 0);
        type("3e38");
        QCOMPARE(m_first->getValue(), 3e38f);
        QCOMPARE(messages.count(), 2);
    }

    void finishingTakesTheText()
    {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QStringLiteral("6+1"));
        m_widget->finishEdit();
        QCOMPARE(m_first->getValue(), 7.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void aLabelOutsideIsEnabledWithTheField()
    {
        QWidget outside;
        m_widget->label()->setParent(&outside);
        m_widget->clearProperties();
        QVERIFY(!m_widget->label()->isEnabled());
        m_widget->addProperty(m_first);
        QVERIFY(m_widget->label()->isEnabled());
        m_widget.reset();
    }

    void timesWhatItShows()
    {
        setBoth(-3.125f);
        type("*2");
        QCOMPARE(m_first->getValue(), -6.25f);
        QCOMPARE(m_second->getValue(), -6.25f);
        type("/(1+1) - 1");
        QCOMPARE(m_first->getValue(), -4.125f);
        QCOMPARE(ryUndoStack()->count(), 2);
        // A sign is the number's own.
        type("-2");
        QCOMPARE(m_first->getValue(), -2.0f);
        // Of values that differ there is no one to start from.
        m_second->setValue(5);
        QSignalSpy messages(m_widget.get(), &RyFloatPropertyWgt::messagePosted);
        type("*2");
        QCOMPARE(messages.count(), 1);
        QCOMPARE(m_first->getValue(), -2.0f);
        QCOMPARE(m_second->getValue(), 5.0f);
    }

    void livesWithoutProperties()
    {
        m_bone.reset();
        QCOMPARE(m_widget->getFirstProperty(), m_second);
        m_widget->clearProperties();
        QCOMPARE(m_widget->getFirstProperty(), nullptr);
        QVERIFY(!m_widget->isEnabled());
        m_second->setValue(4);
        QCOMPARE(field()->text(), QString());
        m_widget->addProperty(nullptr);
        m_widget->addProperty(m_second);
        QCOMPARE(field()->text(), QStringLiteral("4"));
        QVERIFY(m_widget->isEnabled());
    }

    void staysDisabledByOthers()
    {
        m_widget->setEnabled(false);
        m_first->setValue(3);
        m_second->setValue(3);
        QVERIFY(!m_widget->isEnabled());
        QCOMPARE(field()->text(), QStringLiteral("3"));
        m_widget->addProperty(m_bone->getEndYControl());
        QVERIFY(!m_widget->isEnabled());
    }

    void whoCorrectsTheFirstCorrectsAll()
    {
        connect(m_first, &RyFloatProperty::currentValueChanged, m_widget.get(), [this] {
            for (RyFloatProperty *property : {m_first, m_second}) {
                if (property->getValue() > 90.0f)
                    property->setValue(90.0f);
            }
        });
        type("120");
        QCOMPARE(m_first->getValue(), 90.0f);
        QCOMPARE(m_second->getValue(), 90.0f);
    }

    void spokenName()
    {
        m_widget->setLabelText(QStringLiteral("X Axis"));
        QCOMPARE(field()->accessibleName(), QStringLiteral("X Axis"));
        m_widget->setSpokenName(QStringLiteral("Position X Axis"));
        QCOMPARE(field()->accessibleName(), QStringLiteral("Position X Axis"));
        QCOMPARE(m_widget->slider()->accessibleName(), QStringLiteral("Position X Axis"));
        QVERIFY(m_widget->label()->toolTip().startsWith(QStringLiteral("X Axis\n")));
        QSignalSpy messages(m_widget.get(), &RyFloatPropertyWgt::messagePosted);
        type("five");
        QVERIFY(messages[0][0].toString().startsWith(QStringLiteral("Position X Axis: ")));
        type("5");
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Change Position X Axis"));
    }
};

RY_TEST(RyFloatPropertyWgtTest)
#include "tst_RyFloatPropertyWgt.moc"
