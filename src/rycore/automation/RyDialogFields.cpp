#include "rycore/automation/RyDialogFields.h"

#include "rycore/automation/RyWidgetChoices.h"
#include "rycore/automation/RyWidgetFilling.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QHash>
#include <QSpinBox>

#include <algorithm>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyDialogFields)
};

/// Not those in windows that this one is the parent of.
QList<QWidget *> widgetsIn(const QWidget *window, const QString &name = QString())
{
    QList<QWidget *> widgets = window->findChildren<QWidget *>(name);
    const auto isOther = [window](const QWidget *widget) { return widget->window() != window->window(); };
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(), isOther), widgets.end());
    return widgets;
}

/// Parts of Qt's own widgets, and what the layout made.
bool isInternal(const QWidget *widget)
{
    return widget->objectName().isEmpty() || widget->objectName().startsWith(QLatin1String("qt_")) ||
           qobject_cast<QAbstractSpinBox *>(widget->parentWidget()) ||
           qobject_cast<QComboBox *>(widget->parentWidget());
}

QString takes(const QWidget *widget)
{
    if (const auto *spin = qobject_cast<const QSpinBox *>(widget))
        return Texts::tr("%1 to %2").arg(spin->minimum()).arg(spin->maximum());
    if (const auto *real = qobject_cast<const QDoubleSpinBox *>(widget))
        return Texts::tr("%1 to %2").arg(real->minimum()).arg(real->maximum());
    if (const auto *slider = qobject_cast<const QAbstractSlider *>(widget))
        return Texts::tr("%1 to %2").arg(slider->minimum()).arg(slider->maximum());
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->isCheckable() ? Texts::tr("true or false") : Texts::tr("a button");
    if (qobject_cast<const QGroupBox *>(widget))
        return Texts::tr("true or false");
    const QStringList choices = RyWidgetChoices::choices(widget);
    return choices.isEmpty() ? Texts::tr("text") : choices.join(QStringLiteral(" | "));
}

} // namespace

QWidget *RyDialogFields::find(const QWidget *window, const QString &name)
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

QStringList RyDialogFields::describe(const QWidget *window)
{
    QStringList lines;
    QHash<QString, int> seen;
    for (QWidget *widget : widgetsIn(window)) {
        if (isInternal(widget))
            continue;
        const int number = ++seen[widget->objectName()];
        const QWidget *filled = ryCanFillWidget(widget) ? widget : ryFillablePart(widget);
        if (!filled || qobject_cast<const QDialogButtonBox *>(widget->parentWidget()))
            continue;
        const QString name =
            number == 1 ? widget->objectName() : QStringLiteral("%1#%2").arg(widget->objectName()).arg(number);
        lines.append(QStringLiteral("%1 (%2)").arg(name, takes(filled)));
    }
    return lines;
}
