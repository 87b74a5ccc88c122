#include "RyPlainPass.h"

#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <cmath>

namespace {

constexpr float armLength = 5.0f;

void setNumber(int id)
{
    glColor3ub(GLubyte(id), GLubyte(id >> 8), GLubyte(id >> 16));
}

void put(const RyVec3 &p)
{
    glVertex3f(p.x, p.y, p.z);
}

void drawBody(const RyBone &bone)
{
    const RyVec3 way = bone.getEndPoint() - bone.getOrigin();
    const RyVec3 inBoneAxes = bone.getOrientation().inverse().multVec(way);
    const RyRotationOrder order = bone.getRotationOrder();
    const float length = inBoneAxes[order[0]] < 0.0f ? -way.length() : way.length();
    const RyVec3 tip = RyVec3::axis(order[0]) * length;
    const RyVec3 middle = tip * 0.1f;
    const RyVec3 q = RyVec3::axis(order[1]) * (length / 10);
    const RyVec3 r = RyVec3::axis(order[2]) * (length / 10);
    glPushMatrix();
    glMultMatrixf((RyMatrix4(bone.getOrientation()) * bone.getWSTransform()).data());
    for (const RyVec3 &apex : {RyVec3(), tip}) {
        glBegin(GL_TRIANGLE_FAN);
        for (const RyVec3 &p : {apex, middle + q, middle + r, middle - q, middle - r, middle + q})
            put(p);
        glEnd();
    }
    glPopMatrix();
}

/// Where handles stand: the place, the rotation of their axes, the scale of the node along its own axes.
struct Anchor
{
    RyVec3 place;
    RyQuat axes;
    RyVec3 scale;
};

void drawHandles(const Anchor &anchor, const RyViewMatrices &view, int firstArrow, int point, int density)
{
    glPushMatrix();
    glTranslatef(anchor.place.x, anchor.place.y, anchor.place.z);
    glMultMatrixf(RyMatrix4(anchor.axes).data());
    glScalef(anchor.scale.x, anchor.scale.y, anchor.scale.z);
    for (int axis = 0; axis < 3; ++axis) {
        setNumber(firstArrow + axis);
        const RyVec3 tip = RyVec3::axis(axis) * armLength;
        glBegin(GL_LINES);
        put(RyVec3());
        put(tip);
        glEnd();
        RyVec3 scaled = tip;
        for (int k = 0; k < 3; ++k)
            scaled[k] *= anchor.scale[k];
        const float size = std::min(50.0f * view.pixelSize(anchor.place + anchor.axes.multVec(scaled)), 6.0f);
        glBegin(GL_TRIANGLE_FAN);
        put(tip + RyVec3::axis(axis) * (size / 4));
        for (int i = 0; i <= 10; ++i) {
            const auto angle = float(i * M_PI / 5);
            put(tip +
                (RyVec3::axis((axis + 1) % 3) * std::cos(angle) + RyVec3::axis((axis + 2) % 3) * std::sin(angle)) *
                    (size / 10));
        }
        glEnd();
    }
    setNumber(point);
    glBegin(GL_LINES);
    for (int axis = 0; axis < 3; ++axis) {
        put(RyVec3::axis(axis) * -armLength);
        put(RyVec3::axis(axis) * armLength);
    }
    glEnd();
    GLUquadric *ball = gluNewQuadric();
    gluSphere(ball, double(std::min(40.0f * view.pixelSize(anchor.place) / 12, 1.5f)), density, density);
    gluDeleteQuadric(ball);
    glPopMatrix();
}

} // namespace

RyPlainPass::RyPlainPass(Ry3DViewport &viewport, const std::vector<RyBone *> &bones, const RyNode &current, int density)
    : m_width(viewport.width()), m_height(viewport.height())
{
    viewport.makeCurrent();
    const RyFramebuffer picture(m_width, m_height, 0);
    picture.bind();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, m_width, m_height);
    for (const GLenum capability : {GL_LIGHTING, GL_BLEND, GL_DITHER, GL_MULTISAMPLE, GL_DEPTH_TEST})
        glDisable(capability);
    glLineWidth(10.0f);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    const RyViewMatrices view = viewport.matrices();
    view.load();
    int id = 47;
    for (const RyBone *bone : bones) {
        setNumber(id++);
        drawBody(*bone);
    }
    const RyMatrix3 linear = current.getWSTransform().linear() * RyMatrix3(current.getWSRot().inverse());
    const RyVec3 scale(linear.row(0).length(), linear.row(1).length(), linear.row(2).length());
    const RyNode *parent = current.getNodeParent();
    drawHandles({current.getWSPos(), parent ? parent->getWSRot() : RyQuat(), scale}, view, 41, 1, density);
    drawHandles({current.getWSEndPoint(), current.getWSRot(), scale}, view, 44, 2, density);

    std::vector<unsigned char> pixels(size_t(4 * m_width * m_height));
    glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (int y = m_height - 1; y >= 0; --y) {
        for (int x = 0; x < m_width; ++x) {
            const unsigned char *pixel = &pixels[size_t(4 * (y * m_width + x))];
            m_ids.push_back(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
        }
    }
    glPopAttrib();
    viewport.makeCurrent();
}

int RyPlainPass::idAt(const QPoint &pixel) const
{
    return m_ids[size_t(pixel.y() * m_width + pixel.x())];
}

bool RyPlainPass::isNear(const QPoint &pixel, int id) const
{
    for (int y = std::max(pixel.y() - 1, 0); y <= std::min(pixel.y() + 1, m_height - 1); ++y) {
        for (int x = std::max(pixel.x() - 1, 0); x <= std::min(pixel.x() + 1, m_width - 1); ++x) {
            if (idAt({x, y}) == id)
                return true;
        }
    }
    return false;
}
