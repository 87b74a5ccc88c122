#pragma once

#include <QString>

#include <stdexcept>

/// Why a file is refused. Thrown inside readers of files and caught by what opens them; `what()` is the message in
/// UTF-8.
class RyGltfError : public std::runtime_error
{
public:
    explicit RyGltfError(const QString &message) : std::runtime_error(message.toStdString()) {}

    QString message() const { return QString::fromUtf8(what()); }
};
