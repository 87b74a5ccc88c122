#pragma once

#include "rycore/math/RyAffine.h"

#include <QPointer>
#include <QString>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

class RyMorph;
class RyNode;
class RyScene;

/// How nodes and morphs stand at one time of a clip: see RyNode::setPlayedMap and RyMorph::setPlayedValue. The same
/// ones in the same order at all times.
struct RyClipFrame
{
    std::vector<std::pair<RyNode *, RyAffine>> maps;
    std::vector<std::pair<QPointer<RyMorph>, float>> morphs;
};

/// Shows a clip in the scene as it stood when this was made; valid until nodes come, go or hang elsewhere.
class RyClipMotion
{
public:
    virtual ~RyClipMotion() = default;
    virtual void evaluate(double seconds, RyClipFrame &frame) = 0;
};

/// A clip of a file as it was read: how nodes and morphs of the scene stand at all times. Edits of the rest do not
/// enter.
class RyClip
{
public:
    static constexpr double FramesPerSecond = 30.0;

    virtual ~RyClip() = default;

    virtual QString name() const = 0;
    /// Seconds of the first and the last key; they may be equal.
    virtual double start() const = 0;
    virtual double end() const = 0;
    double length() const { return end() - start(); }
    /// Frames count from 0 at the start and need not be whole.
    double frameOf(double seconds) const { return (seconds - start()) * FramesPerSecond; }
    double secondsOf(double frame) const { return start() + frame / FramesPerSecond; }
    /// The first whole frame at or behind the end; a last key may stand a rounding behind a whole frame. Bounded: a
    /// damaged file may say any time.
    int lastFrame() const
    {
        constexpr double Most = 1e6, Rounding = 1e-3;
        return int(std::ceil(std::min(frameOf(end()), Most) - Rounding));
    }

    /// Figures of the scene of which it moves bones, or that it moves themselves; a clip that moves none gives the
    /// props that it moves. Empty when nothing of it is in the scene any more.
    virtual std::vector<RyNode *> subjects(const RyScene &scene) const = 0;
    /// For the scene as it stands.
    virtual std::unique_ptr<RyClipMotion> prepare(const RyScene &scene) const = 0;
};
