#include "shell/chrome/TitleBar.h"

#include "core/AppInfo.h"
#include "core/Palette.h"
#include "core/Theme.h"
#include "core/UpdateController.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/TabStrip.h"
#include "shell/chrome/TitlebarRow.h"
#include "shell/chrome/UpdateSlot.h"

#include <cmath>

namespace velder {

TitleBar::TitleBar(bool isPrivate)
    : m_row(std::make_unique<TitlebarRow>())
    , m_strip(std::make_unique<TabStrip>())
    , m_updateSlot(UpdateSlot::following(UpdateController::shared()))
{
    m_row->append(gtk_window_controls_new(GTK_PACK_START));

    gtk_widget_set_hexpand(m_strip->widget(), true);
    gtk_widget_set_margin_end(m_strip->widget(), 6);
    m_row->append(m_strip->widget());

    std::string text = (isPrivate ? "Private \xe2\x80\x94 Velder v" : "Velder v") + AppInfo::version();
    m_wordmark = std::make_unique<ChromeButton>(ChromeButton::Content::text(text, 11, PANGO_WEIGHT_SEMIBOLD), "");
    m_wordmark->ink = [isPrivate] {
        return Theme::readable(isPrivate ? Palette::highlightColor() : Palette::passiveColor(), Palette::borderColor());
    };
    m_wordmark->background = [] { return Palette::borderColor(); };
    gtk_widget_set_size_request(m_wordmark->widget(), static_cast<int>(std::ceil(m_wordmark->contentWidth() + 16)), 22);
    gtk_widget_set_valign(m_wordmark->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_end(m_wordmark->widget(), 4);
    m_row->append(m_wordmark->widget());

    gtk_widget_set_valign(m_updateSlot->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_end(m_updateSlot->widget(), 8);
    m_row->append(m_updateSlot->widget());
    m_row->append(gtk_window_controls_new(GTK_PACK_END));

    // Bare parts of the row drag the window.
    m_handle = gtk_window_handle_new();
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(m_handle), m_row->widget());
}

TitleBar::~TitleBar() = default;

void TitleBar::redraw()
{
    gtk_widget_queue_draw(m_wordmark->widget());
}

} // namespace velder
