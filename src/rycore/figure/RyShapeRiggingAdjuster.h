#pragma once

#include "rycore/base/RyBase.h"
#include "rycore/base/RyError.h"

#include <functional>

class RyFigure;

/// Brings the rigging of a figure to its current shape: the origins and end points of its bones follow the surface from
/// where their defaults lie in the shape as bound (`moveWithSurface`). Orientations, defaults and the bones of other
/// figures stay. Scriptable.
class RyShapeRiggingAdjuster : public RyBase
{
    Q_OBJECT
public:
    /// A result beside those of RyError: the progress said so.
    static constexpr int Cancelled = 102;

    RyShapeRiggingAdjuster() = default;

    /// Of the step.
    static QString caption();

    /// Called while it works with the part that is done; false cancels.
    void setProgress(std::function<bool(double)> progress) { m_progress = std::move(progress); }

    /// One undo step; none when no bone moves, and nothing is changed unless it is a success. `UnusableObject` for null
    /// and for a figure without facets or whose shape is its base shape, or `Cancelled`.
    Q_INVOKABLE RyError adjustRiggingToShape(RyFigure *figure);
    /// Why the last call failed; empty after a success.
    Q_INVOKABLE QString getLastError() const { return m_lastError; }

private:
    RyError fail(int code, const QString &error);

    std::function<bool(double)> m_progress;
    QString m_lastError;
};
