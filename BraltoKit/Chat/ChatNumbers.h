#pragma once

#include <QtGlobal>

#include <limits>

namespace Bralto {

/// The sum of two counts that came from outside, held at the limits of the type.
[[nodiscard]] inline qint64 saturatingSum(qint64 left, qint64 right)
{
    qint64 sum = 0;
    if (!__builtin_add_overflow(left, right, &sum))
        return sum;
    return right > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
}

} // namespace Bralto
