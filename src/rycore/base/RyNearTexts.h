#pragma once

#include <QStringList>

/// Those of the `known` texts that `wanted` may have been meant for: it is a part of them, or they of it, or few
/// letters differ. Capitals do not count. The nearest first, equally near ones in the order in which they are known.
QStringList ryNearTexts(const QString &wanted, const QStringList &known);

/// ` (did you mean "a", "b" or one of 7 more?)` for texts that are near, with the mark around each; nothing for none.
QString ryDidYouMean(const QStringList &near, const QString &mark = QStringLiteral("\""));
