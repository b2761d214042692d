// The merge of a stored tree over the defaults, for any two JSON texts: "stored" NUL "defaults".
// - the merge fails exactly when the stored text is malformed;
// - every key of the defaults is in the result, every stored value is kept (objects merged key by key),
//   and a key only the defaults have brings the default's value;
// - merging the defaults over the result again changes nothing;
// - the key conversions agree with each other on every key met.

#include "FuzzCheck.h"

#include "core/VldJson.h"

#include <set>

using namespace velder;
using fuzz::check;

namespace {

bool hasRepeatedKeys(const rapidjson::Value& value)
{
    if (value.IsArray()) {
        for (auto& element : value.GetArray()) {
            if (hasRepeatedKeys(element)) {
                return true;
            }
        }
    }
    if (!value.IsObject()) {
        return false;
    }
    std::set<std::string> names;
    for (auto& member : value.GetObject()) {
        if (!names.emplace(member.name.GetString(), member.name.GetStringLength()).second
            || hasRepeatedKeys(member.value)) {
            return true;
        }
    }
    return false;
}

void checkKeyConversions(std::string_view key)
{
    check(VldJson::fieldKey(VldJson::storedKey(key)) == VldJson::fieldKey(key), "fieldKey(storedKey(k))");
    check(VldJson::storedKey(VldJson::fieldKey(key)) == VldJson::storedKey(key), "storedKey(fieldKey(k))");
    check(VldJson::storedKey(key).size() == key.size(), "storedKey keeps the length");
}

// Equal trees, members compared in order (RapidJSON's own comparison looks a name up, and so misses the
// second of two members of one name).
bool same(const rapidjson::Value& a, const rapidjson::Value& b)
{
    if (a.IsObject() && b.IsObject()) {
        if (a.MemberCount() != b.MemberCount()) {
            return false;
        }
        for (auto x = a.MemberBegin(), y = b.MemberBegin(); x != a.MemberEnd(); ++x, ++y) {
            if (x->name != y->name || !same(x->value, y->value)) {
                return false;
            }
        }
        return true;
    }
    if (a.IsArray() && b.IsArray()) {
        if (a.Size() != b.Size()) {
            return false;
        }
        for (rapidjson::SizeType i = 0; i < a.Size(); ++i) {
            if (!same(a[i], b[i])) {
                return false;
            }
        }
        return true;
    }
    return a == b;
}

// The value of the first member of that name, or null (see VldJson.cpp on comparing member iterators).
const rapidjson::Value* memberNamed(const rapidjson::Value& object, const rapidjson::Value& name)
{
    auto found = object.FindMember(name);
    return found.operator->() == object.MemberEnd().operator->() ? nullptr : &found->value;
}

// `merged` is `stored` merged over `defaults`; the first member of a name is the one that counts.
void checkMerged(const rapidjson::Value& merged, const rapidjson::Value& stored, const rapidjson::Value& defaults)
{
    for (auto& member : stored.GetObject()) {
        checkKeyConversions(std::string_view(member.name.GetString(), member.name.GetStringLength()));
        const rapidjson::Value* inMerged = memberNamed(merged, member.name);
        check(inMerged, "a stored key is kept");
        const rapidjson::Value* inStored = memberNamed(stored, member.name);
        const rapidjson::Value* inDefaults = memberNamed(defaults, member.name);
        if (inStored->IsObject() && inDefaults && inDefaults->IsObject()) {
            checkMerged(*inMerged, *inStored, *inDefaults);
        } else {
            check(same(*inMerged, *inStored), "a stored value is kept");
        }
    }
    for (auto& member : defaults.GetObject()) {
        const rapidjson::Value* inMerged = memberNamed(merged, member.name);
        check(inMerged, "every default key is in the result");
        if (!memberNamed(stored, member.name)) {
            check(same(*inMerged, member.value), "a missing key takes the default");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view input = fuzz::text(data, size);
    size_t split = input.find('\0');
    std::string storedText(input.substr(0, split));
    std::string defaultsText(split == std::string_view::npos ? "{}" : input.substr(split + 1));

    // Each parsed as the merge parses it: the stored text as a sealed file, the defaults by their length (which
    // in RapidJSON 1.1 also passes over a stray byte where a byte order mark may stand).
    std::vector<char> storedCopy(storedText.begin(), storedText.end());
    rapidjson::Document stored;
    bool storedMalformed = false;
    try {
        stored = VldJson::parse(storedCopy);
    } catch (const JsonDecodeError&) {
        storedMalformed = true;
    }
    rapidjson::Document defaults;
    defaults.Parse(defaultsText.data(), defaultsText.size());

    std::vector<char> buffer(storedText.begin(), storedText.end());
    rapidjson::Document merged;
    try {
        merged = VldJson::parseMergedOverDefaults(buffer, defaultsText);
    } catch (const JsonDecodeError&) {
        check(storedMalformed || defaults.HasParseError(), "only malformed text fails the merge");
        return 0;
    }
    check(!storedMalformed && !defaults.HasParseError(), "malformed text fails the merge");
    if (!stored.IsObject() || !defaults.IsObject()) {
        check(same(merged, stored), "a tree that isn't an object is returned as it is");
        return 0;
    }
    if (hasRepeatedKeys(defaults)) {
        return 0; // defaults are Velder's own encoding, where a key never repeats
    }
    checkMerged(merged, stored, defaults);

    rapidjson::Document again;
    again.CopyFrom(merged, again.GetAllocator());
    VldJson::mergeOverDefaults(again, defaults, again.GetAllocator());
    check(same(again, merged), "merging twice changes nothing");
    return 0;
}
