#pragma once

/// While a lock lives nothing is recorded. Counted; `unlock` may be called any number of times.
class RyUndoStackLock
{
public:
    RyUndoStackLock();
    ~RyUndoStackLock();
    RyUndoStackLock(const RyUndoStackLock &) = delete;
    RyUndoStackLock &operator=(const RyUndoStackLock &) = delete;
    void unlock();

private:
    bool m_locked;
};
