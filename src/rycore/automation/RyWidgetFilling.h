#pragma once

#include <QString>
#include <QStringList>

class QAbstractButton;
class QWidget;

/// Fills a widget as a person would, with the signals that typing and clicking send. False with a message that says
/// what fits when `value` does not; the widget then keeps what it had.
///
/// Line and text edits take text, spin boxes and sliders a number, boxes to choose from the text of an item or its
/// index, buttons that can be checked true or false; true presses other buttons. Lists and trees take the text of an
/// item, its path from the root ("hip/abdomen") or, where several can be chosen, more of these with commas between.
/// Tabs go by title or index. A widget made of others is filled by its user property or the only one of them that can
/// be filled.
bool ryFillWidget(QWidget *widget, const QString &value, QString *error);
/// Whether `ryFillWidget` knows what to do with a widget of this kind.
bool ryCanFillWidget(const QWidget *widget);

/// The widget of an object name below a window, "NAME#2" for the second; null when there is none.
QWidget *ryFindField(const QWidget *window, const QString &name);
/// The object names below a window that can be filled, each with what it takes.
QStringList ryDescribeFields(const QWidget *window);

/// The standard name of a button that has it as its text ("Ok", "YesToAll"), otherwise its text without mnemonic.
QString ryButtonName(const QAbstractButton *button);
