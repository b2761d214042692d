#pragma once

#include <glib.h>
#include <memory>
#include <string>

namespace velder {

struct GFreeDeleter {
    void operator()(void* pointer) const { g_free(pointer); }
};

// A string allocated by GLib, freed with g_free.
using GCharPtr = std::unique_ptr<char, GFreeDeleter>;

inline std::string toString(const GCharPtr& text)
{
    return text ? std::string(text.get()) : std::string();
}

// A GError owned until it goes out of scope.
struct GErrorDeleter {
    void operator()(GError* error) const { g_error_free(error); }
};
using GErrorPtr = std::unique_ptr<GError, GErrorDeleter>;

} // namespace velder
