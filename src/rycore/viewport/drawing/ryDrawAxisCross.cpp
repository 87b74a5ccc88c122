#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/ryDrawAxisCross.h"

#include "rycore/viewport/RyViewMatrices.h"

#include <algorithm>
#include <array>
#include <vector>

void ryDrawAxisCross(const RyViewMatrices &matrices, float pixelRatio)
{
    // In pixels from the upper right corner; the letters are strokes in a box of 1 by 1.
    static const std::array<std::vector<float>, 3> Letters = {
        {{0, 0, 1, 1, 0, 1, 1, 0},
         {0, 1, 0.5f, 0.5f, 1, 1, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0},
         {0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0}}};
    static const float Colors[3][3] = {{0.86f, 0.33f, 0.31f}, {0.45f, 0.72f, 0.33f}, {0.36f, 0.55f, 0.90f}};
    const float unit = pixelRatio;
    const auto width = float(matrices.width());
    const auto height = float(matrices.height());
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(1.8f * unit);
    glShadeModel(GL_FLAT);
    const float cx = width - 44 * unit;
    const float cy = height - 44 * unit;
    std::array<int, 3> order{0, 1, 2};
    std::array<RyVec3, 3> directions;
    for (int axis = 0; axis < 3; ++axis)
        directions[size_t(axis)] = matrices.view().multDirMatrix(RyVec3::axis(axis));
    std::sort(order.begin(), order.end(),
              [&](int a, int b) { return directions[size_t(a)].z < directions[size_t(b)].z; });
    // Each vertex has its colour, as with what tools draw: the driver needs one program less.
    glBegin(GL_LINES);
    for (int axis : order) {
        const RyVec3 &d = directions[size_t(axis)];
        glColor4f(Colors[axis][0], Colors[axis][1], Colors[axis][2], d.z < -0.2f ? 0.55f : 1.0f);
        glVertex2f(cx, cy);
        glVertex2f(cx + d.x * 24 * unit, cy + d.y * 24 * unit);
        const std::vector<float> &letter = Letters[size_t(axis)];
        for (size_t i = 0; i < letter.size(); i += 2) {
            glVertex2f(cx + d.x * 34 * unit + (letter[i] - 0.5f) * 7 * unit,
                       cy + d.y * 34 * unit + (letter[i + 1] - 0.5f) * 8 * unit);
        }
    }
    glEnd();
    matrices.load();
}
