#pragma once

#include <glib-object.h>
#include <utility>

namespace velder {

// A signal handler that is disconnected when this object goes, so that no C++ object is called after
// it died. The instance is watched weakly: if it goes first, nothing is left to disconnect.
class SignalConnection {
public:
    SignalConnection() = default;
    SignalConnection(gpointer instance, const char* signal, GCallback callback, gpointer data)
        : m_instance(instance)
    {
        m_id = g_signal_connect(instance, signal, callback, data);
        g_object_add_weak_pointer(G_OBJECT(m_instance), &m_instance);
    }
    ~SignalConnection() { disconnect(); }

    SignalConnection(SignalConnection&& other) noexcept { *this = std::move(other); }
    SignalConnection& operator=(SignalConnection&& other) noexcept
    {
        if (this != &other) {
            disconnect();
            if (other.m_instance) {
                g_object_remove_weak_pointer(G_OBJECT(other.m_instance), &other.m_instance);
                m_instance = std::exchange(other.m_instance, nullptr);
                g_object_add_weak_pointer(G_OBJECT(m_instance), &m_instance);
            }
            m_id = std::exchange(other.m_id, 0);
        }
        return *this;
    }
    SignalConnection(const SignalConnection&) = delete;
    SignalConnection& operator=(const SignalConnection&) = delete;

    void disconnect()
    {
        if (m_instance) {
            g_object_remove_weak_pointer(G_OBJECT(m_instance), &m_instance);
            if (m_id) {
                g_signal_handler_disconnect(m_instance, m_id);
            }
            m_instance = nullptr;
        }
        m_id = 0;
    }

private:
    gpointer m_instance = nullptr;
    gulong m_id = 0;
};

} // namespace velder
