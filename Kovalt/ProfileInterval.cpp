#include "Kovalt/ProfileInterval.h"

#include <cstdlib>
#include <string_view>

#include <sys/sdt.h>

namespace Kovalt {

ProfileInterval::ProfileInterval(const char* category, const char* name)
    : m_category(category)
    , m_name(name)
{
    if (isEnabled())
        DTRACE_PROBE2(kovalt, interval_begin, m_category, m_name);
}

ProfileInterval::~ProfileInterval()
{
    if (isEnabled())
        DTRACE_PROBE2(kovalt, interval_end, m_category, m_name);
}

bool ProfileInterval::isEnabled()
{
    static const bool enabled = [] {
        const char* const value = std::getenv("KOVALT_PROFILE");
        return value && std::string_view(value) == "1";
    }();
    return enabled;
}

} // namespace Kovalt
