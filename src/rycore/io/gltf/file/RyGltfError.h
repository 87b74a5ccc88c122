#pragma once

#include <QString>

/// Why a file is refused. Thrown inside the reader and caught by RyGltfDocument; it never leaves this folder.
struct RyGltfError
{
    QString message;
};
