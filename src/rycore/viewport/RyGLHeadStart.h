#pragma once

/// Loads the driver of GL on a thread of its own while the thread of the window makes what needs no GL. A driver and
/// what it links take longer to load than most of a window takes to make. Nothing is kept but the loaded driver.
class RyGLHeadStart
{
public:
    /// Begins, once for the process; needs an application. Where the platform has no GL this does nothing.
    static void begin();
    /// Waits until the driver is loaded; returns at once where nothing began. Whoever makes a window of GL calls this
    /// first: the toolkit loads what it draws GL with at the first use, which two threads must not do at once.
    static void finish();
    /// From `begin` until `finish`.
    static bool isLoading();
};
