#pragma once

#include <QString>

/// Numbers as people type and read them.
namespace RyNumberExpression {

/// Evaluates + - * / with parentheses and signs; "," is a decimal point too. False for anything else, with the reason
/// in `error`; the value is always finite.
bool evaluate(const QString &text, double &value, QString *error = nullptr);

/// At most four decimals, trailing zeros cut, never "-0".
QString format(double value);

} // namespace RyNumberExpression
