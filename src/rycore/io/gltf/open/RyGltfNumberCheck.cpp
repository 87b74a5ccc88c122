#include "rycore/io/gltf/open/RyGltfNumberCheck.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

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
    const std::vector<float> values = m_document.readFloats(accessor);
    for (size_t i = 0; i + 2 < values.size(); i += 3) {
        const double point[3] = {double(values[i]), double(values[i + 1]), double(values[i + 2])};
        if (isFar(toFigure, point))
            return refuse(accessor, QStringLiteral("position %1 is too far out").arg(i / 3));
    }
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
