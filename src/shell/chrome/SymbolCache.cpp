#include "shell/chrome/SymbolCache.h"

#include "glib/GObjectPtr.h"
#include "shell/chrome/Drawing.h"

#include <cmath>
#include <sstream>
#include <unordered_map>

namespace velder::SymbolCache {

namespace {

// Main thread only, like everything that draws.
std::unordered_map<std::string, GObjectPtr<GtkIconPaintable>>& images()
{
    static auto* cache = new std::unordered_map<std::string, GObjectPtr<GtkIconPaintable>>;
    return *cache;
}

} // namespace

int lookupSize(int pixels)
{
    for (int fixed : { 16, 24, 32, 48, 64, 96 }) {
        if (pixels <= fixed) {
            return fixed;
        }
    }
    return pixels;
}

int pixelSize(double pointSize)
{
    return static_cast<int>(std::lround(pointSize * 16 / 13));
}

std::string key(const std::string& name, double pointSize, int weight, int scale)
{
    std::ostringstream text;
    text << name << '|' << pointSize << '|' << weight;
    if (scale != 1) {
        text << '@' << scale;
    }
    return text.str();
}

GdkPaintable* image(const std::string& name, double pointSize, int weight, int scale)
{
    std::string cacheKey = key(name, pointSize, weight, scale);
    auto& cache = images();
    if (auto found = cache.find(cacheKey); found != cache.end()) {
        return GDK_PAINTABLE(found->second.get());
    }
    GdkDisplay* display = gdk_display_get_default();
    if (!display) {
        return nullptr;
    }
    GtkIconTheme* theme = gtk_icon_theme_get_for_display(display);
    if (!gtk_icon_theme_has_icon(theme, name.c_str())) {
        return nullptr;
    }
    // Adwaita's symbolic icons come in one weight; the weight only tells cached sizes apart.
    auto icon = GObjectPtr<GtkIconPaintable>::adopt(gtk_icon_theme_lookup_icon(theme, name.c_str(), nullptr,
        lookupSize(pixelSize(pointSize)), std::max(scale, 1), GTK_TEXT_DIR_NONE, GtkIconLookupFlags(0)));
    if (!icon) {
        return nullptr;
    }
    GdkPaintable* result = GDK_PAINTABLE(icon.get());
    cache.emplace(std::move(cacheKey), std::move(icon));
    return result;
}

std::size_t count()
{
    return images().size();
}

void draw(GtkSnapshot* snapshot, GdkPaintable* image, double x, double y, double side, Color color)
{
    if (!image) {
        return;
    }
    // Every slot of a symbolic icon's palette takes the tint, so that no part keeps the theme's colours.
    GdkRGBA tint = Drawing::rgba(color);
    GdkRGBA colors[4] = { tint, tint, tint, tint };
    gtk_snapshot_save(snapshot);
    graphene_point_t origin = GRAPHENE_POINT_INIT(static_cast<float>(x), static_cast<float>(y));
    gtk_snapshot_translate(snapshot, &origin);
    if (GTK_IS_SYMBOLIC_PAINTABLE(image)) {
        gtk_symbolic_paintable_snapshot_symbolic(GTK_SYMBOLIC_PAINTABLE(image), snapshot, side, side, colors, 4);
    } else {
        gdk_paintable_snapshot(image, snapshot, side, side);
    }
    gtk_snapshot_restore(snapshot);
}

} // namespace velder::SymbolCache
