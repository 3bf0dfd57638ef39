#pragma once

#include "Base/AppPaths.h"
#include "Base/DefaultsStore.h"
#include "Base/LaunchRole.h"

#include <memory>

namespace Bralto {

/// The two domains of this process, opened. Main thread.
class ProcessDefaults {
public:
    static constexpr char SharedDomain[] = "com.tolvane.bralto.shared";

    ProcessDefaults(const AppPaths& paths, const LaunchRole& role);
    ~ProcessDefaults();

    /// Where the shared domain can't be made, the standard one stands in for it.
    [[nodiscard]] Defaults defaults() const;

private:
    std::unique_ptr<DefaultsStore> m_standard;
    std::unique_ptr<DefaultsStore> m_shared; ///< Null where it can't be made.
};

} // namespace Bralto
