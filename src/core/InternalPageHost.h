#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velder {

// What the internal pages need from the rest of the program, which the application fills in when it
// starts. Requests name the browser view that made them by its identifier, if there was one.
//
// Called on the main thread.
class InternalPageHost {
public:
    virtual ~InternalPageHost() = default;

    // Reloads every tab that shows an internal page, except the one of the requesting view. Does nothing
    // once the application is shutting down.
    virtual void refreshInternalPages(std::optional<std::uint64_t> requestingView) = 0;
    // Clears cookies and cache in the requesting view's network session.
    virtual void clearCookiesAndCache(std::uint64_t requestingView) = 0;
    // Forgets every location answer (the vault's, and the engine's mirror of them).
    virtual void forgetLocationAnswers() = 0;
    // For the about page.
    virtual std::string engineVersion() const = 0;
    virtual std::string toolkitVersion() const = 0;
};

} // namespace velder
