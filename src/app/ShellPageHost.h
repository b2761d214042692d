#pragma once

#include "core/InternalPageHost.h"

namespace velder {

// What the velder:// pages ask of the windows and the engine, answered from the open windows.
class ShellPageHost : public InternalPageHost {
public:
    void refreshInternalPages(std::optional<std::uint64_t> requestingView) override;
    void clearCookiesAndCache(std::uint64_t requestingView) override;
    void forgetLocationAnswers() override;
    std::string engineVersion() const override;
    std::string toolkitVersion() const override;
};

} // namespace velder
