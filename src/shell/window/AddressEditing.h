#pragma once

#include <functional>
#include <string>

namespace velder {

class AddressBar;
class UrlSuggestions;

// The address bar at work: what is typed shows the history's matches under it, the arrows walk them,
// Return goes to the chosen row or to the address or search that the text makes, Escape takes the list away.
class AddressEditing {
public:
    // `navigate` loads an address in the active tab; `left` runs when the field loses the focus.
    AddressEditing(AddressBar& bar, UrlSuggestions& suggestions, std::function<void(const std::string&)> navigate,
        std::function<void()> left);
    AddressEditing(const AddressEditing&) = delete;
    AddressEditing& operator=(const AddressEditing&) = delete;

private:
    void commit(const std::string& text);
    void go(const std::string& url);

    AddressBar& m_bar;
    UrlSuggestions& m_suggestions;
    std::function<void(const std::string&)> m_navigate;
    std::function<void()> m_left;
};

} // namespace velder
