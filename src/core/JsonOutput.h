#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velder {

// Writes JSON text in one pass, with every object's keys in byte order. Callers that already write
// their keys in order pay nothing for that; an object written out of order is put in order when it ends.
class JsonOutput {
public:
    // `expectedSize` reserves the text's room up front: a large record grows without copies.
    explicit JsonOutput(std::size_t expectedSize = 0) { m_text.reserve(expectedSize); }

    void beginObject();
    // Must be followed by exactly one value.
    void key(std::string_view name);
    void endObject();
    void beginArray();
    void endArray();

    void string(std::string_view text);
    void integer(std::int64_t value);
    void number(double value);
    void boolean(bool value);

    const std::string& text() const { return m_text; }
    std::string take() { return std::move(m_text); }

private:
    struct Member {
        std::string key;
        std::size_t begin; // where the member's key starts
    };
    struct Frame {
        bool isObject;
        std::size_t start; // just after the opening bracket
        std::size_t count = 0;
        std::vector<Member> members; // objects only
    };

    void beforeValue();
    void writeString(std::string_view text);
    void sortMembers(Frame& frame);

    std::string m_text;
    std::vector<Frame> m_frames; // kept allocated across the many small objects of a large record
    std::size_t m_depth = 0;
    bool m_afterKey = false;
};

} // namespace velder
