#pragma once

#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyGL.h"

#include <algorithm>
#include <cmath>
#include <vector>

/// Bones and handles drawn by the letter, as a peer: for each bone its attributes and its matrix are pushed, its state
/// is set, its vertices are given in its own space, and all is popped again.
class RyLiteralDrawing
{
public:
    /// A bone with its frame worked out beforehand.
    struct Bone
    {
        RyMatrix4 frame;
        float length;
        int axes[3];
        bool hasLink;
        RyVec3 place, parentTip;
        int id;
    };
    enum class Pass { Normal, Codes, Numbers }; // numbers: the id in 24 bits

    static Bone prepare(const RyBone &bone, int id)
    {
        const RyVec3 way = bone.getEndPoint() - bone.getOrigin();
        const float along = bone.getOrientation().inverse().multVec(way)[bone.getRotationOrder()[0]];
        Bone result;
        result.frame = RyMatrix4(bone.getOrientation()) * bone.getWSTransform();
        result.length = along < 0.0f ? -way.length() : way.length();
        bone.getRotationOrder().getAxisOrder(result.axes[0], result.axes[1], result.axes[2]);
        const RyNode *parent = bone.getNodeParent();
        result.hasLink = parent && parent != bone.getSkeleton();
        result.place = bone.getWSPos();
        result.parentTip = result.hasLink ? parent->getWSEndPoint() : RyVec3();
        result.id = id;
        return result;
    }

    static std::vector<Bone> prepareAll(const RySkeleton &skeleton)
    {
        std::vector<Bone> bones;
        for (const RyBone *bone : skeleton.getAllBones())
            bones.push_back(prepare(*bone, int(bones.size()) + 47));
        return bones;
    }

    RyLiteralDrawing(Pass pass, bool withLinks) : m_pass(pass), m_withLinks(withLinks) {}

    void draw(const std::vector<Bone> &bones) const
    {
        for (const Bone &bone : bones)
            drawBone(bone);
    }

    /// All that a bone needs is read from the scene when it is drawn.
    void drawFromScene(const RySkeleton &skeleton) const
    {
        int id = 47;
        for (const RyBone *bone : skeleton.getAllBones())
            drawBone(prepare(*bone, id++));
    }

    void drawBone(const Bone &bone) const
    {
        glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
        glDisable(GL_LIGHTING);
        glDisable(GL_DEPTH_TEST);
        glPushMatrix();
        glMultMatrixf(bone.frame.data());
        drawShape(bone);
        glPopMatrix();
        if (m_pass == Pass::Normal && m_withLinks && bone.hasLink) {
            glPushAttrib(GL_LINE_BIT);
            glLineStipple(3, 0xAAAA);
            glEnable(GL_LINE_STIPPLE);
            glColor4f(1, 1, 1, 0.4f);
            glBegin(GL_LINES);
            put(bone.place);
            put(bone.parentTip);
            glEnd();
            glDisable(GL_LINE_STIPPLE);
            glPopAttrib();
        }
        glPopAttrib();
    }

    void drawHandles(const RyNode &node) const
    {
        glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT);
        glDisable(GL_LIGHTING);
        glDisable(GL_DEPTH_TEST);
        if (m_pass != Pass::Normal) {
            GLfloat width = 1.0f;
            glGetFloatv(GL_LINE_WIDTH, &width);
            glLineWidth(std::min(width, 10.0f));
        }
        drawHandlesAt(RyHandleFrame::ofOrigin(node).toWorld(), 41, 1);
        drawHandlesAt(RyHandleFrame::ofEndPoint(node).toWorld(), 44, 2);
        glPopAttrib();
    }

private:
    static void put(const RyVec3 &p) { glVertex3f(p.x, p.y, p.z); }

    void setIdColor(int id) const
    {
        if (m_pass == Pass::Codes)
            glColor3ub(GLubyte(id), 0, 128);
        else
            glColor3ub(GLubyte(id), GLubyte(id >> 8), GLubyte(id >> 16));
    }

    void drawShape(const Bone &bone) const
    {
        const float width = bone.length / 10.0f;
        const RyVec3 tip = RyVec3::axis(bone.axes[0]) * bone.length;
        const RyVec3 middle = RyVec3::axis(bone.axes[0]) * width;
        const RyVec3 q = RyVec3::axis(bone.axes[1]) * width;
        const RyVec3 r = RyVec3::axis(bone.axes[2]) * width;
        const RyVec3 waist[4] = {middle + q, middle + r, middle - q, middle - r};
        glColor3ub(255, 255, 255);
        if (m_pass == Pass::Normal)
            glColor4f(0.1f, 0.1f, 0.1f, 0.2f);
        else
            setIdColor(bone.id);
        glBegin(GL_TRIANGLES);
        for (int i = 0; i < 4; ++i) {
            const RyVec3 &next = waist[(i + 1) % 4];
            for (const RyVec3 &p : {RyVec3(), next, waist[i], tip, waist[i], next})
                put(p);
        }
        glEnd();
        if (m_pass != Pass::Normal)
            return;
        glBegin(GL_LINES);
        for (int i = 0; i < 4; ++i) {
            const int axis = bone.axes[i % 2 == 0 ? 1 : 2];
            glColor4f(axis == 0, axis == 1, axis == 2, 0.4f);
            for (const RyVec3 &p : {RyVec3(), waist[i], waist[i], tip})
                put(p);
        }
        glEnd();
        glColor4f(bone.axes[0] == 0, bone.axes[0] == 1, bone.axes[0] == 2, 0.4f);
        drawRing(bone.axes[0], width);
    }

    static void drawRing(int axis, float radius)
    {
        glBegin(GL_LINE_LOOP);
        for (int i = 0; i < 30; ++i) {
            const double angle = 2.0 * RyFastMath::Pi * i / 30;
            RyVec3 p = RyVec3::axis(axis) * radius;
            p[(axis + 1) % 3] = float(double(radius) * std::cos(angle));
            p[(axis + 2) % 3] = float(double(radius) * std::sin(angle));
            put(p);
        }
        glEnd();
    }

    /// World length of so many pixels, asked of the context.
    static float pixelLength(float pixels, const RyVec3 &place)
    {
        float m[16], p[16];
        GLint viewport[4];
        glGetFloatv(GL_MODELVIEW_MATRIX, m);
        glGetFloatv(GL_PROJECTION_MATRIX, p);
        glGetIntegerv(GL_VIEWPORT, viewport);
        const float depth = -(place.x * m[2] + place.y * m[6] + place.z * m[10] + m[14]);
        return pixels * 2.0f * depth / (p[5] * float(viewport[3]));
    }

    void drawHandlesAt(const RyMatrix4 &toWorld, int firstArrow, int point) const
    {
        constexpr float length = 5.0f;
        const float ball = std::min(pixelLength(40, toWorld.translation()) / 12.0f, 1.5f);
        float cones[3];
        for (int axis = 0; axis < 3; ++axis)
            cones[axis] = std::min(pixelLength(50, toWorld.multVecMatrix(RyVec3::axis(axis) * length)), 6.0f);
        glPushMatrix();
        glMultMatrixf(toWorld.data());
        for (int axis = 0; axis < 3; ++axis) {
            setHandleColor(firstArrow + axis);
            glBegin(GL_LINES);
            put(RyVec3());
            put(RyVec3::axis(axis) * length);
            glEnd();
            drawCone(axis, length, cones[axis]);
        }
        setHandleColor(point);
        glBegin(GL_LINES);
        for (int axis = 0; axis < 3; ++axis) {
            put(RyVec3::axis(axis) * -length);
            put(RyVec3::axis(axis) * length);
        }
        glEnd();
        drawBall(ball);
        glPopMatrix();
    }

    void setHandleColor(int id) const
    {
        if (m_pass == Pass::Normal)
            glColor3ub(0, 255, 0);
        else
            setIdColor(id);
    }

    static void drawCone(int axis, float base, float size)
    {
        for (const GLenum mode : {GL_TRIANGLE_FAN, GL_POLYGON}) {
            glBegin(mode);
            if (mode == GL_TRIANGLE_FAN)
                put(RyVec3::axis(axis) * (base + size / 4.0f));
            for (int i = 0; i <= 10; ++i) {
                const float angle = float(i * 36.0 * RyFastMath::RadiansPerDegree);
                put(RyVec3::axis(axis) * base +
                    (RyVec3::axis((axis + 1) % 3) * std::cos(angle) + RyVec3::axis((axis + 2) % 3) * std::sin(angle)) *
                        (size / 10.0f));
            }
            glEnd();
        }
    }

    static void drawBall(float radius)
    {
        constexpr int slices = 60;
        constexpr int stacks = 30;
        const auto vertex = [radius](int stack, int slice) {
            const double polar = RyFastMath::Pi * stack / stacks;
            const double around = 2.0 * RyFastMath::Pi * slice / slices;
            const RyVec3 unit(float(std::sin(polar) * std::cos(around)), float(std::cos(polar)),
                              float(std::sin(polar) * std::sin(around)));
            glNormal3f(unit.x, unit.y, unit.z);
            put(unit * radius);
        };
        for (int stack = 0; stack < stacks; ++stack) {
            glBegin(GL_TRIANGLE_STRIP);
            for (int slice = 0; slice <= slices; ++slice) {
                vertex(stack, slice);
                vertex(stack + 1, slice);
            }
            glEnd();
        }
    }

    Pass m_pass;
    bool m_withLinks;
};
