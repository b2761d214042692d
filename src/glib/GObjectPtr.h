#pragma once

#include <glib-object.h>
#include <utility>

namespace velder {

// Owns one reference to a GObject. adopt() takes over a reference the caller already has (sinking a
// floating one); retain() adds a reference of its own. Move-only, so ownership is always visible.
template<class T> class GObjectPtr {
public:
    GObjectPtr() = default;
    GObjectPtr(std::nullptr_t) { }
    ~GObjectPtr() { reset(); }

    static GObjectPtr adopt(T* object)
    {
        GObjectPtr ptr;
        if (object && g_object_is_floating(object)) {
            g_object_ref_sink(object);
        }
        ptr.m_object = object;
        return ptr;
    }

    static GObjectPtr retain(T* object)
    {
        GObjectPtr ptr;
        ptr.m_object = object ? static_cast<T*>(g_object_ref(object)) : nullptr;
        return ptr;
    }

    GObjectPtr(GObjectPtr&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {
    }

    GObjectPtr& operator=(GObjectPtr&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_object = std::exchange(other.m_object, nullptr);
        }
        return *this;
    }

    GObjectPtr(const GObjectPtr&) = delete;
    GObjectPtr& operator=(const GObjectPtr&) = delete;

    void reset()
    {
        if (m_object) {
            g_object_unref(std::exchange(m_object, nullptr));
        }
    }

    // Gives up ownership of the reference without dropping it.
    T* release() { return std::exchange(m_object, nullptr); }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    T* m_object = nullptr;
};

} // namespace velder
