#pragma once

#include <QString>

class QAbstractSlider;
class QAbstractSpinBox;

/// Filling with numbers as a person would. False with a message when `value` is none or out of range.
namespace RyNumberFilling {

bool fillSpinBox(QAbstractSpinBox *box, const QString &value, QString *error);
bool fillSlider(QAbstractSlider *slider, const QString &value, QString *error);

} // namespace RyNumberFilling
