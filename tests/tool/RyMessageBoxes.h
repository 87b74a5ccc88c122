#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

/// Closes the message boxes that open while it lives, and keeps what they said: "title|text|Ok|warning", with
/// "other" for other buttons or another icon.
class RyMessageBoxes
{
public:
    RyMessageBoxes()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { take(); });
        m_timer.start(0);
    }
    QStringList said;
    QList<QWidget *> parents;

private:
    void take()
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        QStringList parts = {box->windowTitle(), box->text()};
        parts.append(box->standardButtons() == QMessageBox::Ok ? QStringLiteral("Ok") : QStringLiteral("other"));
        parts.append(box->icon() == QMessageBox::Warning ? QStringLiteral("warning") : QStringLiteral("other"));
        said.append(parts.join('|'));
        parents.append(box->parentWidget());
        box->accept();
    }
    QTimer m_timer;
};
