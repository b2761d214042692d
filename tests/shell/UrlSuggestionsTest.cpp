#include "WidgetTestSupport.h"

#include "core/Date.h"
#include "core/HistoryStore.h"
#include "shell/overlays/UrlSuggestions.h"

namespace velder::test {
namespace {

class UrlSuggestionsTest : public WidgetTest {
protected:
    void SetUp() override
    {
        WidgetTest::SetUp();
        store = std::make_shared<HistoryStore>(m_profile->root().file("history.bin"), testDataKey());
        HistoryStore::setShared(store);
        list = std::make_unique<UrlSuggestions>();
    }

    void TearDown() override
    {
        WidgetTest::TearDown();
        list.reset();
        HistoryStore::setShared(nullptr);
    }

    // Visits spread over the last minutes, the first one the newest.
    void visit(const std::vector<std::pair<std::string, std::string>>& pages)
    {
        Date at = now();
        for (const auto& [url, title] : pages) {
            store->record(url, title, at);
            at -= std::chrono::minutes(1);
        }
    }

    std::shared_ptr<HistoryStore> store;
    std::unique_ptr<UrlSuggestions> list;
};

TEST_F(UrlSuggestionsTest, UpdateFillsFromTheHistoryOrClears)
{
    visit({ { "https://example.org/a", "Example A" }, { "https://example.org/b", "Example B" },
        { "https://other.net/", "Other" } });
    list->update("  example.org\n");
    ASSERT_TRUE(list->isShowing());
    EXPECT_EQ(list->entries(), store->suggestions("example.org", 8)) << "the query is trimmed";
    EXPECT_EQ(list->entries().size(), 2u);

    list->moveSelection(1);
    list->pointerMoved(10, 10);
    list->update("example");
    EXPECT_EQ(list->selectedIndex(), std::nullopt) << "an update starts the selection over";
    EXPECT_EQ(list->hoverIndex(), std::nullopt);

    for (const char* query : { "", "   ", "nothing-like-it" }) {
        SCOPED_TRACE(testing::Message() << "'" << query << "'");
        list->update("example");
        ASSERT_TRUE(list->isShowing());
        list->moveSelection(1);
        list->update(query);
        EXPECT_FALSE(list->isShowing());
        EXPECT_TRUE(list->entries().empty());
        EXPECT_EQ(list->selectedIndex(), std::nullopt);
    }
}

TEST_F(UrlSuggestionsTest, AtMostEightRowsIn280Pixels)
{
    std::vector<std::pair<std::string, std::string>> pages;
    for (int i = 0; i < 12; ++i) {
        pages.emplace_back("https://site" + std::to_string(i) + ".example/", "Page " + std::to_string(i));
    }
    visit(pages);
    list->update("example");
    EXPECT_EQ(list->entries().size(), 8u);
    int minimum = 0, natural = 0;
    gtk_widget_measure(list->widget(), GTK_ORIENTATION_VERTICAL, -1, &minimum, &natural, nullptr, nullptr);
    EXPECT_EQ(natural, 280);
}

TEST_F(UrlSuggestionsTest, MoveSelection)
{
    struct Row {
        const char* name;
        std::vector<int> moves;
        std::optional<int> selected;
    };
    const Row rows[] = {
        { "down from none picks the first", { 1 }, 0 },
        { "up from none picks the last", { -1 }, 2 },
        { "down to the last", { 1, 1, 1 }, 2 },
        { "down past the last leaves none", { 1, 1, 1, 1 }, std::nullopt },
        { "up past the first leaves none", { 1, -1 }, std::nullopt },
        { "up from the last", { -1, -1 }, 1 },
        { "down from the last, then down again", { -1, 1, 1 }, 0 },
        { "a jump past the end", { 1, 5 }, std::nullopt },
    };
    visit({ { "https://a.example/", "A" }, { "https://b.example/", "B" }, { "https://c.example/", "C" } });
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        list->update("example");
        ASSERT_EQ(list->entries().size(), 3u);
        for (int delta : row.moves) {
            list->moveSelection(delta);
        }
        EXPECT_EQ(list->selectedIndex(), row.selected);
    }

    list->clear();
    list->moveSelection(1);
    EXPECT_EQ(list->selectedIndex(), std::nullopt) << "a hidden list ignores the keys";
    EXPECT_FALSE(list->isShowing());
}

TEST_F(UrlSuggestionsTest, ThePointerHoversAndAcceptsRows)
{
    visit({ { "https://a.example/", "A" }, { "https://b.example/", "B" }, { "https://c.example/", "C" } });
    list->update("example");
    std::vector<std::string> accepted;
    list->onAccept = [&](const HistoryEntry& entry) { accepted.push_back(entry.url); };
    host(list->widget(), 400, 110);

    struct Row {
        double y;
        std::optional<int> hover;
    };
    // Rows of 34 from 4 down; the top inset joins the first row, the bottom one is no row's.
    const Row rows[] = { { 0, 0 }, { 37.9, 0 }, { 38, 1 }, { 105, 2 }, { 107, std::nullopt }, { -0.5, std::nullopt } };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "y " << row.y);
        list->pointerMoved(50, row.y);
        EXPECT_EQ(list->hoverIndex(), row.hover);
    }
    list->pointerLeft();
    EXPECT_EQ(list->hoverIndex(), std::nullopt);

    list->release(50, 45);
    list->release(50, 108);
    list->release(450, 45);
    EXPECT_EQ(accepted, std::vector<std::string> { list->entries()[1].url });
    EXPECT_FALSE(gtk_widget_get_focusable(list->widget())) << "the bar keeps the keyboard";
    EXPECT_EQ(gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(list->widget())), GTK_ACCESSIBLE_ROLE_LIST);
}

TEST_F(UrlSuggestionsTest, DrawsSelectedHoveredAndPlainRows)
{
    setColors("cyan", "magenta", "silver", "charcoal", "gunmetal");
    const Color charcoal = Color::fromHex(0x404040);
    const Color magenta = Color::fromHex(0xC000C0);
    const Color cyan = Color::fromHex(0xC0FFFF);
    const Color silver = Color::fromHex(0xC0C0C0);
    const Color white = Color::fromHex(0xFFFFFF);
    visit({ { "https://a.example/", "MMMMMMMM" }, { "https://b.example/", "MMMMMMMM" },
        { "https://c.example/", "MMMMMMMM" } });
    list->update("example");
    host(list->widget(), 400, 110);
    list->moveSelection(1);
    list->moveSelection(1);
    list->pointerMoved(300, 80);
    ASSERT_EQ(list->selectedIndex(), 1);
    ASSERT_EQ(list->hoverIndex(), 2);
    Rendering image = render(list->widget());

    // Rows start at 4, 38 and 72; the titles from 3 below a row's top, the addresses from 18.
    EXPECT_TRUE(pixelIs(image.at(390, 6), charcoal)) << "a plain row shows the field colour";
    EXPECT_TRUE(pixelIs(image.at(390, 40), magenta)) << "the selected row is the highlight colour";
    // Charcoal (64) lifted by 0.12: 64 + 191 * 0.12 = 87.
    EXPECT_TRUE(pixelIs(image.at(390, 74), rgb(87, 87, 87))) << "the hovered row is shaded";

    EXPECT_TRUE(pixelIs(image.farthestFrom(charcoal, 10, 7, 200, 15), cyan, 40)) << "a plain title";
    EXPECT_TRUE(pixelIs(image.farthestFrom(charcoal, 10, 22, 200, 13), silver, 40)) << "a plain address";
    EXPECT_TRUE(pixelIs(image.farthestFrom(magenta, 10, 41, 200, 15), white, 40)) << "the selected title";
}

TEST_F(UrlSuggestionsTest, AnUntitledEntryShowsItsHost)
{
    auto firstLine = [&] {
        list->update("example");
        if (m_windows.empty()) {
            host(list->widget(), 400, 42);
        }
        Rendering image = render(list->widget());
        std::vector<int> pixels;
        for (int y = 7; y < 22; ++y) {
            for (int x = 10; x < 390; ++x) {
                pixels.push_back(image.at(x, y).red);
            }
        }
        return pixels;
    };
    visit({ { "https://www.example.org/page", "" } });
    std::vector<int> untitled = firstLine();
    visit({ { "https://www.example.org/page", "example.org" } });
    std::vector<int> titled = firstLine();
    visit({ { "https://www.example.org/page", "www.example.org" } });
    std::vector<int> withWww = firstLine();
    EXPECT_EQ(untitled, titled) << "the host, without its www.";
    EXPECT_NE(untitled, withWww);
}

} // namespace
} // namespace velder::test
