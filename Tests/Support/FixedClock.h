#pragma once

#include "Base/Clock.h"

#include <chrono>

namespace Bralto {

/// A clock that stands still until it is moved. It begins on 15 January 2026, 12:00 UTC.
class FixedClock final : public Clock {
public:
    FixedClock() = default;
    explicit FixedClock(const QDateTime& now)
        : m_now(now.toUTC())
    {
    }

    [[nodiscard]] QDateTime now() const override { return m_now; }

    void set(const QDateTime& now) { m_now = now.toUTC(); }
    void advance(std::chrono::milliseconds by) { m_now = m_now.addMSecs(by.count()); }

private:
    QDateTime m_now = QDateTime(QDate(2026, 1, 15), QTime(12, 0), Qt::UTC);
};

} // namespace Bralto
