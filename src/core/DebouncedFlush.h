#pragma once

#include "core/SerialQueue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace velder {

// The trailing-edge debounce that every store uses for its file: each schedule() pushes the write
// back by the delay, so a burst of changes costs one write, `delay` after the last one. The write
// runs on the store's own serial queue; flushNow() runs it there at once and waits. The delay is measured
// on `clock`, which tests replace with a ManualClock.
//
// Declare it as the owner's last member: its destructor ends the queue before the owner's state goes.
class DebouncedFlush {
public:
    DebouncedFlush(std::string queueLabel, std::chrono::milliseconds delay, std::function<void()> writeIfDirty,
        Clock& clock = Clock::steady());

    void schedule();
    void flushNow();

    SerialQueue& queue() { return m_queue; }

private:
    std::chrono::milliseconds m_delay;
    std::function<void()> m_writeIfDirty;
    std::shared_ptr<WorkItem> m_pending; // touched only on the queue
    SerialQueue m_queue;
};

} // namespace velder
