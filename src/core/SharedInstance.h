#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace velder {

// The process-wide instance of a store: made on first use from the file `path()` names, replaceable by
// tests. Callers get a reference; a replaced instance lives on while the test that replaced it holds it.
template<typename T, auto path> class SharedInstance {
public:
    static T& get()
    {
        std::lock_guard lock(s_mutex);
        if (!s_instance) {
            s_instance = std::make_shared<T>(path());
        }
        return *s_instance;
    }

    static void set(std::shared_ptr<T> instance)
    {
        std::lock_guard lock(s_mutex);
        s_instance = std::move(instance);
    }

private:
    static inline std::mutex s_mutex;
    static inline std::shared_ptr<T> s_instance; // guarded by s_mutex
};

} // namespace velder
