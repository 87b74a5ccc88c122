#pragma once

/// Stands around an action that runs, which may also wait for a dialog of its own.
class RyRunningAction
{
public:
    RyRunningAction() { ++s_count; }
    ~RyRunningAction() { --s_count; }
    RyRunningAction(const RyRunningAction &) = delete;
    RyRunningAction &operator=(const RyRunningAction &) = delete;

    static bool isAny() { return s_count > 0; }

private:
    static int s_count; // of all libraries together
};
