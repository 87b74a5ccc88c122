#pragma once

#include <QString>

/// How many letters must be put in, taken out, changed or swapped with the next to make one text the other, no letter
/// twice (Damerau's distance in the form of optimal string alignment).
int ryTextDistance(const QString &a, const QString &b);
