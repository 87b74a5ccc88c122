#pragma once

#include <QImage>

#include <memory>

/// An RGBA8 picture, mostly with depth, that the current GL context can draw into: a texture, or with samples a
/// multisampled buffer to be resolved into one. Lives and dies with the context that was current when it was made.
class RyFramebuffer
{
public:
    enum Depth {
        WithDepth,
        ColorsOnly,
    };
    /// `samples` 0 or 1: not multisampled. The size is in device pixels.
    RyFramebuffer(int width, int height, int samples, Depth depth = WithDepth);
    ~RyFramebuffer();
    /// With as many samples as the context offers, at most `samples`; with none where it does not keep its word.
    static std::unique_ptr<RyFramebuffer> withSamples(int width, int height, int samples);
    RyFramebuffer(const RyFramebuffer &) = delete;
    RyFramebuffer &operator=(const RyFramebuffer &) = delete;

    bool isComplete() const { return m_complete; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    int samples() const { return m_samples; }
    unsigned id() const { return m_id; }
    /// Texture with the picture; 0 for a multisampled one.
    unsigned texture() const { return m_texture; }

    void bind() const;
    /// Copies (and resolves) the colours into another one of the same size; that one is bound afterwards.
    void resolveInto(const RyFramebuffer &target) const;
    /// The same into one known by its GL name, 0 for the window's own.
    void resolveInto(unsigned target) const;
    /// Forgets the GL names without deleting them: their context is gone.
    void abandon();
    /// Rows from the top. Not for a multisampled one.
    QImage toImage() const;

    /// The most samples the context offers, at most `wanted`.
    static int supportedSamples(int wanted);

private:
    void addDepth();

    int m_width;
    int m_height;
    int m_samples;
    bool m_complete = false;
    unsigned m_id = 0;
    unsigned m_texture = 0;
    unsigned m_colorBuffer = 0;
    unsigned m_depthBuffer = 0;
};
