#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/undo/RyUndoStack.h"

#include <QMouseEvent>
#include <QSlider>

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
        QVERIFY(QTest::qWaitForWindowExposed(m_widget.get()));
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
        QCOMPARE(field()->text(), QStringLiteral("0"));
        type("3*4+1");
        QCOMPARE(m_first->getValue(), 13.0f);
        QCOMPARE(m_second->getValue(), 13.0f);
        QCOMPARE(field()->text(), QStringLiteral("13"));
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 0.0f);
        QCOMPARE(m_second->getValue(), 99.0f);
        QCOMPARE(field()->text(), QStringLiteral("0"));
        ryUndoStack()->redo();
        QCOMPARE(field()->text(), QStringLiteral("13"));
    }

    void followsTheProperty()
    {
        m_first->setValue(1.23456f);
        QCOMPARE(field()->text(), QStringLiteral("1.2346"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void confirmingWhatIsShownChangesNothing()
    {
        m_first->setValue(1.23456f);
        type("1.2346");
        QCOMPARE(m_first->getValue(), 1.23456f);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void nonsenseGoesBackAndSaysWhy()
    {
        m_first->setValue(5);
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
        m_first->setIsClamped(true);
        m_first->setMin(-2);
        m_first->setMax(2);
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
        drag(40, false);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        drag(40, true);
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
    void drag(int pixels, bool cancel)
    {
        RyScrubLabel *label = m_widget->label();
        const auto send = [&](QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons) {
            QMouseEvent event(type, QPoint(10 + x, 5), label->mapToGlobal(QPoint(10 + x, 5)), button, buttons,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(label, &event);
        };
        send(QEvent::MouseButtonPress, 0, Qt::LeftButton, Qt::LeftButton);
        for (int x = 4; x <= pixels; x += 4)
            send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton);
        if (cancel)
            QTest::keyClick(label, Qt::Key_Escape);
        send(QEvent::MouseButtonRelease, pixels, Qt::LeftButton, Qt::NoButton);
    }
    std::unique_ptr<RyBone> m_bone;
    std::unique_ptr<RyBone> m_other;
    std::unique_ptr<RyFloatPropertyWgt> m_widget;
    RyFloatProperty *m_first = nullptr;
    RyFloatProperty *m_second = nullptr;
};

RY_TEST(RyFloatPropertyWgtTest)
#include "tst_RyFloatPropertyWgt.moc"
