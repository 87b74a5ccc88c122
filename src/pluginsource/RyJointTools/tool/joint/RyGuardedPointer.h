#pragma once

#include <QPointer>

/// A pointer that reads null when its object is gone, as QPointer does, but for a class that is only declared here:
/// QPointer's own reading needs the whole class. Whoever sets it knows the class and gives the object as well.
template<typename T>
class RyGuardedPointer
{
public:
    RyGuardedPointer() = default;
    RyGuardedPointer(T *item, QObject *object) : m_item(item), m_object(object) {}

    T *get() const { return m_object ? m_item : nullptr; }

private:
    T *m_item = nullptr;
    QPointer<QObject> m_object; // the same one
};
