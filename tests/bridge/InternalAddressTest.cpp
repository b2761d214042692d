#include "bridge/VLDInternalAddress.h"

#include <gtest/gtest.h>

namespace velder::test {

TEST(InternalAddressTest, OnlyVelderPagesLeadToVelderPages)
{
    struct Row {
        const char* name;
        std::string current;
        std::string target;
        bool isRedirect;
        bool allowed;
    };
    const Row rows[] = {
        { "web to web", "http://127.0.0.1/a", "http://127.0.0.1/b", false, true },
        { "velder to web", "velder://dashboard/", "http://127.0.0.1/", false, true },
        { "web to velder", "http://127.0.0.1/a", "velder://history/?clear=1", false, false },
        { "any case of the scheme", "http://127.0.0.1/a", "VELDER://history/", false, false },
        { "blank to velder", "", "velder://settings/", false, false },
        { "velder to velder", "velder://history/", "velder://history/?clear=1", false, true },
        { "a redirect to velder, even from velder", "velder://history/", "velder://settings/", true, false },
        { "a redirect to the web", "http://127.0.0.1/a", "http://127.0.0.1/b", true, true },
        { "a scheme that only begins like it", "http://127.0.0.1/", "velderx://a/", false, true },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDInternalAddress::mayNavigate(row.current, row.target, row.isRedirect), row.allowed);
    }
}

} // namespace velder::test
