#pragma once

/// While one lives, changes pass the stack by: they are neither recorded nor taken for a difference from the saved
/// state. For what is no part of the document, such as the camera of a viewport. Counted.
class RyUndoStackSilence
{
public:
    RyUndoStackSilence() { ++s_depth; }
    ~RyUndoStackSilence() { --s_depth; }
    RyUndoStackSilence(const RyUndoStackSilence &) = delete;
    RyUndoStackSilence &operator=(const RyUndoStackSilence &) = delete;

    static bool isActive() { return s_depth > 0; }

private:
    static int s_depth;
};
