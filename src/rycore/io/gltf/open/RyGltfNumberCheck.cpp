#include "rycore/io/gltf/open/RyGltfNumberCheck.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfFloats.h"

#include <algorithm>
#include <array>
#include <cmath>

void RyGltfNumberCheck::checkSkin(int skin, const RyAffine &toFigure)
{
    const RyGltfModel &model = m_document.model();
    const int binds = model.skins[size_t(skin)].inverseBindMatrices;
    if (binds >= 0 && isUsable(binds, "bind matrices"))
        checkBinds(skin, toFigure);
    std::set<int> checked; // positions that primitives share
    for (const RyGltfNode &node : model.nodes) {
        if (node.skin != skin || node.mesh < 0)
            continue;
        for (const RyGltfPrimitive &primitive : model.meshes[size_t(node.mesh)].primitives) {
            if (primitive.positions >= 0 && checked.insert(primitive.positions).second &&
                isUsable(primitive.positions, "positions"))
                checkPositions(primitive.positions, toFigure);
        }
    }
}

bool RyGltfNumberCheck::isUsable(int accessor, const char *what)
{
    if (m_document.hasFiniteNumbers(accessor))
        return true;
    refuse(accessor, QStringLiteral("%1 that are not finite numbers").arg(QLatin1String(what)));
    return false;
}

void RyGltfNumberCheck::checkBinds(int skin, const RyAffine &toFigure)
{
    const RyGltfSkin &each = m_document.model().skins[size_t(skin)];
    const std::vector<float> values = m_document.readFloats(each.inverseBindMatrices);
    for (size_t joint = 0; joint < each.joints.size() && 16 * joint + 16 <= values.size(); ++joint) {
        RyAffine inverse, bind;
        for (size_t row = 0; row < 4; ++row) {
            for (size_t column = 0; column < 3; ++column)
                inverse.m[row][column] = double(values[16 * joint + 4 * row + column]);
        }
        if (inverse.invert(bind) && isFar(toFigure, bind.m[3]))
            return refuse(each.inverseBindMatrices,
                          QStringLiteral("the bind matrix of joint %1 is too far out").arg(joint));
    }
}

void RyGltfNumberCheck::checkPositions(int accessor, const RyAffine &toFigure)
{
    const RyGltfFloats positions(m_document, accessor);
    if (isBoxNear(positions, toFigure))
        return;
    for (size_t i = 0; i < positions.count(); ++i) {
        const float *from = positions.data() + 3 * i;
        const double point[3] = {double(from[0]), double(from[1]), double(from[2])};
        if (isFar(toFigure, point))
            return refuse(accessor, QStringLiteral("position %1 is too far out").arg(i));
    }
}

/// A quick look that spares the next one nearly always: no point lies farther out than a corner of the box around all.
bool RyGltfNumberCheck::isBoxNear(const RyGltfFloats &positions, const RyAffine &toFigure) const
{
    if (positions.count() == 0)
        return true;
    std::array<std::array<float, 3>, 2> ends;
    for (std::array<float, 3> &end : ends)
        std::copy_n(positions.data(), 3, end.begin());
    for (size_t i = 1; i < positions.count(); ++i) {
        for (size_t axis = 0; axis < 3; ++axis) {
            const float number = positions.data()[3 * i + axis];
            ends[0][axis] = std::min(ends[0][axis], number);
            ends[1][axis] = std::max(ends[1][axis], number);
        }
    }
    for (size_t corner = 0; corner < 8; ++corner) {
        const double point[3] = {double(ends[corner & 1][0]), double(ends[(corner >> 1) & 1][1]),
                                 double(ends[corner >> 2][2])};
        if (isFar(toFigure, point))
            return false;
    }
    return true;
}

bool RyGltfNumberCheck::isFar(const RyAffine &map, const double *point) const
{
    double at[3];
    map.mapPoint(point, at);
    for (const double number : at) {
        if (!(std::abs(number) * m_unit <= farthest))
            return true;
    }
    return false;
}

void RyGltfNumberCheck::refuse(int accessor, const QString &what)
{
    if (m_reason.isEmpty())
        m_reason = QStringLiteral("accessors[%1]: %2").arg(accessor).arg(what);
}
