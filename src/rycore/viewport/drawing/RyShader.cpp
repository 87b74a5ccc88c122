#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyShader.h"

#include "rycore/base/RyMessageLog.h"

namespace {

GLuint compile(GLenum kind, const char *source)
{
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

} // namespace

RyShader::RyShader(const char *vertexSource, const char *fragmentSource)
{
    const GLuint vertex = compile(GL_VERTEX_SHADER, vertexSource);
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, fragmentSource);
    m_program = glCreateProgram();
    glAttachShader(m_program, vertex);
    glAttachShader(m_program, fragment);
    glLinkProgram(m_program);
    GLint linked = 0;
    glGetProgramiv(m_program, GL_LINK_STATUS, &linked);
    if (!linked) {
        char text[1024] = "";
        glGetShaderInfoLog(vertex, sizeof text, nullptr, text);
        QString message = QString::fromLocal8Bit(text);
        glGetShaderInfoLog(fragment, sizeof text, nullptr, text);
        message += QString::fromLocal8Bit(text);
        glGetProgramInfoLog(m_program, sizeof text, nullptr, text);
        message += QString::fromLocal8Bit(text);
        RyMessageLog::global().warning(QStringLiteral("A shader was refused by the graphics driver: %1").arg(message));
        glDeleteProgram(m_program);
        m_program = 0;
    }
    glDeleteShader(vertex);
    glDeleteShader(fragment);
}

RyShader::~RyShader()
{
    if (m_program)
        glDeleteProgram(m_program);
}

int RyShader::location(const char *name) const
{
    return glGetUniformLocation(m_program, name);
}

void RyShader::use() const
{
    glUseProgram(m_program);
}

void RyShader::useNone()
{
    glUseProgram(0);
}

void RyShader::set(const char *name, int value) const
{
    glUniform1i(location(name), value);
}

void RyShader::set(const char *name, float value) const
{
    glUniform1f(location(name), value);
}

void RyShader::set(const char *name, float x, float y) const
{
    glUniform2f(location(name), x, y);
}

void RyShader::set(const char *name, float x, float y, float z) const
{
    glUniform3f(location(name), x, y, z);
}

void RyShader::set(const char *name, float x, float y, float z, float w) const
{
    glUniform4f(location(name), x, y, z, w);
}

void RyShader::set(const char *name, const QColor &color) const
{
    set(name, float(color.redF()), float(color.greenF()), float(color.blueF()));
}
