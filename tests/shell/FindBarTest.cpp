#include "WidgetTestSupport.h"

#include "shell/overlays/FindBar.h"

namespace velder::test {
namespace {

class FindBarTest : public WidgetTest {
protected:
    void SetUp() override
    {
        WidgetTest::SetUp();
        bar = std::make_unique<FindBar>();
        bar->onQueryChanged = [this](const std::string& text) { calls.push_back("query " + text); };
        bar->onNext = [this] { calls.push_back("next"); };
        bar->onPrev = [this] { calls.push_back("prev"); };
        bar->onClose = [this] { calls.push_back("close"); };
    }

    // The bar alone in a window, shown as open() shows it.
    void hostShown()
    {
        gtk_widget_set_visible(bar->widget(), TRUE);
        host(bar->widget(), FindBar::width, FindBar::height);
    }

    void setText(const std::string& text)
    {
        gtk_editable_set_text(GTK_EDITABLE(bar->field()), text.c_str());
        calls.clear();
    }

    // The bar in a window above a button that holds the focus until the bar takes it.
    void hostWithNeighbour()
    {
        bar->open();
        neighbour = hostAboveButton(bar->widget(), FindBar::width, 100);
        bar->hide();
        calls.clear();
    }

    std::vector<std::string> calls;
    std::unique_ptr<FindBar> bar; // after `calls`: it goes before what its callbacks write to
    GtkWidget* neighbour = nullptr;
};

TEST_F(FindBarTest, SetResultWritesTheCountAndEnablesTheButtons)
{
    struct Row {
        const char* text;
        int count, active;
        const char* label;
        bool enabled;
    };
    const Row rows[] = {
        { "", 0, 0, "", false }, // an empty search
        { "", 4, 1, "", true },
        { "needle", 0, 0, "0", false }, // no match
        { "needle", 12, 3, "3/12", true },
        { "needle", 1, 1, "1/1", true },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "'" << row.text << "', " << row.active << " of " << row.count);
        setText(row.text);
        bar->setResult(row.count, row.active);
        EXPECT_EQ(bar->countText(), row.label);
        EXPECT_EQ(bar->previousButton().isEnabledButton(), row.enabled);
        EXPECT_EQ(bar->nextButton().isEnabledButton(), row.enabled);
    }
    bar->nextButton().pointerEntered();
    ASSERT_TRUE(bar->nextButton().isHovered());
    bar->setResult(0, 0);
    EXPECT_FALSE(bar->nextButton().isHovered()) << "a disabled button loses its hover";
}

TEST_F(FindBarTest, KeysInTheField)
{
    struct Row {
        const char* name;
        guint keyval;
        GdkModifierType modifiers;
        bool consumed;
        std::vector<std::string> calls;
    };
    const Row rows[] = {
        { "Return", GDK_KEY_Return, GdkModifierType(0), true, { "next" } },
        { "keypad Enter", GDK_KEY_KP_Enter, GdkModifierType(0), true, { "next" } },
        { "Shift+Return", GDK_KEY_Return, GDK_SHIFT_MASK, true, { "prev" } },
        { "Escape", GDK_KEY_Escape, GdkModifierType(0), true, { "close" } },
        { "a letter", GDK_KEY_n, GdkModifierType(0), false, {} },
        { "Down", GDK_KEY_Down, GdkModifierType(0), false, {} },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        calls.clear();
        EXPECT_EQ(bar->handleKey(row.keyval, row.modifiers), row.consumed);
        EXPECT_EQ(calls, row.calls);
    }
    bar->onNext = nullptr;
    EXPECT_TRUE(bar->handleKey(GDK_KEY_Return, GdkModifierType(0))) << "Return is the bar's even unwired";
}

TEST_F(FindBarTest, EditsAndButtonsReport)
{
    GtkEditable* field = GTK_EDITABLE(bar->field());
    int position = 0;
    gtk_editable_insert_text(field, "ne", -1, &position);
    gtk_editable_insert_text(field, "e", -1, &position);
    EXPECT_EQ(calls, (std::vector<std::string> { "query ne", "query nee" }));

    calls.clear();
    hostShown();
    bar->setResult(2, 1);
    for (ChromeButton* button : { &bar->previousButton(), &bar->nextButton(), &bar->closeButton() }) {
        button->press();
        button->release(5, 5);
    }
    EXPECT_EQ(calls, (std::vector<std::string> { "prev", "next", "close" }));
}

TEST_F(FindBarTest, OpenFocusesTheFieldAndSearchesAgain)
{
    hostWithNeighbour();
    bar->open();
    EXPECT_TRUE(bar->isShowing());
    EXPECT_TRUE(runMainLoopUntil([&] { return gtk_widget_is_focus(bar->field()); }));
    EXPECT_TRUE(calls.empty()) << "an empty field searches nothing";

    setText("needle");
    bar->setResult(3, 1);
    bar->hide();
    EXPECT_FALSE(bar->isShowing());
    EXPECT_EQ(bar->countText(), "");
    EXPECT_EQ(bar->text(), "needle") << "the text stays";
    gtk_widget_grab_focus(neighbour);

    bar->open();
    EXPECT_EQ(calls, std::vector<std::string> { "query needle" });
    EXPECT_TRUE(runMainLoopUntil([&] { return gtk_widget_is_focus(bar->field()); }));
    int start = 0, end = 0;
    gtk_editable_get_selection_bounds(GTK_EDITABLE(bar->field()), &start, &end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, 6);
}

// The field fills the bar up to the count; the count and the three buttons follow it close together up to the
// right end, all centred in the bar's height.
TEST_F(FindBarTest, PartsSitInOneRowInTheirOrder)
{
    hostShown();
    double right = 0;
    for (GtkWidget* part : { bar->field(), bar->countLabel(), bar->previousButton().widget(),
             bar->nextButton().widget(), bar->closeButton().widget() }) {
        graphene_rect_t frame;
        ASSERT_TRUE(gtk_widget_compute_bounds(part, bar->widget(), &frame));
        EXPECT_GE(frame.origin.x, right + (part == bar->field() ? 8 : 2));
        EXPECT_LE(frame.origin.x, right + (part == bar->field() ? 12 : 4));
        EXPECT_NEAR(frame.origin.y + frame.size.height / 2, FindBar::height / 2.0, 1);
        right = frame.origin.x + frame.size.width;
    }
    EXPECT_NEAR(right, FindBar::width - 7, 1) << "the close button ends at the right";
}

TEST_F(FindBarTest, TheOutlineIsThePassiveColourMadeReadable)
{
    struct Row {
        const char* passive;
        const char* field;
        Color fieldColor;
        Color ink; // the passive colour after the contrast rule
        Color edge; // the ink at 0.45 over the field
    };
    const Row rows[] = {
        // Grey on charcoal is too faint and becomes white: 64 * 0.55 + 255 * 0.45 = 150.
        { "grey", "charcoal", Color::fromHex(0x404040), Color::fromHex(0xFFFFFF), rgb(150, 150, 150) },
        // Grey on white stays: 255 * 0.55 + 128 * 0.45 = 198.
        { "grey", "white", Color::fromHex(0xFFFFFF), Color::fromHex(0x808080), rgb(198, 198, 198) },
    };
    hostShown();
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.passive << " on " << row.field);
        setColors("cyan", "magenta", row.passive, row.field, "gunmetal");
        Rendering image = render(bar->widget(), row.fieldColor);
        EXPECT_TRUE(pixelIs(image.at(150, 0), row.edge)) << "the top edge";
        EXPECT_TRUE(pixelIs(image.at(0, 18), row.edge)) << "the left edge";
        EXPECT_TRUE(pixelIs(image.at(150, 4), row.fieldColor)) << "the inside";
        // The close button's symbol, 14 pixels square in the middle of its 22, scaled down from a 16-pixel bitmap.
        EXPECT_TRUE(pixelIs(image.farthestFrom(row.fieldColor, 305, 11, 14, 14), row.ink, 6));
    }
    Rendering corners = render(bar->widget(), Color::fromHex(0xFF00FF));
    EXPECT_TRUE(pixelIs(corners.at(0, 0), Color::fromHex(0xFF00FF))) << "the corners are round";
}

} // namespace
} // namespace velder::test
