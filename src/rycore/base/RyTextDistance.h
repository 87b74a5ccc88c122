#pragma once

#include <QString>

/// How many letters must be put in, taken out or changed to make one text the other.
int ryTextDistance(const QString &a, const QString &b);
