#pragma once

#include "core/InternalPageHost.h"
#include "core/InternalPageResponse.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace velder {

// The router of the velder:// scheme: parses the address, runs the action of a form (and answers with a
// redirect, so that a reload never repeats it) or renders the page. Nothing for an address that isn't a
// route. Runs on the main thread.
class InternalPages {
public:
    static InternalPages& shared();

    // The host is held weakly; without one, actions that need it do nothing.
    void setHost(std::weak_ptr<InternalPageHost> host);
    std::shared_ptr<InternalPageHost> host() const;

    std::optional<InternalPageResponse> response(std::string_view url, std::optional<std::uint64_t> requestingView);

private:
    std::weak_ptr<InternalPageHost> m_host;
};

} // namespace velder
