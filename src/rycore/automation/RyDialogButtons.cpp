#include "rycore/automation/RyDialogButtons.h"

#include "rycore/ui/RyPlainText.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPushButton>

#include <algorithm>

namespace {

/// Not those of dialogs that this one is the parent of.
QList<QDialogButtonBox *> boxesOf(const QDialog *dialog)
{
    QList<QDialogButtonBox *> boxes = dialog->findChildren<QDialogButtonBox *>();
    const auto isOther = [dialog](const QDialogButtonBox *box) { return box->window() != dialog; };
    boxes.erase(std::remove_if(boxes.begin(), boxes.end(), isOther), boxes.end());
    return boxes;
}

QDialogButtonBox::ButtonRole roleOf(const QDialog *dialog, QAbstractButton *button)
{
    for (const QDialogButtonBox *box : boxesOf(dialog)) {
        const QDialogButtonBox::ButtonRole role = box->buttonRole(button);
        if (role != QDialogButtonBox::InvalidRole)
            return role;
    }
    return QDialogButtonBox::InvalidRole;
}

QList<QAbstractButton *> withRole(const QDialog *dialog, QDialogButtonBox::ButtonRole role)
{
    QList<QAbstractButton *> buttons;
    for (QAbstractButton *button : RyDialogButtons::buttonsOf(dialog)) {
        if (roleOf(dialog, button) == role)
            buttons.append(button);
    }
    return buttons;
}

QMetaEnum standardNames()
{
    const QMetaObject &boxes = QDialogButtonBox::staticMetaObject;
    return boxes.enumerator(boxes.indexOfEnumerator("StandardButtons"));
}

QDialogButtonBox::StandardButton standardButtonOf(const QAbstractButton *button)
{
    const auto *box = qobject_cast<const QDialogButtonBox *>(button->parentWidget());
    return box ? box->standardButton(const_cast<QAbstractButton *>(button)) : QDialogButtonBox::NoButton;
}

/// Empty for other buttons.
QString standardNameOf(const QAbstractButton *button)
{
    const QDialogButtonBox::StandardButton standard = standardButtonOf(button);
    return standard == QDialogButtonBox::NoButton ? QString()
                                                  : QString::fromLatin1(standardNames().valueToKey(standard));
}

/// Whether a standard button says what such a button says, in whatever language.
bool hasStandardText(const QAbstractButton *button)
{
    const QDialogButtonBox::StandardButton standard = standardButtonOf(button);
    const QDialogButtonBox fresh(standard);
    return fresh.button(standard)->text() == button->text();
}

QString withoutBlanks(QString text)
{
    return text.remove(QLatin1Char(' '));
}

} // namespace

QList<QAbstractButton *> RyDialogButtons::buttonsOf(const QDialog *dialog)
{
    QList<QAbstractButton *> buttons;
    for (const QDialogButtonBox *box : boxesOf(dialog))
        buttons += box->buttons();
    if (buttons.isEmpty() && !qobject_cast<const QMessageBox *>(dialog)) {
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->window() == dialog)
                buttons.append(button);
        }
    }
    const auto isHidden = [](const QAbstractButton *button) { return button->isHidden(); };
    buttons.erase(std::remove_if(buttons.begin(), buttons.end(), isHidden), buttons.end());
    const auto before = [dialog](const QAbstractButton *a, const QAbstractButton *b) {
        const QPoint placeA = a->mapTo(dialog, QPoint(0, 0));
        const QPoint placeB = b->mapTo(dialog, QPoint(0, 0));
        return placeA.y() != placeB.y() ? placeA.y() < placeB.y() : placeA.x() < placeB.x();
    };
    std::stable_sort(buttons.begin(), buttons.end(), before);
    return buttons;
}

QAbstractButton *RyDialogButtons::defaultButton(const QDialog *dialog)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(dialog)) {
        if (box->defaultButton())
            return box->defaultButton();
    }
    for (QAbstractButton *button : buttonsOf(dialog)) {
        const auto *push = qobject_cast<QPushButton *>(button);
        if (push && push->isDefault())
            return button;
    }
    return nullptr;
}

QAbstractButton *RyDialogButtons::escapeButton(const QDialog *dialog)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(dialog)) {
        if (box->escapeButton())
            return box->escapeButton();
        const QList<QAbstractButton *> all = buttonsOf(dialog);
        if (all.size() == 1)
            return all.first();
        const QList<QAbstractButton *> no = withRole(dialog, QDialogButtonBox::NoRole);
        const QList<QAbstractButton *> rejecting = withRole(dialog, QDialogButtonBox::RejectRole);
        if (rejecting.isEmpty())
            return no.size() == 1 ? no.first() : nullptr;
    }
    const QList<QAbstractButton *> rejecting = withRole(dialog, QDialogButtonBox::RejectRole);
    return rejecting.size() == 1 ? rejecting.first() : nullptr;
}

QAbstractButton *RyDialogButtons::acceptButton(const QDialog *dialog)
{
    for (const QDialogButtonBox *box : boxesOf(dialog)) {
        for (const auto standard :
             {QDialogButtonBox::Ok, QDialogButtonBox::Yes, QDialogButtonBox::Save, QDialogButtonBox::Open}) {
            if (box->button(standard))
                return box->button(standard);
        }
    }
    for (const auto role : {QDialogButtonBox::AcceptRole, QDialogButtonBox::YesRole}) {
        const QList<QAbstractButton *> buttons = withRole(dialog, role);
        if (!buttons.isEmpty())
            return buttons.first();
    }
    if (QAbstractButton *button = findButton(dialog, QStringLiteral("Ok")))
        return button;
    return boxesOf(dialog).isEmpty() ? defaultButton(dialog) : nullptr;
}

bool RyDialogButtons::givesUp(const QDialog *dialog, QAbstractButton *button)
{
    return button && buttonsOf(dialog).size() > 1 && roleOf(dialog, button) == QDialogButtonBox::RejectRole;
}

QString RyDialogButtons::nameOf(const QAbstractButton *button)
{
    const QString standard = standardNameOf(button);
    if (!standard.isEmpty() && hasStandardText(button))
        return standard;
    const QString text = ryPlainText(button->text());
    const QString asWord = withoutBlanks(text);
    const QMetaEnum names = standardNames();
    for (int i = 0; i < names.keyCount(); ++i) {
        const QString name = QString::fromLatin1(names.key(i));
        if (names.value(i) != int(QDialogButtonBox::NoButton) && asWord.compare(name, Qt::CaseInsensitive) == 0)
            return name;
    }
    return text;
}

QAbstractButton *RyDialogButtons::findButton(const QDialog *dialog, const QString &name)
{
    const QString wanted = withoutBlanks(name), plain = withoutBlanks(ryPlainText(name));
    const auto isWanted = [&](const QString &own) {
        return wanted.compare(own, Qt::CaseInsensitive) == 0 || plain.compare(own, Qt::CaseInsensitive) == 0;
    };
    for (QAbstractButton *button : buttonsOf(dialog)) {
        if (isWanted(withoutBlanks(nameOf(button))))
            return button;
        if (qobject_cast<const QMessageBox *>(dialog) && isWanted(standardNameOf(button)))
            return button;
    }
    return nullptr;
}
