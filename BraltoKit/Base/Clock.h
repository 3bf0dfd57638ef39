#pragma once

#include <QDateTime>

namespace Bralto {

/// What time it is, so that a test can say so.
class Clock {
public:
    virtual ~Clock() = default;

    /// Now, in UTC, in milliseconds.
    [[nodiscard]] virtual QDateTime now() const = 0;
};

} // namespace Bralto
