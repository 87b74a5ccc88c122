#pragma once

#include <QPointer>

#include <utility>

/// Counts who holds an object. Made with count 0; deleted when `unref` brings the count back to 0.
class RyRefCountedItem
{
public:
    void ref() { ++m_refs; }
    void unref()
    {
        if (--m_refs == 0)
            destroy();
    }
    int refCount() const { return m_refs; }

protected:
    RyRefCountedItem() = default;
    RyRefCountedItem(const RyRefCountedItem &) {}
    RyRefCountedItem &operator=(const RyRefCountedItem &) { return *this; }
    virtual ~RyRefCountedItem() = default;

private:
    void destroy(); // out of line: the object's last act

    int m_refs = 0;
};

/// Holds a counted QObject (a mesh, a removed node). When somebody deleted the object in spite of the count, the holder
/// reads null and does not touch it. `T` may be incomplete where a holder is only declared.
template<typename T>
class RyRef
{
public:
    RyRef() = default;
    RyRef(T *item) : m_item(item), m_guard(item)
    {
        if (item)
            item->ref();
    }
    RyRef(const RyRef &o) : RyRef(o.get()) {}
    RyRef(RyRef &&o) noexcept : m_item(std::exchange(o.m_item, nullptr)), m_guard(std::exchange(o.m_guard, nullptr)) {}
    RyRef &operator=(RyRef o)
    {
        std::swap(m_item, o.m_item);
        std::swap(m_guard, o.m_guard);
        return *this;
    }
    ~RyRef()
    {
        if (T *item = get())
            item->unref();
    }
    T *get() const { return m_guard ? m_item : nullptr; }
    T *operator->() const { return get(); }
    T &operator*() const { return *get(); }
    explicit operator bool() const { return get() != nullptr; }
    operator T *() const { return get(); }

private:
    T *m_item = nullptr;
    QPointer<QObject> m_guard;
};
