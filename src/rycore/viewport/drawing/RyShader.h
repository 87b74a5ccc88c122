#pragma once

#include <QColor>

/// A linked pair of vertex and fragment shader of the current context (GLSL 1.20, fixed-function names).
class RyShader
{
public:
    RyShader(const char *vertexSource, const char *fragmentSource);
    ~RyShader();
    RyShader(const RyShader &) = delete;
    RyShader &operator=(const RyShader &) = delete;

    bool isValid() const { return m_program != 0; }
    void use() const;
    static void useNone();
    void set(const char *name, int value) const;
    void set(const char *name, float value) const;
    void set(const char *name, float x, float y) const;
    void set(const char *name, float x, float y, float z) const;
    void set(const char *name, float x, float y, float z, float w) const;
    void set(const char *name, const QColor &color) const;
    void abandon() { m_program = 0; }

private:
    int location(const char *name) const;
    unsigned m_program = 0;
};
