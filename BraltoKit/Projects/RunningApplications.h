#pragma once

#include <QString>

namespace Bralto {

/// Which applications run, found by their bundle identifiers. Main thread.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    [[nodiscard]] virtual bool isRunning(const QString& bundleIdentifier) const = 0;
};

} // namespace Bralto
