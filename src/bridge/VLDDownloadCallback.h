#pragma once

#include <memory>
#include <optional>
#include <string>

namespace velder {

// The engine's question "where does this download go?", answered exactly once: by continueWithPath or
// cancel, from any thread. One dropped unanswered continues to the default path and logs that it was.
class VLDDownloadCallback {
public:
    virtual ~VLDDownloadCallback() = default;
    // Nothing or an empty path: the default path in the Downloads folder, made unique.
    virtual void continueWithPath(const std::optional<std::string>& path) = 0;
    virtual void cancel() = 0;
    virtual bool wasCancelled() const = 0;
    virtual bool isAnswered() const = 0;
};

} // namespace velder
