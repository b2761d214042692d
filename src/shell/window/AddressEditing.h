#pragma once

#include <functional>
#include <string>

namespace velder {

class AddressBar;
class UrlSuggestions;

// The address bar at work: what is typed shows the history's matches under it, the arrows walk them (the
// field shows the row), Return goes to the chosen row or to the address or search that the text makes.
// Escape takes the list away and gives back what was typed; a second Escape gives back the page's address.
// Leaving the field leaves in it only what the user typed or the page's address, never a row walked past.
class AddressEditing {
public:
    // `pageAddress` is the active tab's address; `navigate` loads an address in the active tab; `left` runs
    // when the field loses the focus.
    AddressEditing(AddressBar& bar, UrlSuggestions& suggestions, std::function<std::string()> pageAddress,
        std::function<void(const std::string&)> navigate, std::function<void()> left);
    AddressEditing(const AddressEditing&) = delete;
    AddressEditing& operator=(const AddressEditing&) = delete;

private:
    void commit(const std::string& text);
    void go(const std::string& url);
    bool cancel();
    void focusChanged(bool focused);

    AddressBar& m_bar;
    UrlSuggestions& m_suggestions;
    std::function<std::string()> m_pageAddress;
    std::function<void(const std::string&)> m_navigate;
    std::function<void()> m_left;
    std::string m_typed; // the field's text as the user last left it: typed, or the address it began with
};

} // namespace velder
