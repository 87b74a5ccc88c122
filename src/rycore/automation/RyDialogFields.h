#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// The widgets of a window that can be filled, by object name. Windows that it is the parent of are not searched.
namespace RyDialogFields {

/// "NAME#2" is the second of a name; null when there is none.
QWidget *find(const QWidget *window, const QString &name);
/// All names, each with what the widget takes.
QStringList describe(const QWidget *window);

} // namespace RyDialogFields
