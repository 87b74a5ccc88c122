#pragma once

#include <QString>

class QDateTime;

/// A time of today as that alone, an earlier one with its day.
QString timeTextOf(const QDateTime &time);
