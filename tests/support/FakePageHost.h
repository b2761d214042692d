#pragma once

#include "core/InternalPageHost.h"
#include "core/InternalPages.h"

#include <memory>
#include <string>
#include <vector>

namespace velder::test {

// Stands in for the window layer behind the internal pages: records what it was asked to do.
class FakePageHost : public InternalPageHost {
public:
    void refreshInternalPages(std::optional<std::uint64_t> requestingView) override
    {
        calls.push_back("refresh " + (requestingView ? std::to_string(*requestingView) : std::string("-")));
    }
    void clearCookiesAndCache(std::uint64_t requestingView) override
    {
        calls.push_back("clearCookiesAndCache " + std::to_string(requestingView));
    }
    void forgetLocationAnswers() override { calls.push_back("forgetLocationAnswers"); }
    std::string engineVersion() const override { return "2.50.6"; }
    std::string toolkitVersion() const override { return "4.8.3"; }

    std::vector<std::string> calls;
};

// Installs a fake host for the life of the object.
class ScopedPageHost {
public:
    ScopedPageHost() { InternalPages::shared().setHost(host); }
    ~ScopedPageHost() { InternalPages::shared().setHost({}); }

    std::shared_ptr<FakePageHost> host = std::make_shared<FakePageHost>();
};

} // namespace velder::test
