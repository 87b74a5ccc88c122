#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/drawing/RyKeptWeights.h"
#include "pluginsource/RyJointTools/tool/drawing/RyWeightBuffers.h"
#include "pluginsource/RyJointTools/tool/drawing/RyWeightPicture.h"
#include "pluginsource/RyJointTools/tool/drawing/RyWeightSide.h"

#include <QStringList>

#include <array>
#include <map>
#include <utility>

struct RyJointState;

/// Draws how far vertices follow the current parameter on both sides of its joint: the facets of their face groups as
/// they are posed, in colours between the static and the dynamic one. What does not change is kept.
class RyWeightDrawing
{
public:
    /// Nothing in the pick pass, without a parameter and while weights are not to be shown.
    void draw(const RyDrawContext &context, const RyJointState &joint);

    using Kept = std::array<RyKeptWeights, 2>; // of the current parameter's side and of its partner's
    const Kept &kept() const { return m_kept; }
    /// Uploads and pictures, of all contexts.
    int uploads() const;
    int paints() const;

private:
    struct OfContext
    {
        std::array<RyWeightBuffers, 2> buffers;
        RyWeightPicture picture;
    };
    struct SideStamp
    {
        bool isShown = false;
        quint64 facets = 0;
        quint64 positions = 0;
        quint64 colors = 0;
        RyMatrix4 toWorld;
        bool operator==(const SideStamp &) const = default;
    };
    struct Stamp
    {
        int mode = 0;
        float pointSize = 0;
        float lineWidth = 0;
        std::array<SideStamp, 2> sides;
        bool operator==(const Stamp &) const = default;
    };
    /// Of the current context, so that nothing the size of the view is kept for what is not shown.
    void releasePicture();
    bool update(const RyDrawContext &context, const RyJointState &joint);
    void tellMissingGroups(const std::array<RyWeightSide, 2> &sides);
    void drawSides(OfContext &here) const;

    RyWeightColors m_colors;
    Kept m_kept;
    Stamp m_stamp; // of what is drawn
    quint64 m_content = 1;
    std::map<quint64, OfContext> m_contexts;     // by RyGLContext::currentNumber
    std::pair<const void *, QStringList> m_told; // of a parameter, which is compared only, since weights are shown
};
