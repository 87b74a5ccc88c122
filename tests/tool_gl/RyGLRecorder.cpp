#include "rycore/viewport/RyGL.h"

#include "RyGLRecorder.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>

namespace {

RyGLRecorder *recorder = nullptr;
bool insideBegin = false;
RyGLRecorder::Color currentColor;

template<typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

template<typename... Values>
void note(const char *name, Values... values)
{
    if (recorder)
        recorder->calls.push_back({name, QVector<double>{double(values)...}});
}

void noteOther(const char *name)
{
    if (recorder)
        ++recorder->others[name];
}

/// What the recorder itself asks for is not counted.
class Unrecorded
{
public:
    Unrecorded() : m_recorder(recorder) { recorder = nullptr; }
    ~Unrecorded() { recorder = m_recorder; }

private:
    RyGLRecorder *m_recorder;
};

template<typename T>
std::vector<T> readBuffer(GLenum target, size_t offset, size_t count)
{
    std::vector<T> values(count);
    glGetBufferSubData(target, GLintptr(offset), GLsizeiptr(count * sizeof(T)), values.data());
    return values;
}

/// Values of an array that lies in a buffer without gaps, from its first one to the last that indices name.
template<typename T>
std::vector<T> readArray(GLenum buffer, GLenum pointer, const std::vector<GLuint> &indices)
{
    GLint name = 0;
    GLint bound = 0;
    void *offset = nullptr;
    glGetIntegerv(buffer, &name);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &bound);
    glGetPointerv(pointer, &offset);
    if (name == 0)
        return {};
    glBindBuffer(GL_ARRAY_BUFFER, GLuint(name));
    const std::vector<T> values = readBuffer<T>(GL_ARRAY_BUFFER, reinterpret_cast<size_t>(offset),
                                                size_t(*std::max_element(indices.begin(), indices.end())) + 1);
    glBindBuffer(GL_ARRAY_BUFFER, GLuint(bound));
    return values;
}

void readState(RyGLRecorder::Primitive &primitive)
{
    glGetFloatv(GL_MODELVIEW_MATRIX, primitive.modelview.data());
    primitive.lighting = glIsEnabled(GL_LIGHTING);
    primitive.depthTest = glIsEnabled(GL_DEPTH_TEST);
    primitive.stipple = glIsEnabled(GL_LINE_STIPPLE);
    GLint values[2] = {};
    glGetIntegerv(GL_DEPTH_WRITEMASK, values);
    primitive.depthWrites = values[0] != 0;
    glGetIntegerv(GL_DEPTH_FUNC, values);
    primitive.depthFunction = GLenum(values[0]);
    glGetIntegerv(GL_POLYGON_MODE, values);
    primitive.polygonMode = GLenum(values[0]);
    glGetFloatv(GL_LINE_WIDTH, &primitive.lineWidth);
    glGetFloatv(GL_POINT_SIZE, &primitive.pointSize);
}

/// Of arrays as the drawing of weights has them: floats, bytes, indices of 32 bits.
RyGLRecorder::Elements readElements(GLenum mode, GLsizei count, const GLvoid *offset)
{
    struct Bytes
    {
        GLubyte r, g, b, a;
    };
    RyGLRecorder::Elements elements;
    elements.primitive.mode = mode;
    readState(elements.primitive);
    glGetIntegerv(GL_POLYGON_MODE, elements.polygonMode);
    GLboolean mask[4] = {};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask);
    elements.writesColors = mask[0] && mask[1] && mask[2] && mask[3];
    GLint indexBuffer = 0;
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &indexBuffer);
    if (indexBuffer == 0 || count == 0)
        return elements;
    const auto indices = readBuffer<GLuint>(GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<size_t>(offset), size_t(count));
    const auto positions = readArray<RyVec3>(GL_VERTEX_ARRAY_BUFFER_BINDING, GL_VERTEX_ARRAY_POINTER, indices);
    const bool isColored = glIsEnabled(GL_COLOR_ARRAY);
    const auto colors = isColored ? readArray<Bytes>(GL_COLOR_ARRAY_BUFFER_BINDING, GL_COLOR_ARRAY_POINTER, indices)
                                  : std::vector<Bytes>();
    elements.hasBuffers = !positions.empty() && isColored == !colors.empty();
    for (const GLuint index : indices) {
        if (!positions.empty())
            elements.primitive.vertices.push_back(positions[index]);
        if (!colors.empty()) {
            const Bytes &c = colors[index];
            elements.primitive.colors.push_back({"4ub", double(c.r), double(c.g), double(c.b), double(c.a)});
        }
    }
    return elements;
}

} // namespace

bool RyGLRecorder::Color::isNear(const Color &o) const
{
    const auto near = [](double x, double y) { return std::abs(x - y) < 1e-6; };
    return near(r, o.r) && near(g, o.g) && near(b, o.b) && near(a, o.a);
}

RyGLRecorder::RyGLRecorder()
{
    recorder = this;
    insideBegin = false;
    currentColor = {};
}

RyGLRecorder::~RyGLRecorder()
{
    stop();
}

void RyGLRecorder::stop()
{
    if (recorder == this)
        recorder = nullptr;
}

std::vector<RyGLRecorder::Primitive> RyGLRecorder::ofMode(GLenum mode) const
{
    std::vector<Primitive> found;
    for (const Primitive &primitive : primitives) {
        if (primitive.mode == mode)
            found.push_back(primitive);
    }
    return found;
}

std::vector<RyGLRecorder::Primitive> RyGLRecorder::ofColor(const Color &color) const
{
    std::vector<Primitive> found;
    for (const Primitive &primitive : primitives) {
        if (primitive.color() == color)
            found.push_back(primitive);
    }
    return found;
}

std::vector<RyGLRecorder::Primitive> RyGLRecorder::ofId(int id) const
{
    return ofColor(rgbBytes(id, 0, 128));
}

int RyGLRecorder::count(const char *function) const
{
    int found = 0;
    for (const Call &call : calls)
        found += call.name == function;
    return found;
}

int RyGLRecorder::countOther() const
{
    int found = 0;
    for (const auto &[name, number] : others)
        found += number;
    return found;
}

bool RyGLRecorder::contains(const char *function, const QVector<double> &arguments) const
{
    for (const Call &call : calls) {
        if (call.is(function, arguments))
            return true;
    }
    return false;
}

extern "C" {

void glBegin(GLenum mode)
{
    note("glBegin", mode);
    if (recorder) {
        RyGLRecorder::Primitive primitive;
        primitive.mode = mode;
        primitive.firstCall = int(recorder->calls.size()) - 1;
        {
            const Unrecorded unrecorded;
            readState(primitive);
        }
        recorder->primitives.push_back(primitive);
        insideBegin = true;
    }
    static const auto forward = next<void(GLenum)>("glBegin");
    forward(mode);
}

void glEnd()
{
    note("glEnd");
    if (recorder && !recorder->primitives.empty() && recorder->primitives.back().vertices.empty())
        recorder->primitives.pop_back(); // nothing is drawn by it
    insideBegin = false;
    static const auto forward = next<void()>("glEnd");
    forward();
}

void glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    note("glVertex3f", x, y, z);
    if (recorder && insideBegin) {
        recorder->primitives.back().vertices.push_back({x, y, z});
        recorder->primitives.back().colors.push_back(currentColor);
    }
    static const auto forward = next<void(GLfloat, GLfloat, GLfloat)>("glVertex3f");
    forward(x, y, z);
}

void glColor3ub(GLubyte r, GLubyte g, GLubyte b)
{
    note("glColor3ub", r, g, b);
    currentColor = rgbBytes(r, g, b);
    static const auto forward = next<void(GLubyte, GLubyte, GLubyte)>("glColor3ub");
    forward(r, g, b);
}

void glColor3f(GLfloat r, GLfloat g, GLfloat b)
{
    note("glColor3f", r, g, b);
    currentColor = rgbFloats(double(r), double(g), double(b));
    static const auto forward = next<void(GLfloat, GLfloat, GLfloat)>("glColor3f");
    forward(r, g, b);
}

void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a)
{
    note("glColor4f", r, g, b, a);
    currentColor = rgbaFloats(double(r), double(g), double(b), double(a));
    static const auto forward = next<void(GLfloat, GLfloat, GLfloat, GLfloat)>("glColor4f");
    forward(r, g, b, a);
}

void glPushMatrix()
{
    note("glPushMatrix");
    static const auto forward = next<void()>("glPushMatrix");
    forward();
}

void glPopMatrix()
{
    note("glPopMatrix");
    static const auto forward = next<void()>("glPopMatrix");
    forward();
}

void glMultMatrixf(const GLfloat *matrix)
{
    note("glMultMatrixf");
    static const auto forward = next<void(const GLfloat *)>("glMultMatrixf");
    forward(matrix);
}

void glPushAttrib(GLbitfield mask)
{
    note("glPushAttrib", mask);
    static const auto forward = next<void(GLbitfield)>("glPushAttrib");
    forward(mask);
}

void glPopAttrib()
{
    note("glPopAttrib");
    static const auto forward = next<void()>("glPopAttrib");
    forward();
}

void glLineStipple(GLint factor, GLushort pattern)
{
    note("glLineStipple", factor, pattern);
    static const auto forward = next<void(GLint, GLushort)>("glLineStipple");
    forward(factor, pattern);
}

void glLineWidth(GLfloat width)
{
    note("glLineWidth", width);
    static const auto forward = next<void(GLfloat)>("glLineWidth");
    forward(width);
}

void glPointSize(GLfloat size)
{
    note("glPointSize", size);
    static const auto forward = next<void(GLfloat)>("glPointSize");
    forward(size);
}

void glEnable(GLenum capability)
{
    noteOther("glEnable");
    static const auto forward = next<void(GLenum)>("glEnable");
    forward(capability);
}

void glDisable(GLenum capability)
{
    noteOther("glDisable");
    static const auto forward = next<void(GLenum)>("glDisable");
    forward(capability);
}

GLboolean glIsEnabled(GLenum capability)
{
    noteOther("glIsEnabled");
    static const auto forward = next<GLboolean(GLenum)>("glIsEnabled");
    return forward(capability);
}

void glShadeModel(GLenum mode)
{
    noteOther("glShadeModel");
    static const auto forward = next<void(GLenum)>("glShadeModel");
    forward(mode);
}

void glGetFloatv(GLenum name, GLfloat *values)
{
    noteOther("glGetFloatv");
    static const auto forward = next<void(GLenum, GLfloat *)>("glGetFloatv");
    forward(name, values);
}

void glGetIntegerv(GLenum name, GLint *values)
{
    noteOther("glGetIntegerv");
    static const auto forward = next<void(GLenum, GLint *)>("glGetIntegerv");
    forward(name, values);
}

void glMatrixMode(GLenum mode)
{
    noteOther("glMatrixMode");
    static const auto forward = next<void(GLenum)>("glMatrixMode");
    forward(mode);
}

void glLoadMatrixf(const GLfloat *matrix)
{
    noteOther("glLoadMatrixf");
    static const auto forward = next<void(const GLfloat *)>("glLoadMatrixf");
    forward(matrix);
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    noteOther("glViewport");
    static const auto forward = next<void(GLint, GLint, GLsizei, GLsizei)>("glViewport");
    forward(x, y, width, height);
}

void glScissor(GLint x, GLint y, GLsizei width, GLsizei height)
{
    noteOther("glScissor");
    static const auto forward = next<void(GLint, GLint, GLsizei, GLsizei)>("glScissor");
    forward(x, y, width, height);
}

void glClear(GLbitfield mask)
{
    noteOther("glClear");
    static const auto forward = next<void(GLbitfield)>("glClear");
    forward(mask);
}

void glDrawArrays(GLenum mode, GLint first, GLsizei count)
{
    noteOther("glDrawArrays");
    static const auto forward = next<void(GLenum, GLint, GLsizei)>("glDrawArrays");
    forward(mode, first, count);
}

void glRectf(GLfloat x1, GLfloat y1, GLfloat x2, GLfloat y2)
{
    note("glRectf", x1, y1, x2, y2);
    static const auto forward = next<void(GLfloat, GLfloat, GLfloat, GLfloat)>("glRectf");
    forward(x1, y1, x2, y2);
}

void glDeleteTextures(GLsizei count, const GLuint *names)
{
    noteOther("glDeleteTextures");
    static const auto forward = next<void(GLsizei, const GLuint *)>("glDeleteTextures");
    forward(count, names);
}

void glDrawElements(GLenum mode, GLsizei count, GLenum type, const GLvoid *indices)
{
    noteOther("glDrawElements");
    if (RyGLRecorder *const recording = recorder) {
        const Unrecorded unrecorded;
        recording->elements.push_back(readElements(mode, count, indices));
        recording->elements.back().firstCall = int(recording->calls.size());
    }
    static const auto forward = next<void(GLenum, GLsizei, GLenum, const GLvoid *)>("glDrawElements");
    forward(mode, count, type, indices);
}

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, GLvoid *pixels)
{
    noteOther("glReadPixels");
    static const auto forward = next<void(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, GLvoid *)>("glReadPixels");
    forward(x, y, width, height, format, type, pixels);
}

void glBindFramebuffer(GLenum target, GLuint framebuffer)
{
    noteOther("glBindFramebuffer");
    static const auto forward = next<void(GLenum, GLuint)>("glBindFramebuffer");
    forward(target, framebuffer);
}

void glBufferData(GLenum target, GLsizeiptr size, const void *data, GLenum usage)
{
    noteOther("glBufferData");
    static const auto forward = next<void(GLenum, GLsizeiptr, const void *, GLenum)>("glBufferData");
    forward(target, size, data, usage);
}

} // extern "C"
