#include "bridge/VLDFindCounter.h"

namespace velder {

void VLDFindCounter::startSearch(unsigned matchCount, bool forward)
{
    m_count = matchCount > static_cast<unsigned>(maximumCount) ? maximumCount : static_cast<std::int32_t>(matchCount);
    m_active = m_count == 0 ? 0 : (forward ? 1 : m_count);
}

void VLDFindCounter::step(bool forward)
{
    if (m_count == 0) {
        return;
    }
    m_active = forward ? m_active % m_count + 1 : (m_active + m_count - 2) % m_count + 1;
}

void VLDFindCounter::reset()
{
    m_count = 0;
    m_active = 0;
}

} // namespace velder
