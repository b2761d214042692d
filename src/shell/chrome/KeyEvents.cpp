#include "shell/chrome/KeyEvents.h"

#include "core/KeyBinding.h"

#include <gtk/gtk.h>

namespace velder::KeyEvents {

std::string keyText(guint keyval)
{
    switch (keyval) {
    case GDK_KEY_Tab:
    case GDK_KEY_ISO_Left_Tab:
    case GDK_KEY_KP_Tab:
        return "Tab";
    case GDK_KEY_Escape:
        return "Escape";
    case GDK_KEY_Left:
    case GDK_KEY_KP_Left:
        return "Left";
    case GDK_KEY_Right:
    case GDK_KEY_KP_Right:
        return "Right";
    case GDK_KEY_Home:
    case GDK_KEY_KP_Home:
        return "Home";
    case GDK_KEY_Page_Down:
    case GDK_KEY_KP_Page_Down:
        return "Page_Down";
    case GDK_KEY_Page_Up:
    case GDK_KEY_KP_Page_Up:
        return "Page_Up";
    default:
        break;
    }
    if (keyval >= GDK_KEY_F1 && keyval <= GDK_KEY_F24) {
        return "F" + std::to_string(keyval - GDK_KEY_F1 + 1);
    }
    gunichar character = gdk_keyval_to_unicode(gdk_keyval_to_lower(keyval));
    if (character >= 0x20 && character != 0x7f) {
        char text[8] = {};
        g_unichar_to_utf8(character, text);
        return text;
    }
    const char* name = gdk_keyval_name(keyval);
    return name ? name : "";
}

std::string accelerator(const std::string& key, std::uint32_t modifiers)
{
    std::string text;
    if (modifiers & (KeyModifier::command | KeyModifier::control)) {
        text += "<Control>";
    }
    if (modifiers & KeyModifier::option) {
        text += "<Alt>";
    }
    if (modifiers & KeyModifier::shift) {
        text += "<Shift>";
    }
    if (g_utf8_strlen(key.c_str(), -1) == 1) {
        guint keyval = gdk_unicode_to_keyval(g_utf8_get_char(key.c_str()));
        const char* name = gdk_keyval_name(keyval);
        return text + (name ? name : key);
    }
    return text + key;
}

} // namespace velder::KeyEvents
