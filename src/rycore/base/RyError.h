#pragma once

#include <QMetaType>

/// Result of an operation: an integer code, 0 for success.
class RyError
{
public:
    enum Code { Success = 0, UnusableObject = 96, NotBound = 98, InvalidArgument = 100, NotFound = 101 };

    RyError(int code = Success) : m_code(code) {}
    int code() const { return m_code; }
    bool isSuccess() const { return m_code == Success; }
    operator int() const { return m_code; }

private:
    int m_code;
};

Q_DECLARE_METATYPE(RyError)
