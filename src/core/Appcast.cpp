#include "core/Appcast.h"

#include "core/Text.h"

#include <charconv>
#include <cstring>
#include <glib.h>

namespace velder::Appcast {

namespace {

struct ParseState {
    std::vector<AppcastItem> items;
    std::optional<AppcastItem> item; // the <item> being read
    std::string element; // the element whose text is being read inside it
    std::string text;
};

void takeEnclosure(AppcastItem& item, const char** names, const char** values)
{
    for (int i = 0; names[i]; ++i) {
        std::string_view name = names[i];
        if (name == "url") {
            item.url = values[i];
        } else if (name == "length") {
            std::int64_t length = 0;
            auto end = values[i] + std::strlen(values[i]);
            if (auto [at, error] = std::from_chars(values[i], end, length); error == std::errc() && at == end) {
                item.length = length;
            }
        } else if (name == "sparkle:edSignature") {
            item.edSignature = values[i];
        } else if (name == "sparkle:version") {
            item.version = values[i];
        } else if (name == "sparkle:shortVersionString") {
            item.shortVersionString = values[i];
        }
    }
}

void startElement(
    GMarkupParseContext*, const char* name, const char** names, const char** values, gpointer data, GError**)
{
    auto& state = *static_cast<ParseState*>(data);
    std::string_view element = name;
    if (element == "item") {
        state.item.emplace();
    } else if (state.item && element == "enclosure") {
        takeEnclosure(*state.item, names, values);
    } else if (state.item) {
        state.element = name;
        state.text.clear();
    }
}

void endElement(GMarkupParseContext*, const char* name, gpointer data, GError**)
{
    auto& state = *static_cast<ParseState*>(data);
    std::string_view element = name;
    if (element == "item" && state.item) {
        if (!state.item->url.empty() && !state.item->version.empty()) {
            state.items.push_back(std::move(*state.item));
        }
        state.item.reset();
    } else if (state.item && element == state.element) {
        std::string value(Text::trimmed(state.text));
        if (element == "sparkle:version") {
            state.item->version = value;
        } else if (element == "sparkle:shortVersionString") {
            state.item->shortVersionString = value;
        }
        state.element.clear();
    }
}

void textOf(GMarkupParseContext*, const char* text, gsize length, gpointer data, GError**)
{
    auto& state = *static_cast<ParseState*>(data);
    if (!state.element.empty()) {
        state.text.append(text, length);
    }
}

// The number at the front of one dotted part.
unsigned long long partValue(std::string_view part)
{
    unsigned long long value = 0;
    std::from_chars(part.data(), part.data() + part.size(), value);
    return value;
}

} // namespace

std::optional<std::vector<AppcastItem>> parse(std::string_view xml, std::string* error)
{
    static const GMarkupParser parser = { startElement, endElement, textOf, nullptr, nullptr };
    ParseState state;
    GMarkupParseContext* context = g_markup_parse_context_new(&parser, G_MARKUP_PREFIX_ERROR_POSITION, &state, nullptr);
    GError* failure = nullptr;
    bool parsed = g_markup_parse_context_parse(context, xml.data(), static_cast<gssize>(xml.size()), &failure)
        && g_markup_parse_context_end_parse(context, &failure);
    g_markup_parse_context_free(context);
    if (!parsed) {
        if (error) {
            *error = failure ? failure->message : "the feed is not XML";
        }
        g_clear_error(&failure);
        return std::nullopt;
    }
    return std::move(state.items);
}

int compareVersions(std::string_view a, std::string_view b)
{
    while (!a.empty() || !b.empty()) {
        auto take = [](std::string_view& text) {
            auto dot = text.find('.');
            std::string_view part = text.substr(0, dot);
            text = dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
            return partValue(part);
        };
        auto left = take(a);
        auto right = take(b);
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    return 0;
}

std::optional<AppcastItem> newestAbove(const std::vector<AppcastItem>& items, std::string_view running)
{
    const AppcastItem* newest = nullptr;
    for (const auto& item : items) {
        std::string_view version = item.displayVersionString();
        if (compareVersions(version, running) > 0
            && (!newest || compareVersions(version, newest->displayVersionString()) > 0)) {
            newest = &item;
        }
    }
    return newest ? std::optional(*newest) : std::nullopt;
}

} // namespace velder::Appcast
