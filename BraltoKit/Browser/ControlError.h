#pragma once

#include <QString>

namespace Bralto {

/// The one failure of the control side: a sentence for the agent or the log.
struct ControlError {
    QString message;

    bool operator==(const ControlError&) const = default;
};

} // namespace Bralto
