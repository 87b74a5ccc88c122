#pragma once

#include <QString>

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
/// The only widget that it can fill within one that is made of others; null where there are none or several.
QWidget *ryFillablePart(QWidget *widget);
