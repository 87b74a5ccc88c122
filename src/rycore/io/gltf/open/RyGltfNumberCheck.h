#pragma once

#include "rycore/math/RyAffine.h"

#include <QString>

#include <set>

class RyGltfDocument;
class RyGltfFloats;

/// Looks for positions and bind matrices of figures that no scene can hold: numbers that are not finite, and places too
/// far out. The first such accessor is named.
class RyGltfNumberCheck
{
public:
    /// Farther out single precision has nothing left for a figure.
    static constexpr double farthest = 1e9; // centimetres

    /// `unit`: centimetres per file unit.
    RyGltfNumberCheck(const RyGltfDocument &document, double unit) : m_document(document), m_unit(unit) {}

    /// The skin's matrices, and the positions of all that it binds; `toFigure`: from their mesh space to figure space,
    /// both in file units.
    void checkSkin(int skin, const RyAffine &toFigure);
    /// Empty when all is well.
    QString reason() const { return m_reason; }

private:
    bool isUsable(int accessor, const char *what);
    void checkBinds(int skin, const RyAffine &toFigure);
    void checkPositions(int accessor, const RyAffine &toFigure);
    bool isBoxNear(const RyGltfFloats &positions, const RyAffine &toFigure) const;
    bool isFar(const RyAffine &map, const double *point) const;
    void refuse(int accessor, const QString &what);

    const RyGltfDocument &m_document;
    double m_unit;
    QString m_reason;
};
