#pragma once

#include <QPoint>
#include <QString>
#include <Qt>

class QWidget;

/// Moves the real pointer and presses real buttons and keys through the display server; where the program for that is
/// missing, the same events enter at the window handle.
class PointerDriver
{
public:
    PointerDriver();

    bool usesDisplayServer() const { return !m_program.isEmpty(); }
    /// Points are the widget's.
    void moveTo(QWidget *widget, const QPoint &point);
    void press(Qt::MouseButton button = Qt::LeftButton);
    void release(Qt::MouseButton button = Qt::LeftButton);
    /// Held from now on, until it is called without any.
    void hold(Qt::KeyboardModifiers modifiers);
    void click(QWidget *widget, const QPoint &point);
    /// Press, several moves on a straight line, release.
    void drag(QWidget *widget, const QPoint &from, const QPoint &to, int steps = 12);
    /// Turns the wheel towards the user (zooms out in a viewport) by so many notches.
    void wheelBack(QWidget *widget, const QPoint &point, int notches);
    /// Such as "ctrl+z"; without the display server, sent to the widget.
    void key(QWidget *widget, const QString &keys);
    /// Letter by letter, where the keyboard focus is.
    void type(QWidget *widget, const QString &text);

    /// Lets the program work for a while.
    static void wait(int milliseconds);

private:
    void run(const QStringList &arguments);
    void send(int type, Qt::MouseButton button);
    void sendKey(QWidget *widget, int code, Qt::KeyboardModifiers modifiers, const QString &text);

    QString m_program;
    QWidget *m_widget = nullptr;
    QPoint m_point;
    Qt::MouseButtons m_buttons;
    Qt::KeyboardModifiers m_modifiers;
};
