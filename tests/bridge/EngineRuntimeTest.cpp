#include "BridgeTest.h"

#include "bridge/VLDEngineRuntime.h"
#include "bridge/VLDMainThread.h"
#include "core/AppInfo.h"
#include "core/Log.h"

#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace velder::test {

TEST(EngineRuntimeTest, RemoteDebuggingPortFromTheArguments)
{
    struct Row {
        const char* name;
        std::vector<std::string> arguments;
        std::optional<int> port;
    };
    const Row rows[] = {
        { "none", { "velder" }, std::nullopt },
        { "one", { "velder", "--remote-debugging-port=9222" }, 9222 },
        { "an invalid one after a valid one", { "--remote-debugging-port=9222", "--remote-debugging-port=0" }, 9222 },
        { "the last valid wins", { "--remote-debugging-port=9222", "--remote-debugging-port=9333" }, 9333 },
        { "the highest", { "--remote-debugging-port=65535" }, 65535 },
        { "the lowest", { "--remote-debugging-port=1" }, 1 },
        { "above the limit", { "--remote-debugging-port=65536" }, std::nullopt },
        { "not a number, though it starts as one", { "--remote-debugging-port=92x" }, std::nullopt },
        { "empty", { "--remote-debugging-port=" }, std::nullopt },
        { "far too long", { "--remote-debugging-port=000000009222" }, std::nullopt },
        { "another switch", { "--remote-debugging-portal=9222", "http://127.0.0.1/" }, std::nullopt },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDEngineRuntime::remoteDebuggingPort(row.arguments), row.port);
    }
}

// Run forms run in place on the main thread; Post forms always queue; from another thread both queue onto
// the main loop.
TEST(EngineRuntimeTest, MainThreadHops)
{
    EXPECT_TRUE(VLDIsMainThread());
    bool ran = false;
    VLDRunOnMainThread([&] { ran = true; });
    EXPECT_TRUE(ran);

    bool posted = false;
    VLDPostToMainThread([&] { posted = true; });
    EXPECT_FALSE(posted);
    EXPECT_TRUE(runMainLoopUntil([&] { return posted; }, 5s));

    std::atomic<int> onMain { 0 };
    std::atomic<int> offMain { 0 };
    bool workerIsMain = true;
    std::thread worker([&] {
        workerIsMain = VLDIsMainThread();
        auto check = [&] { (VLDIsMainThread() ? onMain : offMain)++; };
        VLDRunOnMainThread(check);
        VLDPostToMainThread(check);
    });
    worker.join();
    EXPECT_FALSE(workerIsMain);
    EXPECT_EQ(onMain + offMain, 0) << "nothing ran inside the worker's call";
    EXPECT_TRUE(runMainLoopUntil([&] { return onMain == 2; }, 5s));
    EXPECT_EQ(offMain, 0);
}

// The engine's messages go to the engine log, warnings and worse only; Velder's own lines still go to the
// standard error the program started with. Starting twice and stopping twice are harmless.
TEST(EngineRuntimeTest, EngineLogAndVelderLinesGoTheirOwnWays)
{
    TestProfile profile;
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    fcntl(pipeEnds[0], F_SETFL, O_NONBLOCK);
    int realStandardError = dup(STDERR_FILENO);
    dup2(pipeEnds[1], STDERR_FILENO);

    std::string error;
    BridgeTest::engineStarted = true;
    bool started = VLDEngineRuntime::start({ "velder" }, &error);
    bool startedAgain = VLDEngineRuntime::start({ "velder" }, &error);
    g_log("EngineTest", G_LOG_LEVEL_WARNING, "a warning of the engine");
    g_log("EngineTest", G_LOG_LEVEL_MESSAGE, "chatter of the engine");
    log("Velder: a line of Velder's own");
    VLDEngineRuntime::shutdown();
    VLDEngineRuntime::shutdown();
    log("Velder: a line after the engine stopped");

    dup2(realStandardError, STDERR_FILENO);
    close(realStandardError);
    close(pipeEnds[1]);
    std::string standardError;
    char buffer[4096];
    ssize_t n;
    while ((n = read(pipeEnds[0], buffer, sizeof buffer)) > 0) {
        standardError.append(buffer, static_cast<size_t>(n));
    }
    close(pipeEnds[0]);

    ASSERT_TRUE(started) << error;
    EXPECT_TRUE(startedAgain);
    EXPECT_FALSE(VLDEngineRuntime::isStarted());
    auto engineLogBytes = readBytes(AppInfo::engineLogFile());
    std::string engineLog(engineLogBytes.begin(), engineLogBytes.end());
    EXPECT_NE(engineLog.find("a warning of the engine"), std::string::npos);
    EXPECT_EQ(engineLog.find("chatter of the engine"), std::string::npos);
    EXPECT_EQ(engineLog.find("Velder: "), std::string::npos);
    EXPECT_NE(standardError.find("Velder: a line of Velder's own\n"), std::string::npos);
    EXPECT_NE(standardError.find("Velder: a line after the engine stopped\n"), std::string::npos);
    EXPECT_EQ(standardError.find("a warning of the engine"), std::string::npos);
}

// With --remote-debugging-port=N the engine's inspector answers on 127.0.0.1:N and lists the page.
TEST(EngineRuntimeTest, RemoteInspectorListensOnLoopback)
{
    if (BridgeTest::engineStarted) {
        GTEST_SKIP() << "the engine reads the inspector's address once per process; run this test on its own";
    }
    TestProfile profile;
    TestServer server;
    server.route("/inspected", TestResponse::html("<title>Inspected page</title>"));
    int port = BridgeTest::freeLoopbackPort();
    BridgeTest::engineStarted = true;
    std::string error;
    ASSERT_TRUE(VLDEngineRuntime::start({ "velder", "--remote-debugging-port=" + std::to_string(port) }, &error));
    auto view = VLDBrowserView::create(server.url("/inspected"));
    GtkWidget* window = gtk_window_new();
    gtk_window_set_child(GTK_WINDOW(window), view->widget());
    gtk_window_present(GTK_WINDOW(window));
    ASSERT_TRUE(runMainLoopUntil([&] { return view->pageTitle() == "Inspected page"; }, 10s));

    // The listing is served on this main loop: fetch it from a thread of its own while the loop runs.
    std::string listing;
    auto fetch = [&] {
        std::atomic<bool> done = false;
        std::thread worker([&] {
            SoupSession* session = soup_session_new_with_options("timeout", 5, nullptr);
            SoupMessage* message = soup_message_new("GET", ("http://127.0.0.1:" + std::to_string(port) + "/").c_str());
            if (GBytes* bytes = soup_session_send_and_read(session, message, nullptr, nullptr)) {
                listing.assign(static_cast<const char*>(g_bytes_get_data(bytes, nullptr)), g_bytes_get_size(bytes));
                g_bytes_unref(bytes);
            }
            g_object_unref(message);
            g_object_unref(session);
            done = true;
        });
        runMainLoopUntil([&] { return done.load(); }, 10s);
        worker.join();
    };
    EXPECT_TRUE(runMainLoopUntil(
        [&] {
            fetch();
            return listing.find("Inspectable targets") != std::string::npos
                && listing.find(server.url("/inspected")) != std::string::npos;
        },
        10s))
        << listing;
    gtk_window_destroy(GTK_WINDOW(window));
    view.reset();
    VLDEngineRuntime::shutdown();
}

} // namespace velder::test

// Without a GPU, GL means Mesa's software rasterizer, slower and heavier than drawing on the CPU; a renderer
// named in GSK_RENDERER is the user's choice either way.
TEST(EngineRuntimeRendering, SoftwareWithoutARenderNodeUnlessTheUserChose)
{
    struct Row {
        bool hasRenderNode;
        const char* gskRenderer;
        bool software;
    };
    std::vector<Row> rows = {
        { false, nullptr, true },
        { true, nullptr, false },
        { false, "", true },
        { false, "ngl", false },
        { true, "cairo", true },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.hasRenderNode ? "render node, " : "no render node, ")
            + (row.gskRenderer ? row.gskRenderer : "(unset)"));
        EXPECT_EQ(velder::VLDEngineRuntime::chooseSoftwareRendering(row.hasRenderNode, row.gskRenderer), row.software);
    }
}
