#include "core/LaunchRequest.h"

#include "core/UrlHelper.h"

namespace velder {

LaunchRequest LaunchRequest::parse(const std::vector<std::string>& arguments)
{
    LaunchRequest request;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--new-window") {
            request.newWindow = true;
        } else if (argument == "--private-window") {
            request.privateWindow = true;
        } else if (!argument.starts_with("-")) {
            if (auto url = UrlHelper::startupTarget(argument)) {
                request.urls.push_back(*url);
            }
        }
    }
    return request;
}

LaunchRequest LaunchRequest::handedOver(const std::vector<std::string>& urls, bool newWindow, bool privateWindow)
{
    LaunchRequest request;
    for (const auto& text : urls) {
        if (auto url = UrlHelper::startupTarget(text)) {
            request.urls.push_back(*url);
        }
    }
    request.newWindow = newWindow;
    request.privateWindow = privateWindow;
    return request;
}

} // namespace velder
