#pragma once

#include <string>

namespace velder {

// What was under the pointer when the page's menu was asked for.
struct VLDContextMenuInfo {
    std::string linkURL;
    std::string sourceURL; // an image's or a medium's address
    std::string pageURL;
    std::string selectionText;
    bool isEditable = false;
};

} // namespace velder
