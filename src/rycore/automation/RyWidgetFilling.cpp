#include "rycore/automation/RyWidgetFilling.h"

#include "rycore/automation/RyWidgetChoices.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFocusEvent>
#include <QGroupBox>
#include <QHash>
#include <QLineEdit>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextEdit>
#include <QValidator>

#include <algorithm>
#include <cmath>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("RyWidgetFilling", text);
}

bool fail(QString *error, const QString &message)
{
    *error = message;
    return false;
}

/// What a widget without keyboard focus misses when it is filled: the end of the input.
void leave(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(widget, &event);
}

void enter(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(widget, &event);
}

bool fillLine(QLineEdit *edit, const QString &value, QString *error)
{
    if (edit->isReadOnly())
        return fail(error, tr("cannot be written"));
    QString checked = value;
    int position = 0;
    if (value.size() > edit->maxLength() ||
        (edit->validator() && edit->validator()->validate(checked, position) == QValidator::Invalid)) {
        return fail(error, tr("does not take the text \"%1\"").arg(value));
    }
    enter(edit);
    edit->selectAll();
    edit->insert(value); // sends textEdited, unlike setText
    leave(edit);
    return true;
}

template<typename TextEdit>
bool fillText(TextEdit *edit, const QString &value, QString *error)
{
    if (edit->isReadOnly())
        return fail(error, tr("cannot be written"));
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
        return fail(error, tr("takes true or false, not \"%1\"").arg(value));
    if (!button->isCheckable()) {
        if (on)
            button->click();
        return true;
    }
    if (button->isChecked() != on)
        button->click();
    return button->isChecked() == on ||
           fail(error, tr("cannot be switched %1; choose another of its group").arg(on ? tr("on") : tr("off")));
}

bool fillGroupBox(QGroupBox *box, const QString &value, QString *error)
{
    bool on = false;
    if (!toFlag(value, &on))
        return fail(error, tr("takes true or false, not \"%1\"").arg(value));
    if (box->isChecked() != on) {
        box->setChecked(on);
        emit box->clicked(on);
    }
    return true;
}

template<typename Number>
bool checkRange(double number, bool isNumber, Number low, Number high, const QString &value, QString *error)
{
    if (!isNumber || !std::isfinite(number))
        return fail(error, tr("takes a number, not \"%1\"").arg(value));
    return (number >= double(low) && number <= double(high)) ||
           fail(error, tr("takes %1 to %2, not %3").arg(low).arg(high).arg(value));
}

bool fillWholeNumber(const QString &value, int low, int high, int *number, QString *error)
{
    bool isNumber = false;
    *number = value.trimmed().toInt(&isNumber);
    bool isReal = false;
    const double real = value.trimmed().toDouble(&isReal);
    if (!isNumber && isReal && real == std::floor(real) && std::abs(real) < 1e9) {
        *number = int(real);
        isNumber = true;
    }
    if (!isNumber && isReal)
        return fail(error, tr("takes whole numbers, not %1").arg(value));
    return checkRange(double(*number), isNumber, low, high, value, error);
}

bool fillSpinBox(QAbstractSpinBox *box, const QString &value, QString *error)
{
    if (box->isReadOnly())
        return fail(error, tr("cannot be written"));
    if (auto *whole = qobject_cast<QSpinBox *>(box)) {
        int number = 0;
        if (!fillWholeNumber(value, whole->minimum(), whole->maximum(), &number, error))
            return false;
        enter(box);
        whole->setValue(number);
    } else if (auto *real = qobject_cast<QDoubleSpinBox *>(box)) {
        bool isNumber = false;
        const double number = value.trimmed().toDouble(&isNumber);
        if (!checkRange(number, isNumber, real->minimum(), real->maximum(), value, error))
            return false;
        enter(box);
        real->setValue(number);
    } else {
        return fail(error, tr("cannot be filled"));
    }
    leave(box);
    return true;
}

bool fillSlider(QAbstractSlider *slider, const QString &value, QString *error)
{
    int number = 0;
    if (!fillWholeNumber(value, slider->minimum(), slider->maximum(), &number, error))
        return false;
    emit slider->sliderPressed();
    slider->setValue(number);
    emit slider->sliderReleased();
    return true;
}

/// Values of a widget that describes its own value.
bool fillUserProperty(QWidget *widget, const QMetaProperty &property, const QString &value, QString *error)
{
    QVariant converted(value);
    if (!converted.convert(property.userType()) || !property.write(widget, converted))
        return fail(error, tr("does not take \"%1\"").arg(value));
    return true;
}

QList<QWidget *> fillableParts(const QWidget *widget)
{
    QList<QWidget *> parts;
    for (QWidget *part : widget->findChildren<QWidget *>()) {
        const bool insideOther =
            std::any_of(parts.begin(), parts.end(), [&](QWidget *other) { return other->isAncestorOf(part); });
        if (!insideOther && ryCanFillWidget(part))
            parts.append(part);
    }
    return parts;
}

/// Not those in windows that this one is the parent of.
QList<QWidget *> widgetsIn(const QWidget *window, const QString &name = QString())
{
    QList<QWidget *> widgets = window->findChildren<QWidget *>(name);
    const auto isOther = [window](const QWidget *widget) { return widget->window() != window->window(); };
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(), isOther), widgets.end());
    return widgets;
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

/// Parts of Qt's own widgets, and what the layout made.
bool isInternal(const QWidget *widget)
{
    return widget->objectName().isEmpty() || widget->objectName().startsWith(QLatin1String("qt_")) ||
           qobject_cast<QAbstractSpinBox *>(widget->parentWidget()) ||
           qobject_cast<QComboBox *>(widget->parentWidget());
}

bool fill(QWidget *widget, const QString &value, QString *error)
{
    if (!widget->isEnabled())
        return fail(error, tr("is disabled"));
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
        return fillSpinBox(spin, value, error);
    if (auto *slider = qobject_cast<QAbstractSlider *>(widget))
        return fillSlider(slider, value, error);
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
    const QList<QWidget *> parts = fillableParts(widget);
    return parts.size() == 1 ? fill(parts.first(), value, error) : fail(error, tr("cannot be filled"));
}

QString takes(const QWidget *widget)
{
    if (const auto *spin = qobject_cast<const QSpinBox *>(widget))
        return tr("%1 to %2").arg(spin->minimum()).arg(spin->maximum());
    if (const auto *real = qobject_cast<const QDoubleSpinBox *>(widget))
        return tr("%1 to %2").arg(real->minimum()).arg(real->maximum());
    if (const auto *slider = qobject_cast<const QAbstractSlider *>(widget))
        return tr("%1 to %2").arg(slider->minimum()).arg(slider->maximum());
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->isCheckable() ? tr("true or false") : tr("a button");
    if (qobject_cast<const QGroupBox *>(widget))
        return tr("true or false");
    const QStringList choices = RyWidgetChoices::choices(widget);
    return choices.isEmpty() ? tr("text") : choices.join(QStringLiteral(" | "));
}

} // namespace

bool ryCanFillWidget(const QWidget *widget)
{
    if (isBasicKind(widget))
        return true;
    const QMetaProperty user = widget->metaObject()->userProperty();
    return user.isValid() && user.isWritable();
}

bool ryFillWidget(QWidget *widget, const QString &value, QString *error)
{
    QString reason;
    if (fill(widget, value, &reason))
        return true;
    *error =
        QStringLiteral("%1 %2").arg(widget->objectName().isEmpty() ? tr("The field") : widget->objectName(), reason);
    return false;
}

QWidget *ryFindField(const QWidget *window, const QString &name)
{
    if (name.isEmpty())
        return nullptr;
    const int mark = name.lastIndexOf(QLatin1Char('#'));
    bool isNumber = false;
    const int number = mark > 0 ? name.mid(mark + 1).toInt(&isNumber) : 0;
    const QList<QWidget *> found = widgetsIn(window, name);
    if (found.isEmpty() && isNumber)
        return widgetsIn(window, name.left(mark)).value(number - 1);
    // A label may carry the name of its field.
    const auto fillable =
        std::find_if(found.begin(), found.end(), [](QWidget *widget) { return ryCanFillWidget(widget); });
    return fillable != found.end() ? *fillable : found.value(0);
}

QStringList ryDescribeFields(const QWidget *window)
{
    QStringList lines;
    QHash<QString, int> seen;
    for (const QWidget *widget : widgetsIn(window)) {
        if (isInternal(widget))
            continue;
        const int number = ++seen[widget->objectName()];
        if (!ryCanFillWidget(widget) && fillableParts(widget).size() != 1)
            continue;
        if (qobject_cast<const QDialogButtonBox *>(widget->parentWidget()))
            continue;
        const QString name =
            number == 1 ? widget->objectName() : QStringLiteral("%1#%2").arg(widget->objectName()).arg(number);
        lines.append(QStringLiteral("%1 (%2)").arg(
            name, takes(ryCanFillWidget(widget) ? widget : fillableParts(widget).first())));
    }
    return lines;
}

QString ryButtonName(const QAbstractButton *button)
{
    QString text = button->text();
    text.replace(QLatin1String("&&"), QString(QChar(1)));
    text.remove(QLatin1Char('&'));
    text.replace(QChar(1), QLatin1Char('&'));
    QString bare = text;
    bare.remove(QLatin1Char(' '));
    const QMetaObject &boxes = QDialogButtonBox::staticMetaObject;
    const QMetaEnum names = boxes.enumerator(boxes.indexOfEnumerator("StandardButtons"));
    for (int i = 0; i < names.keyCount(); ++i) {
        if (names.value(i) != int(QDialogButtonBox::NoButton) &&
            bare.compare(QLatin1String(names.key(i)), Qt::CaseInsensitive) == 0)
            return QString::fromLatin1(names.key(i));
    }
    return text;
}
