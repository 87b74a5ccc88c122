#pragma once

#include "rycore/math/RyMatrix4.h"

#include <QByteArray>
#include <QVector>

#include <GL/gl.h>

#include <map>
#include <vector>

/// Keeps the GL calls that are made while it lives, and passes them on. The program defines the GL functions itself, so
/// the calls of all its libraries come by here.
class RyGLRecorder
{
public:
    struct Call
    {
        QByteArray name;
        QVector<double> arguments;
        bool is(const char *function, const QVector<double> &values) const
        {
            return name == function && arguments == values;
        }
    };
    /// A colour as it was given: kind is "3ub", "3f" or "4f", of arrays "4ub".
    struct Color
    {
        QByteArray kind;
        double r = 1, g = 1, b = 1, a = 1;
        bool operator==(const Color &o) const { return kind == o.kind && isNear(o); }
        bool isNear(const Color &o) const;
    };
    /// What stood between glBegin and glEnd.
    struct Primitive
    {
        GLenum mode = 0;
        std::vector<RyVec3> vertices;
        std::vector<Color> colors; // one per vertex
        RyMatrix4 modelview;
        bool lighting = false;
        bool depthTest = false;
        bool stipple = false;
        bool depthWrites = false;
        GLenum depthFunction = 0;
        GLenum polygonMode = 0; // of front faces
        float lineWidth = 1;
        float pointSize = 1;
        int firstCall = 0; // place of its glBegin among the calls
        Color color() const { return colors.empty() ? Color() : colors.front(); }
    };

    /// What a call of glDrawElements drew: vertices in the order of the indices, colours only where there is an array
    /// of them.
    struct Elements
    {
        Primitive primitive;
        GLint polygonMode[2] = {};
        bool writesColors = true;
        int firstCall = 0;       // how many calls came before
        bool hasBuffers = false; // positions, colours and indices come from the graphics memory
    };

    RyGLRecorder();
    ~RyGLRecorder();
    void stop();

    std::vector<Primitive> ofMode(GLenum mode) const;
    std::vector<Primitive> ofColor(const Color &color) const;
    /// In the colour that is an id in the pick pass.
    std::vector<Primitive> ofId(int id) const;
    int count(const char *function) const;
    bool contains(const char *function, const QVector<double> &arguments) const;

    /// Calls of what sets and asks for state, of what draws arrays, clears and reads; they are counted only.
    int countOther() const;

    std::vector<Call> calls;
    std::vector<Primitive> primitives;
    std::vector<Elements> elements;
    std::map<QByteArray, int> others;
};

inline RyGLRecorder::Color rgbBytes(int r, int g, int b)
{
    return {"3ub", double(r), double(g), double(b), 1.0};
}

inline RyGLRecorder::Color rgbFloats(double r, double g, double b)
{
    return {"3f", r, g, b, 1.0};
}

inline RyGLRecorder::Color rgbaFloats(double r, double g, double b, double a)
{
    return {"4f", r, g, b, a};
}
