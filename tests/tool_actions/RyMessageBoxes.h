#pragma once

#include "rycore/automation/RyDialogDriver.h"

#include <QStringList>

/// Closes the message boxes that open while it lives, and keeps what they said.
class RyMessageBoxes
{
public:
    RyMessageBoxes()
    {
        QObject::connect(&m_driver, &RyDialogDriver::opened, [this] { note(m_driver.records().back()); });
    }
    /// Presses that button in the box of that title, instead of the default one.
    void setAnswer(const QString &title, const QString &button) { m_driver.setAnswer(title, button); }

    /// "title|text|Ok|warning", with "other" for other buttons or another icon.
    QStringList said;
    /// "warning|title|text|Yes,No|Yes|No": icon, title, text, buttons, default button, the one that Escape presses.
    QStringList facts;
    QList<QWidget *> parents;

private:
    void note(const RyDialogRecord &box)
    {
        const QStringList parts{box.title, box.text,
                                box.offersOnlyOk() ? QStringLiteral("Ok") : QStringLiteral("other"),
                                box.icon == QMessageBox::Warning ? QStringLiteral("warning") : QStringLiteral("other")};
        said.append(parts.join('|'));
        facts.append(QStringList({box.iconName(), box.title, box.text, box.buttons.join(','), box.defaultButton,
                                  box.escapeButton})
                         .join('|'));
        parents.append(box.parent);
    }
    RyDialogDriver m_driver;
};
