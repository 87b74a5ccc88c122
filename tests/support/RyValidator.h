#pragma once

#include <QString>

/// What the glTF validator says about a file.
struct RyValidation
{
    bool available = false; ///< false: not installed here, a test says so with QSKIP
    int errors = 0;
    int warnings = 0;
    QString report;
};

RyValidation ryValidate(const QString &path);
