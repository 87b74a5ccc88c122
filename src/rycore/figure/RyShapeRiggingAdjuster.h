#pragma once

#include "rycore/base/RyBase.h"
#include "rycore/base/RyError.h"

class RyFigure;

/// Brings the rigging of a figure to its current shape. Scriptable.
class RyShapeRiggingAdjuster : public RyBase
{
    Q_OBJECT
public:
    RyShapeRiggingAdjuster() = default;

    /// Success, or `UnusableObject` for null and for a figure whose shape is its base shape.
    Q_INVOKABLE RyError adjustRiggingToShape(RyFigure *figure);
    /// Why the last call failed; empty after a success.
    Q_INVOKABLE QString getLastError() const { return m_lastError; }

private:
    QString m_lastError;
};
