#pragma once

#include <QString>
#include <QStringList>

class QAbstractItemView;
class QComboBox;
class QTabWidget;
class QWidget;

/// Choosing among items as a person would. False with a message that lists the items when none fits.
namespace RyWidgetChoices {

bool fillCombo(QComboBox *combo, const QString &value, QString *error);
bool fillView(QAbstractItemView *view, const QString &value, QString *error);
bool fillTabs(QTabWidget *tabs, const QString &value, QString *error);

/// The texts to choose from, cut short where there are many; empty for other widgets.
QStringList choices(const QWidget *widget);

} // namespace RyWidgetChoices
