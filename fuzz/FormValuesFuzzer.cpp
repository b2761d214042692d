// The query of a velder:// address, as any page or typed address may carry it.
// - one pair per non-empty piece between "&"s, in order, named before the first "=";
// - a name or value is its piece with "+" as a blank, or that text decoded, and then valid UTF-8 (the
//   settings write it into the vault as it is);
// - pairs of valid UTF-8 text, encoded as a form encodes them, come back the same; the first of a name wins.

#include "FuzzCheck.h"

#include "core/FormValues.h"
#include "core/Text.h"

#include <algorithm>
#include <glib.h>

using namespace velder;
using fuzz::check;

namespace {

// GLib takes a NUL byte for the end of the text; here it is U+0000, as valid as any other character.
bool isValidUtf8(std::string text)
{
    std::replace(text.begin(), text.end(), '\0', ' ');
    return g_utf8_validate_len(text.data(), text.size(), nullptr);
}

std::vector<std::string> split(std::string_view text, char separator)
{
    std::vector<std::string> pieces;
    while (true) {
        size_t at = text.find(separator);
        pieces.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(at + 1);
    }
}

void checkDecoded(const std::string& decoded, std::string piece)
{
    std::replace(piece.begin(), piece.end(), '+', ' ');
    if (piece.find('%') == std::string::npos) {
        check(decoded == piece, "text without escapes stands as it is");
    } else if (decoded != piece) {
        check(isValidUtf8(decoded), "decoded text is valid UTF-8");
        check(decoded.size() < piece.size(), "decoding shortens the text");
    }
}

void checkParsed(std::string_view query)
{
    FormValues form(query);
    std::vector<std::string> pieces = split(query, '&');
    std::erase(pieces, std::string());
    check(form.pairs.size() == pieces.size(), "one pair per non-empty piece");
    for (size_t i = 0; i < pieces.size() && i < form.pairs.size(); ++i) {
        size_t equals = pieces[i].find('=');
        checkDecoded(form.pairs[i].first, pieces[i].substr(0, equals));
        checkDecoded(form.pairs[i].second, equals == std::string::npos ? "" : pieces[i].substr(equals + 1));
        check(form.flag(form.pairs[i].first), "every name is a flag");
    }
}

// Pairs from the input's pieces between 0x01 bytes (name, value, name, value ...), encoded as a form does.
void checkRoundTrip(std::string_view input)
{
    std::vector<std::string> texts = split(input, '\x01');
    std::vector<std::pair<std::string, std::string>> pairs;
    std::string query;
    for (size_t i = 0; i + 1 < texts.size(); i += 2) {
        if (!isValidUtf8(texts[i]) || !isValidUtf8(texts[i + 1])) {
            return;
        }
        pairs.emplace_back(texts[i], texts[i + 1]);
        query += (query.empty() ? "" : "&") + Text::percentEncoded(texts[i], "-._~") + "="
            + Text::percentEncoded(texts[i + 1], "-._~");
    }
    FormValues form(query);
    check(form.pairs == pairs, "encoded pairs come back the same");
    for (const auto& pair : pairs) {
        auto first
            = std::find_if(pairs.begin(), pairs.end(), [&](const auto& other) { return other.first == pair.first; });
        check(form.string(pair.first) == first->second, "the first pair of a name wins");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view input = fuzz::text(data, size);
    checkParsed(input);
    checkRoundTrip(input);
    return 0;
}
