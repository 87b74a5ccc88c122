#pragma once

#include <QString>

/// Why a file is refused. Thrown inside readers of files and caught by what opens them.
struct RyGltfError
{
    QString message;
};
