#pragma once

#include <QString>

/// What a check of wrong use ends with: false, and why.
inline bool batchMistake(QString *error, const QString &message)
{
    *error = message;
    return false;
}
