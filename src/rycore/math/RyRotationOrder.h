#pragma once

#include <QMetaType>
#include <QString>

/// The order in which the rotation controls act; the first axis is the bone's twist axis.
class RyRotationOrder
{
public:
    enum Code { XYZ = 0, XZY = 1, YXZ = 2, YZX = 3, ZXY = 4, ZYX = 5 };

    /// Any other code becomes XYZ.
    explicit RyRotationOrder(int code = XYZ) : m_code(code >= XYZ && code <= ZYX ? code : XYZ) {}
    /// The order with these three axes, XYZ where they are no permutation.
    static RyRotationOrder fromAxes(int a, int b, int c);

    int order() const { return m_code; }
    /// Axis 0 (X), 1 (Y) or 2 (Z) that acts as number `index`.
    int operator[](int index) const;
    void getAxisOrder(int &first, int &second, int &third) const;
    QString name() const;
    bool operator==(const RyRotationOrder &o) const { return m_code == o.m_code; }
    bool operator!=(const RyRotationOrder &o) const { return m_code != o.m_code; }

private:
    int m_code;
};

Q_DECLARE_METATYPE(RyRotationOrder)
