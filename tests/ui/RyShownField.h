#pragma once

#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/undo/RyUndoStack.h"

#include <QMouseEvent>
#include <QSlider>
#include <QWheelEvent>

/// A number on the screen that stands for the same value of two bones.
class RyShownField
{
protected:
    void open()
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
    void close()
    {
        m_widget.reset();
        m_bone.reset();
        m_other.reset();
        ryUndoStack()->clearAll();
    }

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
