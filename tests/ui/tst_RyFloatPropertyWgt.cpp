#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/undo/RyUndoStack.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QSlider>
#include <QWheelEvent>

Q_DECLARE_METATYPE(std::function<void()>)

class RyFloatPropertyWgtTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_bone = std::make_unique<RyBone>();
        m_other = std::make_unique<RyBone>();
        m_widget = std::make_unique<RyFloatPropertyWgt>();
        m_first = m_bone->getEndXControl();
        m_second = m_other->getEndXControl();
        m_widget->addProperty(m_first);
        m_widget->addProperty(m_second);
        m_widget->resize(320, 30);
        m_widget->show();
        m_widget->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));
        ryUndoStack()->clearAll();
    }
    void cleanup()
    {
        m_widget.reset();
        m_bone.reset();
        m_other.reset();
        ryUndoStack()->clearAll();
    }

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

    void aSliderDragIsOneStep()
    {
        m_widget->setSliderRange(-100, 100);
        QSlider *slider = m_widget->slider();
        QVERIFY(slider->isVisible());
        slider->setSliderDown(true);
        for (int place = 1000; place <= 1500; place += 50)
            slider->setValue(place);
        QCOMPARE(m_first->getValue(), 50.0f);
        slider->setSliderDown(false);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->entryCount(0), 2);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 0.0f);
    }

    void scrubbingTheLabelIsOneStepAndCanBeCancelled()
    {
        drag({4, 8, 20, 40});
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        drag({4, 8, 20, 40}, true);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        // A press without motion is no edit.
        QTest::mouseClick(m_widget->label(), Qt::LeftButton);
        QCOMPARE(ryUndoStack()->count(), 1);
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

    void announcesEveryEdit_data()
    {
        QTest::addColumn<std::function<void()>>("edit");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("steps");
        const auto add = [](const char *name, const std::function<void()> &edit, const QStringList &expected,
                            int steps = 1) { QTest::newRow(name) << edit << expected << steps; };
        const QStringList one = {"started 5", "changed 1"};
        add("typed", [this] { type("7"); }, {"started 5", "changed 1"});
        add(
            "confirmed", [this] { type("5"); }, {}, 0);
        add(
            "nonsense", [this] { type("five"); }, {}, 0);
        add(
            "arrow key", [this] { key(Qt::Key_Up); }, one);
        add(
            "page", [this] { key(Qt::Key_PageDown); }, one);
        add(
            "wheel", [this] { wheel(120); }, one);
        add(
            "label",
            [this] {
                drag({8, 16, 40});
            },
            one);
        add(
            "label, cancelled",
            [this] {
                drag({8, 16, 40}, true);
            },
            {"started 5", "changed 0"}, 0);
        add(
            "label, back again",
            [this] {
                drag({8, 16, 0});
            },
            {"started 5", "changed 0"}, 0);
        add(
            "slider",
            [this] {
                dragSlider({0.6, 0.7, 0.8});
            },
            one);
        add(
            "slider by key", [this] { QTest::keyClick(m_widget->slider(), Qt::Key_Right); }, one);
    }
    void announcesEveryEdit()
    {
        QFETCH(std::function<void()>, edit);
        QFETCH(QStringList, expected);
        QFETCH(int, steps);
        m_widget->setSliderRange(-100, 100);
        setBoth(5);
        QStringList told;
        connect(m_widget.get(), &RyFloatPropertyWgt::editStarted, this,
                [&] { told.append(QStringLiteral("started %1").arg(double(m_first->getValue()))); });
        connect(m_widget.get(), &RyFloatPropertyWgt::editFinished, this, [&](bool changed) {
            QCOMPARE(m_first->getValue() != 5.0f, changed);
            told.append(QStringLiteral("changed %1").arg(changed));
            // What listeners write belongs to the step.
            m_bone->getEndYControl()->setValue(changed ? 1 : 0);
        });
        edit();
        QCOMPARE(told, expected);
        QCOMPARE(ryUndoStack()->count(), steps);
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 5.0f);
        QCOMPARE(m_bone->getEndYControl()->getValue(), 0.0f);
    }

    void aNodeThatGoesEndsTheEdit()
    {
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        emit m_widget->label()->scrubStarted();
        emit m_widget->label()->scrubbed(40);
        QCOMPARE(m_first->getValue(), 20.0f);
        m_widget->clearProperties();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(m_first->getValue(), 0.0f);
        emit m_widget->label()->scrubFinished(false);
        QCOMPARE(finished.count(), 1);
    }

    void finishingEndsADragAsItsRelease()
    {
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        m_widget->finishEdit();
        QCOMPARE(finished.count(), 0);
        emit m_widget->label()->scrubStarted();
        emit m_widget->label()->scrubbed(40);
        m_widget->finishEdit();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), true);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        emit m_widget->label()->scrubbed(80);
        emit m_widget->label()->scrubFinished(false);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void aDragEndsWithItsField_data()
    {
        QTest::addColumn<std::function<void()>>("end");
        const auto add = [](const char *name, const std::function<void()> &end) { QTest::newRow(name) << end; };
        add("disabled", [this] { m_widget->setEnabled(false); });
        add("hidden", [this] { m_widget->hide(); });
        add("the other property goes", [this] { m_other.reset(); });
    }
    void aDragEndsWithItsField()
    {
        QFETCH(std::function<void()>, end);
        setBoth(5);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        press();
        move(8);
        move(40);
        QVERIFY(ryUndoStack()->isHoldOpen());
        const float dragged = m_first->getValue();
        QVERIFY(dragged > 10.0f);
        end();
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), true);
        // The button that is still down drags nothing, also of a field that is back.
        m_widget->setEnabled(true);
        m_widget->show();
        move(80);
        release(80);
        QCOMPARE(m_first->getValue(), dragged);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 5.0f);
    }

    void aDragEndsWithItsOnlyProperty()
    {
        m_widget->clearProperties();
        m_widget->addProperty(m_second);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        press();
        move(40);
        QVERIFY(ryUndoStack()->isHoldOpen());
        m_other.reset();
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!m_widget->isEnabled());
    }

    void aPressEndsWithItsField()
    {
        press();
        m_widget->setEnabled(false);
        m_widget->setEnabled(true);
        move(40);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(m_first->getValue(), 0.0f);
    }

    void whatChangesNothingLeavesNoStep_data()
    {
        QTest::addColumn<std::function<void()>>("edit");
        const auto add = [](const char *name, const std::function<void()> &edit) { QTest::newRow(name) << edit; };
        add("key", [this] { key(Qt::Key_Up); });
        add("wheel", [this] { wheel(120); });
        add("typed", [this] { type("50"); });
    }
    void whatChangesNothingLeavesNoStep()
    {
        QFETCH(std::function<void()>, edit);
        for (RyFloatProperty *property : {m_first, m_second}) {
            property->setIsClamped(true);
            property->setMin(-2);
            property->setMax(2);
            property->setValue(1.5f);
        }
        type("2");
        type("1");
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 2.0f);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        edit();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(field()->text(), QStringLiteral("2"));
        QCOMPARE(m_second->getValue(), 2.0f);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(ryUndoStack()->index(), 1);
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->redo();
        QCOMPARE(m_first->getValue(), 1.0f);
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

private:
    RyNumberField *field() const { return m_widget->numberField(); }
    void type(const char *text)
    {
        field()->setFocus();
        field()->selectAll();
        QTest::keyClicks(field(), QString::fromLatin1(text));
        QTest::keyClick(field(), Qt::Key_Return);
    }
    void setBoth(float value)
    {
        m_first->setValue(value);
        m_second->setValue(value);
    }
    void key(Qt::Key key)
    {
        field()->setFocus();
        QTest::keyClick(field(), key);
    }
    void wheel(int angle)
    {
        field()->setFocus();
        const QPointF place(10, 5);
        QWheelEvent event(place, field()->mapToGlobal(place.toPoint()), QPoint(), QPoint(0, angle), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(field(), &event);
    }
    /// Drags the label through these places, in pixels from the press.
    void drag(const std::vector<int> &places, bool cancel = false)
    {
        press();
        for (int x : places)
            move(x);
        if (cancel)
            QTest::keyClick(m_widget->label(), Qt::Key_Escape);
        release(places.back());
    }
    void press() { send(QEvent::MouseButtonPress, 0, Qt::LeftButton, Qt::LeftButton); }
    void move(int x) { send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton); }
    void release(int x) { send(QEvent::MouseButtonRelease, x, Qt::LeftButton, Qt::NoButton); }
    void send(QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        RyScrubLabel *label = m_widget->label();
        QMouseEvent event(type, QPoint(10 + x, 5), label->mapToGlobal(QPoint(10 + x, 5)), button, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(label, &event);
    }
    /// Drags the handle of the slider to these shares of its way.
    void dragSlider(const std::vector<double> &places)
    {
        QSlider *slider = m_widget->slider();
        QVERIFY(slider->isVisible());
        slider->setSliderDown(true);
        for (double place : places)
            slider->setValue(int(place * slider->maximum()));
        slider->setSliderDown(false);
    }
    std::unique_ptr<RyBone> m_bone;
    std::unique_ptr<RyBone> m_other;
    std::unique_ptr<RyFloatPropertyWgt> m_widget;
    RyFloatProperty *m_first = nullptr;
    RyFloatProperty *m_second = nullptr;
};

RY_TEST(RyFloatPropertyWgtTest)
#include "tst_RyFloatPropertyWgt.moc"
