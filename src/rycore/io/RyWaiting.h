#pragma once

#include <functional>

/// Lets somebody go on waiting while a file becomes a scene: long work that touches no node is done on another thread,
/// and the one who waits is told meanwhile on his own.
class RyWaiting
{
public:
    /// Told what is done, from 0 to 1; false: nobody wants it any more.
    using Progress = std::function<bool(double done)>;

    /// `from`: what is done already. Without a progress all work is done where it stands.
    RyWaiting(const Progress &progress, double from) : m_progress(progress), m_done(from) {}

    /// Does it to its end, and passes on what it throws.
    void run(const std::function<void()> &work);
    /// What stands between one work and the next.
    void tell();
    bool isWanted() const { return m_isWanted; }

private:
    const Progress &m_progress;
    double m_done;
    bool m_isWanted = true;
};
