#pragma once

#include "Kovalt/Process/FileDescriptor.h"

namespace Kovalt {

/// Wakes a thread that waits in poll(2).
class WakeSignal {
public:
    WakeSignal();

    /// Readable while a wake has not been taken.
    [[nodiscard]] int descriptor() const { return m_event.get(); }
    /// From any thread, and never blocks. Several wakes may be taken as one.
    void wake() const;
    void take() const;

private:
    FileDescriptor m_event;
};

} // namespace Kovalt
