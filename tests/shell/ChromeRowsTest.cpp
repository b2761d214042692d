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

// The toolbar is the field colour over a fixed bottom line, the title bar row the border colour; both follow
// the settings and draw under their children.
TEST_F(ChromeRowsTest, EachRowDrawsItsColourUnderItsChildren)
{
    struct Row {
        const char* field;
        const char* border;
        Color fieldColor;
        Color borderColor;
    };
    const Row rows[] = { { "charcoal", "gunmetal", Color::fromHex(0x404040), Color::fromHex(0x282828) },
        { "white", "blue", Color::fromHex(0xFFFFFF), Color::fromHex(0x5A9BEA) } };
    const Color red = Color::fromHex(0xFF0000);
    ToolbarRow toolbar;
    toolbar.append(redChild());
    host(toolbar.widget(), 300, ToolbarRow::height);
    TitlebarRow titlebar;
    titlebar.append(redChild());
    host(titlebar.widget(), 300, TitlebarRow::minimumHeight);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.field);
        setColors("cyan", "magenta", "grey", row.field, row.border);
        Rendering tools = render(toolbar.widget());
        EXPECT_TRUE(pixelIs(tools.at(150, 40), row.fieldColor));
        EXPECT_TRUE(pixelIs(tools.at(150, 41), Color::fromHex(0x4F4F4F))) << "the bottom line";
        EXPECT_TRUE(pixelIs(tools.at(10, 10), red)) << "the children over it";
        Rendering title = render(titlebar.widget());
        EXPECT_TRUE(pixelIs(title.at(150, 27), row.borderColor));
        EXPECT_TRUE(pixelIs(title.at(10, 10), red));
    }
}

} // namespace
} // namespace velder::test
