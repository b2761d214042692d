// Renders Velder's mark (resources/velder.svg) into the PNG that the blank slate draws, at build time, so that
// the program itself never loads an SVG decoder for it: usage `velder_render_mark <svg> <png> <side>`.
#include <cstdlib>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: velder_render_mark <svg> <png> <side>\n";
        return 2;
    }
    int side = std::atoi(argv[3]);
    GError* error = nullptr;
    GdkPixbuf* image = gdk_pixbuf_new_from_file_at_size(argv[1], side, side, &error);
    if (!image || !gdk_pixbuf_save(image, argv[2], "png", &error, "compression", "9", nullptr)) {
        std::cerr << "velder_render_mark: " << (error ? error->message : "no image") << "\n";
        return 1;
    }
    g_object_unref(image);
    return 0;
}
