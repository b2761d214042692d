#include "BridgeTest.h"

#include "bridge/VLDPermissionBridge.h"
#include "bridge/VLDRequestContext.h"
#include "core/Log.h"

namespace velder::test {

namespace {

// A page that asks for the position when told to, and keeps what it got.
const char* geolocationPage = R"(<!doctype html><title>Where</title><script>
window.result = 'none';
function ask() {
    result = 'pending';
    navigator.geolocation.getCurrentPosition(() => { result = 'position'; }, e => { result = 'error ' + e.code; });
    return 1;
}
</script>)";

} // namespace

class PermissionTest : public BridgeTest {
protected:
    std::shared_ptr<VLDBrowserView> openGeolocationPage(
        const std::shared_ptr<RecordingDelegate>& delegate, std::shared_ptr<VLDRequestContext> context = nullptr)
    {
        m_server->route("/where", TestResponse::html(geolocationPage));
        return openLoaded(m_server->url("/where"), delegate, std::move(context));
    }

    std::string origin() const { return "http://127.0.0.1:" + std::to_string(m_server->port()); }
};

// A location request reaches the owner, parked, with its kind and origin; its answer reaches the page once,
// and the prompt then ends for the owner as the engine would end it.
TEST_F(PermissionTest, GeolocationRequestsReachTheOwner)
{
    auto view = openGeolocationPage(delegate);

    evaluate(*view, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->permissionRequests.size() == 1; }));
    auto request = delegate->permissionRequests[0];
    EXPECT_EQ(request->kind(), VLDPermissionRequest::Kind::geolocation);
    EXPECT_EQ(request->origin(), origin());
    EXPECT_FALSE(request->isAnswered());
    EXPECT_EQ(VLDPermissionBridge::parkedCountForTesting(view->identifier()), 1u);

    request->deny();
    request->allow();
    ASSERT_TRUE(waitForScriptValue(*view, "result", "error 1"));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->withdrawnRequests.size() == 1; }));
    EXPECT_EQ(delegate->withdrawnRequests[0], request);
    EXPECT_EQ(VLDPermissionBridge::parkedCountForTesting(view->identifier()), 0u);
}

// Closing the view denies what it still asked, before the owner hears the browser's last word.
TEST_F(PermissionTest, AClosedViewDeniesItsRequests)
{
    auto view = openGeolocationPage(delegate);
    evaluate(*view, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->permissionRequests.size() == 1; }));
    auto request = delegate->permissionRequests[0];
    bool answeredBeforeLastWord = false;
    delegate->onWillDestroy = [&](VLDBrowserView&) { answeredBeforeLastWord = request->isAnswered(); };

    view->requestClose();
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->hasEvent("destroy"); }));
    EXPECT_TRUE(answeredBeforeLastWord);
    EXPECT_EQ(VLDPermissionBridge::parkedCountForTesting(view->identifier()), 0u);
}

// The session's stored answer decides before the owner is asked; an owner that declines, or a page that
// goes, ends the request without an answer from the owner.
TEST_F(PermissionTest, StoredAnswersRefusalsAndWithdrawal)
{
    auto context = VLDRequestContext::inMemoryContext();
    auto view = openGeolocationPage(delegate, context);

    struct Row {
        const char* name;
        int setting;
        bool ownerTakes;
        bool ownerAsked;
        const char* result; // what the page gets; without a location service an allowed request fails with 2
    };
    const Row rows[] = {
        { "blocked", VLDRequestContext::settingBlock, true, false, "error 1" },
        { "allowed", VLDRequestContext::settingAllow, true, false, "error 2" },
        { "ask, owner declines", VLDRequestContext::settingAsk, false, true, "error 1" },
        { "default, owner declines", VLDRequestContext::settingDefault, false, true, "error 1" },
    };
    // The engine remembers an answer for the document: each request comes from a fresh one.
    auto freshDocument = [&] {
        evaluate(*view, "result = 'old document'");
        view->reload();
        return waitForScriptValue(*view, "result", "none");
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        context->setGeolocationSetting(row.setting, origin() + "/anything");
        delegate->takesPermissionRequests = row.ownerTakes;
        delegate->permissionRequests.clear();
        ASSERT_TRUE(freshDocument());
        evaluate(*view, "ask()");
        ASSERT_TRUE(waitForScriptValue(*view, "result", row.result)) << evaluate(*view, "result");
        EXPECT_EQ(delegate->permissionRequests.size(), row.ownerAsked ? 1u : 0u);
        EXPECT_EQ(VLDPermissionBridge::parkedCountForTesting(view->identifier()), 0u);
    }

    // A parked request is withdrawn when the page goes.
    delegate->takesPermissionRequests = true;
    delegate->permissionRequests.clear();
    ASSERT_TRUE(freshDocument());
    evaluate(*view, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->permissionRequests.size() == 1; }));
    view->reload();
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->withdrawnRequests.size() == 1; }));
    EXPECT_EQ(delegate->withdrawnRequests[0], delegate->permissionRequests[0]);
    EXPECT_TRUE(delegate->permissionRequests[0]->isAnswered());
}

TEST_F(PermissionTest, ARequestDroppedUnansweredIsDeniedAndLogged)
{
    LogCapture log;
    auto answered = VLDPermissionBridge::requestForTesting(VLDPermissionRequest::Kind::geolocation, "http://a.example");
    answered->allow();
    answered.reset();
    EXPECT_TRUE(log.lines().empty());

    auto dropped = VLDPermissionBridge::requestForTesting(VLDPermissionRequest::Kind::geolocation, "http://b.example");
    std::uint64_t promptId = dropped->promptId();
    dropped.reset();
    EXPECT_EQ(log.lines(),
        std::vector<std::string> { "Velder: DROPPED PERMISSION REQUEST for http://b.example (kind 1, prompt "
            + std::to_string(promptId)
            + "). Denying from dealloc. A code path failed to answer it -- see VLDPermissionRequest." });
}

} // namespace velder::test
