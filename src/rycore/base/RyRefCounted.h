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
            delete this;
    }
    int refCount() const { return m_refs; }

protected:
    RyRefCountedItem() = default;
    RyRefCountedItem(const RyRefCountedItem &) {}
    RyRefCountedItem &operator=(const RyRefCountedItem &) { return *this; }
    virtual ~RyRefCountedItem() = default;

private:
    int m_refs = 0;
};

/// Holds a counted object (a mesh, a removed node). When the object is a QObject that somebody deleted in spite of the
/// count, the holder reads null and does not touch it.
template<typename T>
class RyRef
{
public:
    RyRef() = default;
    RyRef(T *item) : m_item(item)
    {
        if (item)
            item->ref();
    }
    RyRef(const RyRef &o) : RyRef(o.get()) {}
    RyRef(RyRef &&o) noexcept : m_item(std::exchange(o.m_item, Pointer())) {}
    RyRef &operator=(RyRef o)
    {
        std::swap(m_item, o.m_item);
        return *this;
    }
    ~RyRef()
    {
        if (T *item = get())
            item->unref();
    }
    T *get() const { return m_item; }
    T *operator->() const { return get(); }
    T &operator*() const { return *get(); }
    explicit operator bool() const { return get() != nullptr; }
    operator T *() const { return get(); }

private:
    using Pointer = std::conditional_t<std::is_base_of_v<QObject, T>, QPointer<T>, T *>;
    Pointer m_item{};
};
