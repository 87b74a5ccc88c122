#pragma once

#include "rycore/math/RyAffine.h"

#include <assimp/matrix4x4.h>
#include <assimp/types.h>

#include <QString>

/// Names come as UTF-8; what is none is replaced, since no name of a glTF file could hold it.
inline QString ryForeignText(const aiString &text)
{
    return QString::fromUtf8(text.data, int(text.length));
}

/// For row vectors.
inline RyAffine ryForeignMap(const aiMatrix4x4 &matrix)
{
    RyAffine map;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            map.m[row][column] = double(matrix[unsigned(column)][unsigned(row)]);
    }
    return map;
}
