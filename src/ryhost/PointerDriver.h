#pragma once

#include <QPoint>
#include <QString>

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
    void click(QWidget *widget, const QPoint &point);
    /// Press, several moves on a straight line, release.
    void drag(QWidget *widget, const QPoint &from, const QPoint &to, int steps = 12);
    /// Such as "ctrl+z"; without the display server, sent to the widget.
    void key(QWidget *widget, const QString &keys);

    /// Lets the program work for a while.
    static void wait(int milliseconds);

private:
    void run(const QStringList &arguments);
    void send(int type, Qt::MouseButton button);

    QString m_program;
    QWidget *m_widget = nullptr;
    QPoint m_point;
    Qt::MouseButtons m_buttons;
};
