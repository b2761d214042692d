#pragma once

#include <cstdint>
#include <gdk/gdk.h>
#include <string>

namespace velder {

// GDK key events in the key table's terms.
namespace KeyEvents {

// The key as the table names it: a printable key as its lower-case character, others by name ("Tab",
// "Escape", "Left", "Page_Down", "F5").
std::string keyText(guint keyval);
// A key table entry as a GTK accelerator ("<Control><Shift>t", "<Control>plus"), for menu labels.
std::string accelerator(const std::string& key, std::uint32_t modifiers);

} // namespace KeyEvents

} // namespace velder
