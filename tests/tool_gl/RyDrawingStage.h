#pragma once

#include "RyGLRecorder.h"

#include "tool/RyToolScene.h"

#include <memory>

class RyFramebuffer;

/// The test scene with a GL context and a picture of 800 by 600 to draw into. World positions of what was drawn are
/// worked out from the modelview matrices.
class RyDrawingStage : public RyToolScene
{
public:
    RyDrawingStage();
    ~RyDrawingStage();

    static bool hasGL();
    /// Draws the tool once with the camera's matrices, shade style 11 for the pick pass.
    std::unique_ptr<RyGLRecorder> draw(int shadeStyle = 3);
    RyVec3 world(const RyGLRecorder::Primitive &primitive, size_t vertex) const;
    /// World length of so many pixels at a place, in double precision from the camera's numbers.
    double worldSize(double pixels, const RyVec3 &place) const;
    /// The 24 vertices of bone bodies, in order of drawing.
    static std::vector<RyGLRecorder::Primitive> bodies(const RyGLRecorder &recording);

    /// The state of the context that a drawing has to leave as it was: depths of the stacks, modelview matrix, line,
    /// point and polygon settings, switches.
    static QVector<float> glState();
    /// Line, point and polygon settings that no drawing asks for, and the ones that GL begins with.
    static void setUncommonState();
    static void setCommonState();

    static constexpr int PickPass = 11;

private:
    std::unique_ptr<RyFramebuffer> m_target;
    RyMatrix4 m_eyeToWorld;
};
