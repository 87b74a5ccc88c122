#pragma once

/// A GL context without a window and without a display server, shared by everything that draws into frame buffer
/// objects where the platform offers no windows that GL can draw to. Made at first use.
class RyOffscreenContext
{
public:
    /// The process' context; check `isValid`.
    static RyOffscreenContext &instance();

    bool isValid() const { return m_context != nullptr; }
    /// False when there is none.
    bool makeCurrent();
    void doneCurrent();
    bool isCurrent() const;

    RyOffscreenContext(const RyOffscreenContext &) = delete;
    RyOffscreenContext &operator=(const RyOffscreenContext &) = delete;

private:
    RyOffscreenContext();
    ~RyOffscreenContext();

    void *m_display = nullptr;
    void *m_context = nullptr;
};
