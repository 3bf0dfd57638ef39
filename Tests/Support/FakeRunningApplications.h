#pragma once

#include "Projects/RunningApplications.h"

#include <QSet>

namespace Bralto {

/// The applications that a test says run.
class FakeRunningApplications final : public RunningApplications {
public:
    [[nodiscard]] bool isRunning(const QString& bundleIdentifier) const override
    {
        return identifiers.contains(bundleIdentifier);
    }

    QSet<QString> identifiers;
};

} // namespace Bralto
