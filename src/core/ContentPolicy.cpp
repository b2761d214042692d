#include "core/ContentPolicy.h"

namespace velder::ContentPolicy {

// Stand-in until the pages' own policy lands: the strictest one, so nothing loads by mistake meanwhile.
std::string internalPages()
{
    return "default-src 'none'";
}

} // namespace velder::ContentPolicy
