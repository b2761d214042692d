#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velder {

// Small text helpers shared by the URL logic, the stores and the pages. Texts are UTF-8.
namespace Text {

// Without white space and line breaks at either end (ASCII, and the Unicode spaces and separators).
std::string_view trimmed(std::string_view text);
// Without blanks and tabs at either end; line breaks stay.
std::string_view trimmedBlanks(std::string_view text);

bool isAscii(std::string_view text);
inline char asciiLower(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c;
}
std::string asciiLowercased(std::string_view text);
bool asciiEqualsIgnoringCase(std::string_view a, std::string_view b);
bool asciiStartsWithIgnoringCase(std::string_view text, std::string_view prefix);

// Unicode lower-casing (ASCII text takes a fast path). Invalid UTF-8 is repaired first.
std::string lowercased(std::string_view text);
// The first character (a whole UTF-8 sequence) upper-cased; empty for empty text.
std::string firstCharacterUppercased(std::string_view text);

// Percent-encodes every byte except the ASCII letters and digits and the characters of `unreserved`.
std::string percentEncoded(std::string_view text, std::string_view unreserved);
// Decodes "%xx" escapes. Nothing when an escape is malformed or the result isn't valid UTF-8.
std::optional<std::string> percentDecoded(std::string_view text);

// Replaces every occurrence of `placeholder` in `text`; the replacement isn't searched again.
void replaceAll(std::string& text, std::string_view placeholder, std::string_view replacement);

} // namespace Text

} // namespace velder
