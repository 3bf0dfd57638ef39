#pragma once

#include "Base/Clock.h"

namespace Bralto {

/// The computer's clock. Any thread.
class SystemClock final : public Clock {
public:
    [[nodiscard]] QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }
};

} // namespace Bralto
