#pragma once

#include "rycore/ui/RyDialogDriver.h"

#include <QStringList>

/// Closes the message boxes that open while it lives, and keeps what they said: "title|text|Ok|warning", with
/// "other" for other buttons or another icon.
class RyMessageBoxes
{
public:
    RyMessageBoxes()
    {
        QObject::connect(&m_driver, &RyDialogDriver::opened, [this] { note(m_driver.records().back()); });
    }
    QStringList said;
    QList<QWidget *> parents;

private:
    void note(const RyDialogRecord &box)
    {
        const QStringList parts{box.title, box.text, box.offersOnlyOk() ? QStringLiteral("Ok") : QStringLiteral("other"),
                                box.icon == QMessageBox::Warning ? QStringLiteral("warning") : QStringLiteral("other")};
        said.append(parts.join('|'));
        parents.append(box.parent);
    }
    RyDialogDriver m_driver;
};
