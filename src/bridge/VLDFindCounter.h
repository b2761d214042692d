#pragma once

#include <cstdint>

namespace velder {

// The engine tells how many matches a new search found, but not which of them is selected, and a step to
// the next match reports no total at all. The find bar wants both, so the bridge counts: the first match
// (or the last, searching backwards) after a new search, then one further per step, wrapping round. The view
// keeps the engine to that order: a new search starts from a caret at the top (or the bottom), and a step
// after a press in the page starts the search afresh.
class VLDFindCounter {
public:
    // More matches than this are reported as this many.
    static constexpr std::int32_t maximumCount = 1000;

    // A new search found `matchCount` matches (the engine's overflow value counts as the maximum).
    void startSearch(unsigned matchCount, bool forward);
    // A step to the next match in the given direction.
    void step(bool forward);
    // Nothing found, or the search stopped.
    void reset();

    std::int32_t count() const { return m_count; }
    std::int32_t activeMatch() const { return m_active; }

private:
    std::int32_t m_count = 0;
    std::int32_t m_active = 0;
};

} // namespace velder
