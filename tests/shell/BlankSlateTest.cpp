#include "WidgetTestSupport.h"

#include "shell/overlays/BlankSlate.h"

namespace velder::test {
namespace {

using BlankSlateTest = WidgetTest;

TEST_F(BlankSlateTest, DrawsAFaintMarkOnItsDarkField)
{
    const Color dark = Color::fromHex(0x141414);
    BlankSlate slate;
    host(slate.widget(), 400, 300);
    Rendering image = render(slate.widget());
    // The mark is 292 square from (54, 4), its 256-unit drawing scaled by 1.140625.
    EXPECT_TRUE(pixelIs(image.at(30, 150), dark)) << "left of the mark";
    EXPECT_TRUE(pixelIs(image.at(370, 150), dark)) << "right of the mark";
    // Near the valley's bottom, the pale stroke (244, 247, 255) at 0.15 over the field: (54, 54, 55).
    EXPECT_TRUE(pixelIs(image.at(200, 215), rgb(54, 54, 55), 3));
    // Between the valley's sides: the blue tile, faintly.
    Pixel tile = image.at(200, 160);
    EXPECT_GT(tile.blue, tile.red + 4);
    EXPECT_TRUE(near(tile, dark, 40)) << tile;
    // The compiled-in icon, decoded once.
    GdkTexture* mark = BlankSlate::mark();
    ASSERT_NE(mark, nullptr);
    EXPECT_EQ(BlankSlate::mark(), mark);
}

TEST_F(BlankSlateTest, ClicksPassThroughToThePage)
{
    BlankSlate slate;
    GtkWidget* overlay = gtk_overlay_new();
    GtkWidget* page = gtk_drawing_area_new();
    gtk_overlay_set_child(GTK_OVERLAY(overlay), page);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), slate.widget());
    hostIn(overlay, slate.widget(), 300, 200);
    EXPECT_EQ(gtk_widget_pick(overlay, 150, 100, GTK_PICK_DEFAULT), page);
    EXPECT_EQ(gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(slate.widget())), GTK_ACCESSIBLE_ROLE_IMG);
}

} // namespace
} // namespace velder::test
