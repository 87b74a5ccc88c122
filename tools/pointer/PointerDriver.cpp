#include "pointer/PointerDriver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

#include <utility>

PointerDriver::PointerDriver()
{
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        m_program = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
}

void PointerDriver::wait(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    } while (timer.elapsed() < milliseconds);
}

void PointerDriver::run(const QStringList &arguments)
{
    QProcess process;
    process.start(m_program, arguments);
    while (process.state() != QProcess::NotRunning)
        wait(5);
    wait(15);
}

void PointerDriver::send(int type, Qt::MouseButton button)
{
    QWidget *native = m_widget;
    while (native && !native->windowHandle())
        native = native->parentWidget();
    if (!native)
        return;
    const QPoint global = m_widget->mapToGlobal(m_point);
    QMouseEvent event(QEvent::Type(type), native->mapFromGlobal(global), global, button, m_buttons, m_modifiers);
    QCoreApplication::sendEvent(native->windowHandle(), &event);
    wait(15);
}

void PointerDriver::moveTo(QWidget *widget, const QPoint &point)
{
    m_widget = widget;
    m_point = point;
    if (!usesDisplayServer()) {
        send(QEvent::MouseMove, Qt::NoButton);
        return;
    }
    const QPoint global = widget->mapToGlobal(point) * widget->devicePixelRatioF();
    run({QStringLiteral("mousemove"), QString::number(global.x()), QString::number(global.y())});
}

void PointerDriver::press(Qt::MouseButton button)
{
    m_buttons |= button;
    if (usesDisplayServer())
        run({QStringLiteral("mousedown"), button == Qt::LeftButton ? QStringLiteral("1") : QStringLiteral("3")});
    else
        send(QEvent::MouseButtonPress, button);
}

void PointerDriver::release(Qt::MouseButton button)
{
    m_buttons &= ~Qt::MouseButtons(button);
    if (usesDisplayServer())
        run({QStringLiteral("mouseup"), button == Qt::LeftButton ? QStringLiteral("1") : QStringLiteral("3")});
    else
        send(QEvent::MouseButtonRelease, button);
}

void PointerDriver::click(QWidget *widget, const QPoint &point)
{
    moveTo(widget, point);
    press();
    release();
}

void PointerDriver::drag(QWidget *widget, const QPoint &from, const QPoint &to, int steps)
{
    moveTo(widget, from);
    press();
    for (int step = 1; step <= steps; ++step)
        moveTo(widget, from + (to - from) * step / steps);
    release();
}

void PointerDriver::hold(Qt::KeyboardModifiers modifiers)
{
    if (usesDisplayServer()) {
        for (const auto &[modifier, name] :
             {std::pair(Qt::ControlModifier, "ctrl"), std::pair(Qt::ShiftModifier, "shift")}) {
            if ((modifiers ^ m_modifiers) & modifier)
                run({modifiers & modifier ? QStringLiteral("keydown") : QStringLiteral("keyup"),
                     QString::fromLatin1(name)});
        }
    }
    m_modifiers = modifiers;
}

void PointerDriver::wheelBack(QWidget *widget, const QPoint &point, int notches)
{
    moveTo(widget, point);
    for (int i = 0; i < notches; ++i) {
        if (usesDisplayServer()) {
            run({QStringLiteral("click"), QStringLiteral("5")});
            continue;
        }
        QWheelEvent event(point, widget->mapToGlobal(point), QPoint(), QPoint(0, -120), Qt::NoButton, m_modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
        wait(15);
    }
}

void PointerDriver::sendKey(QWidget *widget, int code, Qt::KeyboardModifiers modifiers, const QString &text)
{
    QPointer<QWindow> window = widget->window()->windowHandle();
    for (QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, code, modifiers, text);
        if (window)
            QCoreApplication::sendEvent(window, &event);
    }
}

void PointerDriver::key(QWidget *widget, const QString &keys)
{
    if (usesDisplayServer()) {
        run({QStringLiteral("key"), keys});
    } else {
        const int code = QKeySequence(keys, QKeySequence::PortableText)[0];
        sendKey(widget, code & ~int(Qt::KeyboardModifierMask),
                Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask)), QString());
    }
    wait(60);
}

void PointerDriver::type(QWidget *widget, const QString &text)
{
    if (usesDisplayServer()) {
        // A text may begin with a minus.
        run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), QStringLiteral("--"), text});
    } else {
        for (const QChar letter : text)
            sendKey(widget, letter.toUpper().unicode(), Qt::NoModifier, letter);
    }
    wait(60);
}
