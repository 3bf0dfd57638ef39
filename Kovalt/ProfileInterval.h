#pragma once

namespace Kovalt {

/// A stretch of work that a profiler can see, as two static probes that carry category and name:
/// `kovalt:interval_begin` and `kovalt:interval_end` (`perf probe sdt_kovalt:interval_begin`). Only
/// in a process that was started with KOVALT_PROFILE set to exactly "1". Any thread.
class ProfileInterval {
public:
    /// Both texts are literals.
    ProfileInterval(const char* category, const char* name);
    ~ProfileInterval();
    ProfileInterval(const ProfileInterval&) = delete;
    ProfileInterval& operator=(const ProfileInterval&) = delete;

    /// Whether probes are passed at all; decided when it is first asked.
    [[nodiscard]] static bool isEnabled();

private:
    const char* m_category;
    const char* m_name;
};

} // namespace Kovalt
