#include "Kovalt/Process/WakeSignal.h"

#include <sys/eventfd.h>

namespace Kovalt {

WakeSignal::WakeSignal()
    : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

void WakeSignal::wake() const
{
    // It can only fail when it is readable already.
    [[maybe_unused]] const auto result = ::eventfd_write(m_event.get(), 1);
}

void WakeSignal::take() const
{
    eventfd_t count = 0;
    [[maybe_unused]] const auto result = ::eventfd_read(m_event.get(), &count);
}

} // namespace Kovalt
