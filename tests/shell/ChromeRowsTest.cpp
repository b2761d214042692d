#include "WidgetTestSupport.h"

#include "shell/chrome/TitlebarRow.h"
#include "shell/chrome/ToolbarRow.h"

namespace velder::test {
namespace {

using ChromeRowsTest = WidgetTest;

// A child that paints itself red, to see that the rows draw their background under their children.
GtkWidget* redChild()
{
    GtkWidget* area = gtk_drawing_area_new();
    gtk_widget_set_size_request(area, 20, 20);
    gtk_widget_set_valign(area, GTK_ALIGN_START);
    gtk_drawing_area_set_draw_func(
        GTK_DRAWING_AREA(area),
        [](GtkDrawingArea*, cairo_t* cairo, int, int, gpointer) {
            cairo_set_source_rgb(cairo, 1, 0, 0);
            cairo_paint(cairo);
        },
        nullptr, nullptr);
    return area;
}

TEST_F(ChromeRowsTest, TheToolbarIsTheFieldColourOverAFixedLine)
{
    struct Row {
        const char* field;
        Color fieldColor;
    };
    const Row rows[] = { { "charcoal", Color::fromHex(0x404040) }, { "white", Color::fromHex(0xFFFFFF) } };
    ToolbarRow toolbar;
    toolbar.append(redChild());
    host(toolbar.widget(), 300, ToolbarRow::height);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.field);
        setColors("cyan", "magenta", "grey", row.field, "gunmetal");
        Rendering image = render(toolbar.widget());
        EXPECT_TRUE(pixelIs(image.at(150, 20), row.fieldColor));
        EXPECT_TRUE(pixelIs(image.at(150, 40), row.fieldColor));
        EXPECT_TRUE(pixelIs(image.at(150, 41), Color::fromHex(0x4F4F4F))) << "the bottom line";
        EXPECT_TRUE(pixelIs(image.at(10, 10), Color::fromHex(0xFF0000))) << "the children over it";
    }
}

TEST_F(ChromeRowsTest, TheTitlebarRowIsTheBorderColour)
{
    struct Row {
        const char* border;
        Color borderColor;
    };
    const Row rows[] = { { "gunmetal", Color::fromHex(0x282828) }, { "blue", Color::fromHex(0x5A9BEA) } };
    TitlebarRow titlebar;
    titlebar.append(redChild());
    host(titlebar.widget(), 300, TitlebarRow::minimumHeight);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.border);
        setColors("cyan", "magenta", "grey", "charcoal", row.border);
        Rendering image = render(titlebar.widget());
        EXPECT_TRUE(pixelIs(image.at(150, 14), row.borderColor));
        EXPECT_TRUE(pixelIs(image.at(150, 27), row.borderColor));
        EXPECT_TRUE(pixelIs(image.at(10, 10), Color::fromHex(0xFF0000)));
    }
}

} // namespace
} // namespace velder::test
