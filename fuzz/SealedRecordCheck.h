#pragma once

// The checks shared by the fuzz targets of the sealed files' records. The text is what opening a file gave:
// the user's disk, not Velder's own writing. Whatever it holds:
// - it decodes over the defaults into a record, or fails with JsonDecodeError and nothing else;
// - a decoded record written and read back is the same record, and writing it again gives the same text;
// - the text written is one line whose object keys are strictly in byte order (so none repeats).

#include "FuzzCheck.h"

#include "core/VldJson.h"

#include <vector>

namespace velder::fuzz {

inline bool keysInOrder(const rapidjson::Value& value)
{
    if (value.IsArray()) {
        for (auto& element : value.GetArray()) {
            if (!keysInOrder(element)) {
                return false;
            }
        }
    }
    if (!value.IsObject()) {
        return true;
    }
    std::string_view previous;
    bool first = true;
    for (auto& member : value.GetObject()) {
        std::string_view name(member.name.GetString(), member.name.GetStringLength());
        if ((!first && !(previous < name)) || !keysInOrder(member.value)) {
            return false;
        }
        previous = name;
        first = false;
    }
    return true;
}

template<class Record> void checkSealedRecord(const std::uint8_t* data, std::size_t size)
{
    Record record;
    try {
        record = VldJson::decode<Record>(std::vector<char>(data, data + size), Record {});
    } catch (const JsonDecodeError&) {
        return;
    }
    std::string written = VldJson::encode(record);
    for (char c : written) {
        check(static_cast<unsigned char>(c) >= 0x20, "the written text is one line without control characters");
    }
    rapidjson::Document reparsed;
    reparsed.Parse(written.data(), written.size());
    check(!reparsed.HasParseError() && reparsed.IsObject(), "the written text is a JSON object");
    check(keysInOrder(reparsed), "keys are written once each, in byte order");

    Record again;
    try {
        again = VldJson::decode<Record>(std::vector<char>(written.begin(), written.end()), Record {});
    } catch (const JsonDecodeError&) {
        check(false, "a written record reads back");
    }
    check(again == record, "a record written and read back is the same");
    check(VldJson::encode(again) == written, "writing it again gives the same text");
}

} // namespace velder::fuzz
