#include "WidgetTestSupport.h"

#include "shell/chrome/AddressBar.h"

namespace velder::test {
namespace {

class AddressBarTest : public WidgetTest {
protected:
    void SetUp() override
    {
        WidgetTest::SetUp();
        bar = std::make_unique<AddressBar>();
    }

    // The bar in a window above a button that can take the focus away from it; the bar starts idle.
    void hostWithNeighbour()
    {
        gtk_widget_set_size_request(bar->widget(), 400, 28);
        neighbour = hostAboveButton(bar->widget(), 400, 100);
        ASSERT_TRUE(runMainLoopUntil([&] { return !bar->isEditing(); }));
    }

    std::pair<int, int> selection() const
    {
        int start = 0, end = 0;
        gtk_editable_get_selection_bounds(GTK_EDITABLE(bar->field()), &start, &end);
        return { start, end };
    }

    std::unique_ptr<AddressBar> bar;
    GtkWidget* neighbour = nullptr;
};

struct KeyCase {
    const char* name;
    guint keyval;
    GdkModifierType modifiers;
    std::optional<bool> moveAnswer; // none: no onMoveSelection
    std::optional<bool> cancelAnswer; // none: no onCancel
    bool withCommit;
    bool consumed;
    std::vector<std::string> calls;
};

TEST_F(AddressBarTest, KeysGoToTheirCallbacks)
{
    const auto none = GdkModifierType(0);
    const KeyCase cases[] = {
        { "Up, handled", GDK_KEY_Up, none, true, std::nullopt, true, true, { "move -1" } },
        { "Up, not handled", GDK_KEY_Up, none, false, std::nullopt, true, false, { "move -1" } },
        { "Down, handled", GDK_KEY_Down, none, true, std::nullopt, true, true, { "move 1" } },
        { "keypad Down", GDK_KEY_KP_Down, none, true, std::nullopt, true, true, { "move 1" } },
        { "Up without a callback", GDK_KEY_Up, none, std::nullopt, std::nullopt, true, false, {} },
        { "Shift+Up selects in the field", GDK_KEY_Up, GDK_SHIFT_MASK, true, std::nullopt, true, false, {} },
        { "Return", GDK_KEY_Return, none, true, true, true, true, { "commit example.org" } },
        { "keypad Enter", GDK_KEY_KP_Enter, none, true, true, true, true, { "commit example.org" } },
        { "Return without a callback", GDK_KEY_Return, none, true, true, false, true, {} },
        { "Escape, handled", GDK_KEY_Escape, none, true, true, true, true, { "cancel" } },
        { "Escape, not handled", GDK_KEY_Escape, none, true, false, true, false, { "cancel" } },
        { "Escape without a callback", GDK_KEY_Escape, none, true, std::nullopt, true, false, {} },
        { "a letter", GDK_KEY_a, none, true, true, true, false, {} },
        { "Tab", GDK_KEY_Tab, none, true, true, true, false, {} },
    };
    for (const KeyCase& row : cases) {
        SCOPED_TRACE(row.name);
        AddressBar subject;
        subject.setText("example.org");
        std::vector<std::string> calls;
        if (row.moveAnswer) {
            subject.onMoveSelection = [&, answer = *row.moveAnswer](int delta) {
                calls.push_back("move " + std::to_string(delta));
                return answer;
            };
        }
        if (row.cancelAnswer) {
            subject.onCancel = [&, answer = *row.cancelAnswer] {
                calls.push_back("cancel");
                return answer;
            };
        }
        if (row.withCommit) {
            subject.onCommit = [&](const std::string& text) { calls.push_back("commit " + text); };
        }
        EXPECT_EQ(subject.handleKey(row.keyval, row.modifiers), row.consumed);
        EXPECT_EQ(calls, row.calls);
    }
}

TEST_F(AddressBarTest, OnlyTheUsersChangesAreReported)
{
    std::vector<std::string> changes;
    bar->onTextChanged = [&](const std::string& text) { changes.push_back(text); };
    bar->setText("https://example.org/");
    EXPECT_TRUE(changes.empty());

    GtkEditable* field = GTK_EDITABLE(bar->field());
    gtk_editable_delete_text(field, 0, -1);
    int position = 0;
    gtk_editable_insert_text(field, "exa", -1, &position);
    EXPECT_EQ(changes, (std::vector<std::string> { "", "exa" }));
}

TEST_F(AddressBarTest, EditingBeginsWithAllSelectedAndEndsWithACancel)
{
    hostWithNeighbour();
    std::vector<std::string> calls;
    bar->onFocusChanged = [&](bool editing) { calls.push_back(editing ? "focus on" : "focus off"); };
    bar->onCancel = [&] {
        calls.push_back("cancel");
        return true;
    };
    bar->setText("https://example.org/");

    bar->focusAndSelectAll();
    EXPECT_TRUE(runMainLoopUntil([&] { return bar->isEditing(); }));
    EXPECT_EQ(selection(), (std::pair<int, int> { 0, 20 }));
    EXPECT_TRUE(gtk_widget_get_can_target(bar->field())) << "while editing, clicks place the caret";
    gtk_editable_set_position(GTK_EDITABLE(bar->field()), 4);
    bar->click(100, 14);
    EXPECT_EQ(selection(), (std::pair<int, int> { 4, 4 }));

    gtk_widget_grab_focus(neighbour);
    EXPECT_TRUE(runMainLoopUntil([&] { return !bar->isEditing(); }));
    EXPECT_EQ(calls, (std::vector<std::string> { "focus on", "cancel", "focus off" }));
    EXPECT_FALSE(gtk_widget_get_can_target(bar->field())) << "clicks go to the bar again";
}

TEST_F(AddressBarTest, LeavingTheWindowEndsEditingQuietly)
{
    hostWithNeighbour();
    bar->focusAndSelectAll();
    ASSERT_TRUE(runMainLoopUntil([&] { return bar->isEditing(); }));
    int reports = 0;
    bar->onFocusChanged = [&](bool) { ++reports; };
    bar->onCancel = [&] {
        ++reports;
        return true;
    };
    g_object_ref(bar->widget());
    gtk_box_remove(GTK_BOX(gtk_widget_get_parent(bar->widget())), bar->widget());
    EXPECT_FALSE(bar->isEditing());
    EXPECT_EQ(reports, 0) << "the window is the one going away: nothing to tell it";
    gtk_widget_grab_focus(neighbour);
    drain();
    EXPECT_EQ(reports, 0) << "a bar out of its window no longer follows the window's focus";
    g_object_unref(bar->widget());
}

TEST_F(AddressBarTest, AClickOutsideThePinStartsEditing)
{
    struct Row {
        const char* name;
        bool pinShown;
        double x;
        bool editing;
    };
    const Row rows[] = {
        { "on the text", false, 100, true },
        { "on the bar's left margin", false, 3, true },
        { "where the pin would be, hidden", false, 385, true },
        { "on the shown pin", true, 385, false },
        { "left of the shown pin", true, 360, true },
    };
    hostWithNeighbour();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        gtk_widget_grab_focus(neighbour);
        ASSERT_TRUE(runMainLoopUntil([&] { return !bar->isEditing(); }));
        gtk_widget_set_visible(bar->pin().widget(), row.pinShown);
        settle(bar->widget());
        bar->setText("example.org");
        bar->click(row.x, 14);
        runMainLoopUntil([&] { return bar->isEditing(); }, std::chrono::milliseconds(row.editing ? 2000 : 100));
        EXPECT_EQ(bar->isEditing(), row.editing);
        if (row.editing) {
            EXPECT_EQ(selection(), (std::pair<int, int> { 0, 11 }));
        }
    }
}

TEST_F(AddressBarTest, FieldAndPinLayout)
{
    EXPECT_EQ(AddressBar::fieldWidth(30, true), 0) << "never below 0";
    host(bar->widget(), 400, 28);
    graphene_rect_t field, pin;
    ASSERT_TRUE(gtk_widget_compute_bounds(bar->field(), bar->widget(), &field));
    EXPECT_EQ(field.origin.x, 10);
    EXPECT_EQ(field.size.width, 380);
    EXPECT_NEAR(field.origin.y + field.size.height / 2, 14, 1) << "centred vertically";

    gtk_widget_set_visible(bar->pin().widget(), true);
    settle(bar->widget());
    ASSERT_TRUE(gtk_widget_compute_bounds(bar->field(), bar->widget(), &field));
    ASSERT_TRUE(gtk_widget_compute_bounds(bar->pin().widget(), bar->widget(), &pin));
    EXPECT_EQ(field.size.width, 356) << "the field makes room for the pin at the right end";
    EXPECT_EQ(pin.origin.x, 372);
}

struct ColourCase {
    const char* text;
    const char* field;
    Color fieldColor;
    Color textColor; // as drawn
};

TEST_F(AddressBarTest, TextIsReadableOnTheField)
{
    const ColourCase cases[] = {
        { "cyan", "charcoal", Color::fromHex(0x404040), Color::fromHex(0xC0FFFF) },
        { "cyan", "white", Color::fromHex(0xFFFFFF), Color::fromHex(0x000000) },
    };
    host(bar->widget(), 400, 28);
    bar->setText("MMMMMMMM");
    for (const ColourCase& row : cases) {
        SCOPED_TRACE(testing::Message() << row.text << " on " << row.field);
        setColors(row.text, "magenta", "grey", row.field, "gunmetal");
        Rendering image = render(bar->widget());
        EXPECT_TRUE(pixelIs(image.at(3, 3), row.fieldColor)) << "the bar fills with the field colour";
        EXPECT_TRUE(pixelIs(image.farthestFrom(row.fieldColor, 10, 4, 120, 20), row.textColor, 40));
    }
}

TEST_F(AddressBarTest, SelectedTextIsBlackOrWhiteOnTheHighlight)
{
    struct Row {
        const char* highlight;
        Color background;
        Color text;
    };
    const Row rows[] = {
        { "magenta", Color::fromHex(0xC000C0), Color::fromHex(0xFFFFFF) },
        { "yellow", Color::fromHex(0xD8C840), Color::fromHex(0x000000) },
    };
    hostWithNeighbour();
    bar->setText("MMMMMMMM");
    bar->focusAndSelectAll();
    ASSERT_TRUE(runMainLoopUntil([&] { return bar->isEditing(); }));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.highlight);
        setColors("cyan", row.highlight, "grey", "charcoal", "gunmetal");
        Rendering image = render(bar->widget());
        EXPECT_GT(image.countNear(row.background, 2, 10, 0, 60, 28), 50) << "the selection's background";
        EXPECT_TRUE(pixelIs(image.farthestFrom(row.background, 10, 4, 60, 20), row.text, 40));
    }
}

} // namespace
} // namespace velder::test
