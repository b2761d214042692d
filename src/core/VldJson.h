#pragma once

// Velder's JSON dialect for its sealed files, shared with every other implementation that reads them:
// - one line, object keys sorted by their stored form (byte order), no pretty printing;
// - a record field `lastVisitUtc` is stored as "LastVisitUtc": the first letter upper-cased on writing,
//   lower-cased again on reading;
// - keys at or below a data-keyed property ("locationSites", "LocationSites", "icons", "Icons") are data,
//   not field names, and stay exactly as they stand at every depth below it;
// - absent optionals are left out (no null is written); dates are ISO 8601 in whole seconds, UTC.
// A stored file is merged over the record's defaults before it is decoded, so a file written before a
// field existed loads with that field at its default. Record decoders are strict: a required field
// that is missing, null or of the wrong type fails the whole file.
//
// Each record type provides, beside its declaration:
//   void encodeJson(const Record&, JsonObjectOut&);
//   void decodeJson(const JsonObjectIn&, Record&);

#include "core/Date.h"
#include "core/JsonOutput.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <rapidjson/document.h>

namespace velder {

// Why a stored file can't become its record, in words for the log.
class JsonDecodeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The fields of one record being written, under their field names; they reach the text as stored keys.
class JsonObjectOut {
public:
    JsonObjectOut(JsonOutput& output, bool underDataKey);

    void putString(std::string_view field, std::string_view value);
    void putInt(std::string_view field, std::int64_t value);
    void putDouble(std::string_view field, double value);
    void putBool(std::string_view field, bool value);
    void putDate(std::string_view field, Date value);
    void putOptionalString(std::string_view field, const std::optional<std::string>& value);
    void putOptionalInt(std::string_view field, const std::optional<std::int64_t>& value);
    void putOptionalDate(std::string_view field, const std::optional<Date>& value);
    void putStringArray(std::string_view field, const std::vector<std::string>& values);
    void putBoolMap(std::string_view field, const std::map<std::string, bool>& values);

    template<class Record> void putRecord(std::string_view field, const Record& record)
    {
        key(field);
        m_output.beginObject();
        JsonObjectOut child(m_output, childUnderDataKey(field));
        encodeJson(record, child);
        m_output.endObject();
    }

    template<class Record> void putRecordArray(std::string_view field, const std::vector<Record>& records)
    {
        key(field);
        m_output.beginArray();
        bool dataKeyed = childUnderDataKey(field);
        for (const auto& record : records) {
            m_output.beginObject();
            JsonObjectOut child(m_output, dataKeyed);
            encodeJson(record, child);
            m_output.endObject();
        }
        m_output.endArray();
    }

    // A map whose keys are data: they, and every key below them, are written as they stand.
    template<class Record> void putRecordMap(std::string_view field, const std::map<std::string, Record>& records)
    {
        key(field);
        m_output.beginObject();
        for (const auto& [name, record] : records) {
            m_output.key(name);
            m_output.beginObject();
            JsonObjectOut child(m_output, true);
            encodeJson(record, child);
            m_output.endObject();
        }
        m_output.endObject();
    }

private:
    void key(std::string_view field);
    bool childUnderDataKey(std::string_view field) const;

    JsonOutput& m_output;
    bool m_underDataKey;
};

// The fields of one stored object being read. Field names are matched against stored keys with their
// first letter lower-cased, or exactly below a data-keyed property.
class JsonObjectIn {
public:
    // `path` names the object in error texts ("Windows[0]"); throws unless `value` is an object.
    JsonObjectIn(const rapidjson::Value& value, std::string path, bool underDataKey);

    std::string string(std::string_view field) const;
    std::int64_t integer(std::string_view field) const;
    double number(std::string_view field) const;
    bool boolean(std::string_view field) const;
    Date date(std::string_view field) const;
    std::optional<std::string> optionalString(std::string_view field) const;
    std::optional<std::int64_t> optionalInteger(std::string_view field) const;
    std::optional<Date> optionalDate(std::string_view field) const;
    std::vector<std::string> stringArray(std::string_view field) const;
    std::map<std::string, bool> boolMap(std::string_view field) const;

    template<class Record> void record(std::string_view field, Record& out) const
    {
        decodeJson(JsonObjectIn(required(field), childPath(field), childUnderDataKey(field)), out);
    }

    template<class Record> std::vector<Record> recordArray(std::string_view field) const
    {
        const rapidjson::Value& array = required(field);
        if (!array.IsArray()) {
            throw typeMismatch(field, "an array");
        }
        std::vector<Record> records;
        records.reserve(array.Size());
        std::string base = childPath(field);
        bool dataKeyed = childUnderDataKey(field);
        for (rapidjson::SizeType i = 0; i < array.Size(); ++i) {
            Record record {};
            decodeJson(JsonObjectIn(array[i], base + "[" + std::to_string(i) + "]", dataKeyed), record);
            records.push_back(std::move(record));
        }
        return records;
    }

    // A map whose keys are data: every object below it is read with its keys exactly as stored.
    template<class Record> std::map<std::string, Record> recordMap(std::string_view field) const
    {
        const rapidjson::Value& object = required(field);
        if (!object.IsObject()) {
            throw typeMismatch(field, "an object");
        }
        std::map<std::string, Record> records;
        std::string base = childPath(field);
        for (auto& member : object.GetObject()) {
            std::string key(member.name.GetString(), member.name.GetStringLength());
            Record record {};
            decodeJson(JsonObjectIn(member.value, base + "." + key, true), record);
            records.insert_or_assign(std::move(key), std::move(record));
        }
        return records;
    }

private:
    const rapidjson::Value* find(std::string_view field) const;
    const rapidjson::Value& required(std::string_view field) const;
    const rapidjson::Value* optional(std::string_view field) const; // null counts as absent
    std::string childPath(std::string_view field) const;
    bool childUnderDataKey(std::string_view field) const;
    JsonDecodeError typeMismatch(std::string_view field, const char* expected) const;

    const rapidjson::Value& m_object;
    std::string m_path;
    bool m_underDataKey;
};

namespace VldJson {

inline constexpr std::array<std::string_view, 4> dataKeyedProperties { "locationSites", "LocationSites", "icons",
    "Icons" };

// Whether the last key of a key path is data: true when any key but the last is a data-keyed property.
bool isDataKey(std::span<const std::string_view> path);

// The key conversions: first letter to upper case (stored) or lower case (field); data keys unchanged.
std::string storedKey(std::string_view fieldKey);
std::string fieldKey(std::string_view storedKey);

// Merges a stored tree over a defaults tree, both in stored form: objects merge key by key, anything
// else (arrays included) is replaced whole by the stored value. The result is left in `stored`.
void mergeOverDefaults(
    rapidjson::Value& stored, const rapidjson::Value& defaults, rapidjson::MemoryPoolAllocator<>& allocator);

template<class Record> std::string encode(const Record& record, std::size_t expectedSize = 0)
{
    JsonOutput output(expectedSize);
    output.beginObject();
    JsonObjectOut fields(output, false);
    encodeJson(record, fields);
    output.endObject();
    return output.take();
}

// Parses stored text as the sealed files are read: without recursion, each number read exactly. `stored` gains
// a NUL at its end. Throws JsonDecodeError.
rapidjson::Document parse(std::vector<char>& stored);

// Parses the stored text (`stored` gains a NUL at its end), merges it over the defaults' stored form
// and returns the result. If either tree isn't an object, the stored tree is returned as it is (and will
// fail to decode). Throws JsonDecodeError.
rapidjson::Document parseMergedOverDefaults(std::vector<char>& stored, const std::string& defaultsJson);

// Decodes stored text merged over the defaults. Throws JsonDecodeError.
template<class Record> Record decode(std::vector<char> stored, const Record& defaults)
{
    rapidjson::Document merged = parseMergedOverDefaults(stored, encode(defaults));
    Record record {};
    decodeJson(JsonObjectIn(merged, "the top level", false), record);
    return record;
}

} // namespace VldJson

} // namespace velder
