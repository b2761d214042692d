#include "core/VldJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <rapidjson/error/en.h>

namespace velder {

namespace {

bool isDataKeyedProperty(std::string_view key)
{
    return std::find(VldJson::dataKeyedProperties.begin(), VldJson::dataKeyedProperties.end(), key)
        != VldJson::dataKeyedProperties.end();
}

char toUpperAscii(char c)
{
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

char toLowerAscii(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Joins pieces of an error text. (GCC 12 warns falsely on chains of string operator+ at -O3.)
std::string concat(std::initializer_list<std::string_view> pieces)
{
    std::string text;
    for (auto piece : pieces) {
        text.append(piece);
    }
    return text;
}

std::string_view nameOf(const rapidjson::Value& name)
{
    return std::string_view(name.GetString(), name.GetStringLength());
}

// The value of the first member of that name, or null. (Clang finds RapidJSON's comparison of member
// iterators ambiguous under C++20's rules, so the iterators are compared by what they point at.)
rapidjson::Value* memberNamed(rapidjson::Value& object, const rapidjson::Value& name)
{
    auto found = object.FindMember(name);
    return found.operator->() == object.MemberEnd().operator->() ? nullptr : &found->value;
}

// Hands the parser's events on to a document, but reads each number from its text itself: RapidJSON 1.1 reads
// some doubles a bit off in its ordinary precision, and its full precision can read past its tables on a long
// number. A number no double holds (2e308, 1e-400) reads as infinity, which no field accepts.
class ExactNumbers {
public:
    explicit ExactNumbers(rapidjson::Document& document)
        : m_document(document)
    {
    }

    bool RawNumber(const char* text, rapidjson::SizeType length, bool)
    {
        const char* end = text + length;
        if (std::string_view(text, length).find_first_of(".eE") == std::string_view::npos) {
            std::int64_t integer;
            if (auto read = std::from_chars(text, end, integer); read.ec == std::errc() && read.ptr == end) {
                return m_document.Int64(integer);
            }
            std::uint64_t large;
            if (auto read = std::from_chars(text, end, large); read.ec == std::errc() && read.ptr == end) {
                return m_document.Uint64(large);
            }
        }
        double number;
        if (auto read = std::from_chars(text, end, number); read.ec != std::errc() || read.ptr != end) {
            number = std::numeric_limits<double>::infinity();
        }
        return m_document.Double(number);
    }

    bool Null() { return m_document.Null(); }
    bool Bool(bool value) { return m_document.Bool(value); }
    bool Int(int value) { return m_document.Int(value); }
    bool Uint(unsigned value) { return m_document.Uint(value); }
    bool Int64(std::int64_t value) { return m_document.Int64(value); }
    bool Uint64(std::uint64_t value) { return m_document.Uint64(value); }
    bool Double(double value) { return m_document.Double(value); }
    bool String(const char* text, rapidjson::SizeType length, bool copy)
    {
        return m_document.String(text, length, copy);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) { return m_document.Key(text, length, copy); }
    bool StartObject() { return m_document.StartObject(); }
    bool EndObject(rapidjson::SizeType count) { return m_document.EndObject(count); }
    bool StartArray() { return m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType count) { return m_document.EndArray(count); }

private:
    rapidjson::Document& m_document;
};

// A stored key names a field when its first letter, lower-cased, and the rest equal the field name.
bool storedKeyNamesField(std::string_view stored, std::string_view field)
{
    return stored.size() == field.size() && !stored.empty() && toLowerAscii(stored[0]) == field[0]
        && stored.substr(1) == field.substr(1);
}

} // namespace

// MARK: - JsonObjectOut

JsonObjectOut::JsonObjectOut(JsonOutput& output, bool underDataKey)
    : m_output(output)
    , m_underDataKey(underDataKey)
{
}

void JsonObjectOut::key(std::string_view field)
{
    if (m_underDataKey || field.empty()) {
        m_output.key(field);
        return;
    }
    char buffer[64];
    if (field.size() <= sizeof buffer) {
        std::copy(field.begin(), field.end(), buffer);
        buffer[0] = toUpperAscii(buffer[0]);
        m_output.key(std::string_view(buffer, field.size()));
    } else {
        m_output.key(VldJson::storedKey(field));
    }
}

bool JsonObjectOut::childUnderDataKey(std::string_view field) const
{
    return m_underDataKey || isDataKeyedProperty(field);
}

void JsonObjectOut::putString(std::string_view field, std::string_view value)
{
    key(field);
    m_output.string(value);
}

void JsonObjectOut::putInt(std::string_view field, std::int64_t value)
{
    key(field);
    m_output.integer(value);
}

void JsonObjectOut::putDouble(std::string_view field, double value)
{
    key(field);
    m_output.number(value);
}

void JsonObjectOut::putBool(std::string_view field, bool value)
{
    key(field);
    m_output.boolean(value);
}

void JsonObjectOut::putDate(std::string_view field, Date value)
{
    putString(field, formatIso8601(value));
}

void JsonObjectOut::putOptionalString(std::string_view field, const std::optional<std::string>& value)
{
    if (value) {
        putString(field, *value);
    }
}

void JsonObjectOut::putOptionalInt(std::string_view field, const std::optional<std::int64_t>& value)
{
    if (value) {
        putInt(field, *value);
    }
}

void JsonObjectOut::putOptionalDate(std::string_view field, const std::optional<Date>& value)
{
    if (value) {
        putDate(field, *value);
    }
}

void JsonObjectOut::putStringArray(std::string_view field, const std::vector<std::string>& values)
{
    key(field);
    m_output.beginArray();
    for (const auto& value : values) {
        m_output.string(value);
    }
    m_output.endArray();
}

void JsonObjectOut::putBoolMap(std::string_view field, const std::map<std::string, bool>& values)
{
    key(field);
    m_output.beginObject();
    for (const auto& [name, value] : values) {
        m_output.key(name);
        m_output.boolean(value);
    }
    m_output.endObject();
}

// MARK: - JsonObjectIn

JsonObjectIn::JsonObjectIn(const rapidjson::Value& value, std::string path, bool underDataKey)
    : m_object(value)
    , m_path(std::move(path))
    , m_underDataKey(underDataKey)
{
    if (!value.IsObject()) {
        throw JsonDecodeError(concat({ m_path, " is not an object" }));
    }
}

const rapidjson::Value* JsonObjectIn::find(std::string_view field) const
{
    // The first match wins: after the merge, stored keys stand before the defaults that fill gaps.
    for (auto& member : m_object.GetObject()) {
        std::string_view key = nameOf(member.name);
        if (m_underDataKey ? key == field : storedKeyNamesField(key, field)) {
            return &member.value;
        }
    }
    return nullptr;
}

const rapidjson::Value& JsonObjectIn::required(std::string_view field) const
{
    const rapidjson::Value* value = find(field);
    if (!value) {
        throw JsonDecodeError(concat({ "required key \"", field, "\" is missing in ", m_path }));
    }
    if (value->IsNull()) {
        throw JsonDecodeError(concat({ "required key \"", field, "\" is null in ", m_path }));
    }
    return *value;
}

const rapidjson::Value* JsonObjectIn::optional(std::string_view field) const
{
    const rapidjson::Value* value = find(field);
    return (value && !value->IsNull()) ? value : nullptr;
}

std::string JsonObjectIn::childPath(std::string_view field) const
{
    return m_path == "the top level" ? std::string(field) : concat({ m_path, ".", field });
}

bool JsonObjectIn::childUnderDataKey(std::string_view field) const
{
    return m_underDataKey || isDataKeyedProperty(field);
}

JsonDecodeError JsonObjectIn::typeMismatch(std::string_view field, const char* expected) const
{
    return JsonDecodeError(concat({ "\"", field, "\" in ", m_path, " is not ", expected }));
}

namespace {

std::optional<std::int64_t> asInteger(const rapidjson::Value& value)
{
    if (value.IsInt64()) {
        return value.GetInt64();
    }
    if (value.IsDouble()) {
        double number = value.GetDouble();
        if (std::isfinite(number) && std::floor(number) == number && number >= -9.2233720368547758e18
            && number < 9.2233720368547758e18) {
            return static_cast<std::int64_t>(number);
        }
    }
    return std::nullopt;
}

} // namespace

std::string JsonObjectIn::string(std::string_view field) const
{
    const rapidjson::Value& value = required(field);
    if (!value.IsString()) {
        throw typeMismatch(field, "a string");
    }
    return std::string(value.GetString(), value.GetStringLength());
}

std::int64_t JsonObjectIn::integer(std::string_view field) const
{
    auto result = asInteger(required(field));
    if (!result) {
        throw typeMismatch(field, "an integer");
    }
    return *result;
}

double JsonObjectIn::number(std::string_view field) const
{
    const rapidjson::Value& value = required(field);
    // A number no double holds (2e308) reads as infinity, which no reader of the format accepts.
    if (!value.IsNumber() || !std::isfinite(value.GetDouble())) {
        throw typeMismatch(field, "a finite number");
    }
    return value.GetDouble();
}

bool JsonObjectIn::boolean(std::string_view field) const
{
    const rapidjson::Value& value = required(field);
    if (!value.IsBool()) {
        throw typeMismatch(field, "a boolean");
    }
    return value.GetBool();
}

Date JsonObjectIn::date(std::string_view field) const
{
    auto date = parseIso8601(string(field));
    if (!date) {
        throw typeMismatch(field, "an ISO 8601 date");
    }
    return *date;
}

std::optional<std::string> JsonObjectIn::optionalString(std::string_view field) const
{
    if (!optional(field)) {
        return std::nullopt;
    }
    return string(field);
}

std::optional<std::int64_t> JsonObjectIn::optionalInteger(std::string_view field) const
{
    if (!optional(field)) {
        return std::nullopt;
    }
    return integer(field);
}

std::optional<Date> JsonObjectIn::optionalDate(std::string_view field) const
{
    if (!optional(field)) {
        return std::nullopt;
    }
    return date(field);
}

std::vector<std::string> JsonObjectIn::stringArray(std::string_view field) const
{
    const rapidjson::Value& array = required(field);
    if (!array.IsArray()) {
        throw typeMismatch(field, "an array");
    }
    std::vector<std::string> values;
    values.reserve(array.Size());
    for (auto& element : array.GetArray()) {
        if (!element.IsString()) {
            throw typeMismatch(field, "an array of strings");
        }
        values.emplace_back(element.GetString(), element.GetStringLength());
    }
    return values;
}

std::map<std::string, bool> JsonObjectIn::boolMap(std::string_view field) const
{
    const rapidjson::Value& object = required(field);
    if (!object.IsObject()) {
        throw typeMismatch(field, "an object");
    }
    std::map<std::string, bool> values;
    for (auto& member : object.GetObject()) {
        if (!member.value.IsBool()) {
            throw typeMismatch(field, "an object of booleans");
        }
        values.insert_or_assign(std::string(nameOf(member.name)), member.value.GetBool());
    }
    return values;
}

// MARK: - VldJson

namespace VldJson {

bool isDataKey(std::span<const std::string_view> path)
{
    if (path.size() < 2) {
        return false;
    }
    return std::any_of(path.begin(), path.end() - 1, isDataKeyedProperty);
}

std::string storedKey(std::string_view fieldKey)
{
    std::string key(fieldKey);
    if (!key.empty()) {
        key[0] = toUpperAscii(key[0]);
    }
    return key;
}

std::string fieldKey(std::string_view storedKey)
{
    std::string key(storedKey);
    if (!key.empty()) {
        key[0] = toLowerAscii(key[0]);
    }
    return key;
}

void mergeOverDefaults(
    rapidjson::Value& stored, const rapidjson::Value& defaults, rapidjson::MemoryPoolAllocator<>& allocator)
{
    for (auto& member : defaults.GetObject()) {
        rapidjson::Value* found = memberNamed(stored, member.name);
        if (!found) {
            stored.AddMember(
                rapidjson::Value(member.name, allocator), rapidjson::Value(member.value, allocator), allocator);
        } else if (found->IsObject() && member.value.IsObject()) {
            mergeOverDefaults(*found, member.value, allocator);
        }
    }
}

rapidjson::Document parse(std::vector<char>& stored)
{
    // A terminator, then room for RapidJSON's 16-byte scans: they read whole aligned blocks, up to the one that
    // holds the terminator.
    stored.resize(stored.size() + 16, '\0');
    rapidjson::Reader reader;
    rapidjson::StringStream stream(stored.data());
    // Without recursion: a text nested deeper than the stack is an unreadable file, not a crash at every start.
    auto generator = [&](rapidjson::Document& document) {
        ExactNumbers events(document);
        return !reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag>(stream, events)
                    .IsError();
    };
    rapidjson::Document document;
    document.Populate(generator);
    if (reader.HasParseError()) {
        throw JsonDecodeError(std::string("the JSON text is malformed at offset ")
            + std::to_string(reader.GetErrorOffset()) + ": " + rapidjson::GetParseError_En(reader.GetParseErrorCode()));
    }
    return document;
}

rapidjson::Document parseMergedOverDefaults(std::vector<char>& stored, const std::string& defaultsJson)
{
    rapidjson::Document document = parse(stored);
    rapidjson::Document defaults(&document.GetAllocator());
    defaults.Parse(defaultsJson.data(), defaultsJson.size());
    if (defaults.HasParseError()) {
        throw JsonDecodeError("the defaults could not be encoded");
    }
    if (document.IsObject() && defaults.IsObject()) {
        mergeOverDefaults(document, defaults, document.GetAllocator());
    }
    return document;
}

} // namespace VldJson

} // namespace velder
