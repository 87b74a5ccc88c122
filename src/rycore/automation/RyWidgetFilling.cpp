#include "rycore/automation/RyWidgetFilling.h"

#include "rycore/automation/RyFocusEvents.h"
#include "rycore/automation/RyNumberFilling.h"
#include "rycore/automation/RyWidgetChoices.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextEdit>
#include <QValidator>

#include <algorithm>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyWidgetFilling)
};

bool fail(QString *error, const QString &message)
{
    *error = message;
    return false;
}

bool fillLine(QLineEdit *edit, const QString &value, QString *error)
{
    if (edit->isReadOnly())
        return fail(error, Texts::tr("cannot be written"));
    QString checked = value;
    int position = 0;
    if (value.size() > edit->maxLength() ||
        (edit->validator() && edit->validator()->validate(checked, position) == QValidator::Invalid)) {
        return fail(error, Texts::tr("does not take the text \"%1\"").arg(value));
    }
    RyFocusEvents::enter(edit);
    edit->selectAll();
    edit->insert(value); // sends textEdited, unlike setText
    RyFocusEvents::leave(edit);
    return true;
}

template<typename TextEdit>
bool fillText(TextEdit *edit, const QString &value, QString *error)
{
    if (edit->isReadOnly())
        return fail(error, Texts::tr("cannot be written"));
    edit->setPlainText(value);
    return true;
}

bool toFlag(const QString &value, bool *flag)
{
    const QString word = value.trimmed().toLower();
    *flag =
        QStringList{QStringLiteral("true"), QStringLiteral("1"), QStringLiteral("yes"), QStringLiteral("on")}.contains(
            word);
    return *flag ||
           QStringList{QStringLiteral("false"), QStringLiteral("0"), QStringLiteral("no"), QStringLiteral("off")}
               .contains(word);
}

bool fillButton(QAbstractButton *button, const QString &value, QString *error)
{
    bool on = false;
    if (!toFlag(value, &on))
        return fail(error, Texts::tr("takes true or false, not \"%1\"").arg(value));
    if (!button->isCheckable()) {
        if (on)
            button->click();
        return true;
    }
    if (button->isChecked() != on)
        button->click();
    return button->isChecked() == on || fail(error, Texts::tr("cannot be switched %1; choose another of its group")
                                                        .arg(on ? Texts::tr("on") : Texts::tr("off")));
}

bool fillGroupBox(QGroupBox *box, const QString &value, QString *error)
{
    bool on = false;
    if (!toFlag(value, &on))
        return fail(error, Texts::tr("takes true or false, not \"%1\"").arg(value));
    if (box->isChecked() != on) {
        box->setChecked(on);
        emit box->clicked(on);
    }
    return true;
}

/// Values of a widget that describes its own value.
bool fillUserProperty(QWidget *widget, const QMetaProperty &property, const QString &value, QString *error)
{
    QVariant converted(value);
    if (!converted.convert(property.userType()) || !property.write(widget, converted))
        return fail(error, Texts::tr("does not take \"%1\"").arg(value));
    return true;
}

bool isBasicKind(const QWidget *widget)
{
    const auto *spin = qobject_cast<const QAbstractSpinBox *>(widget);
    const auto *group = qobject_cast<const QGroupBox *>(widget);
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QAbstractItemView *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) || qobject_cast<const QTextEdit *>(widget) ||
           qobject_cast<const QPlainTextEdit *>(widget) || qobject_cast<const QTabWidget *>(widget) ||
           (group && group->isCheckable()) || qobject_cast<const QSpinBox *>(spin) ||
           qobject_cast<const QDoubleSpinBox *>(spin);
}

bool fill(QWidget *widget, const QString &value, QString *error)
{
    if (!widget->isEnabled())
        return fail(error, Texts::tr("is disabled"));
    if (auto *edit = qobject_cast<QLineEdit *>(widget))
        return fillLine(edit, value, error);
    if (auto *button = qobject_cast<QAbstractButton *>(widget))
        return fillButton(button, value, error);
    if (auto *combo = qobject_cast<QComboBox *>(widget))
        return RyWidgetChoices::fillCombo(combo, value, error);
    if (auto *view = qobject_cast<QAbstractItemView *>(widget))
        return RyWidgetChoices::fillView(view, value, error);
    if (auto *tabs = qobject_cast<QTabWidget *>(widget))
        return RyWidgetChoices::fillTabs(tabs, value, error);
    if (auto *spin = qobject_cast<QAbstractSpinBox *>(widget))
        return RyNumberFilling::fillSpinBox(spin, value, error);
    if (auto *slider = qobject_cast<QAbstractSlider *>(widget))
        return RyNumberFilling::fillSlider(slider, value, error);
    auto *box = qobject_cast<QGroupBox *>(widget);
    if (box && box->isCheckable())
        return fillGroupBox(box, value, error);
    if (auto *text = qobject_cast<QTextEdit *>(widget))
        return fillText(text, value, error);
    if (auto *plain = qobject_cast<QPlainTextEdit *>(widget))
        return fillText(plain, value, error);
    const QMetaProperty user = widget->metaObject()->userProperty();
    if (user.isValid() && user.isWritable())
        return fillUserProperty(widget, user, value, error);
    QWidget *part = ryFillablePart(widget);
    return part ? fill(part, value, error) : fail(error, Texts::tr("cannot be filled"));
}

} // namespace

bool ryCanFillWidget(const QWidget *widget)
{
    if (isBasicKind(widget))
        return true;
    const QMetaProperty user = widget->metaObject()->userProperty();
    return user.isValid() && user.isWritable();
}

QWidget *ryFillablePart(QWidget *widget)
{
    QList<QWidget *> parts;
    for (QWidget *part : widget->findChildren<QWidget *>()) {
        const bool insideOther =
            std::any_of(parts.begin(), parts.end(), [&](QWidget *other) { return other->isAncestorOf(part); });
        if (!insideOther && ryCanFillWidget(part))
            parts.append(part);
    }
    return parts.size() == 1 ? parts.first() : nullptr;
}

bool ryFillWidget(QWidget *widget, const QString &value, QString *error)
{
    QString reason;
    if (fill(widget, value, &reason))
        return true;
    *error = QStringLiteral("%1 %2").arg(widget->objectName().isEmpty() ? Texts::tr("The field") : widget->objectName(),
                                         reason);
    return false;
}
