#pragma once

#include "Base/LaunchRole.h"
#include "Browser/PageEngine.h"
#include "Browser/PageProfile.h"

#include <QStringList>

#include <memory>

namespace Bralto {

/// The page engine, in a library of its own that is loaded when the first page is wanted: a window
/// without pages pays nothing for it. Without the library there are no pages. Main thread.
class WebLibrary final : public PageEngines {
public:
    WebLibrary(QStringList candidates, PageProfile profile);
    ~WebLibrary() override;

    /// Where the library may lie, best first: in the host's bundle, which an update replaces, then
    /// beside the running executable.
    [[nodiscard]] static QStringList candidates(const LaunchRole& role,
                                                const QString& executableFolder);

    [[nodiscard]] std::unique_ptr<PageEngine> make(PageDelegate& delegate) override;
    void clearBrowsingData(std::function<void()> done) override;

    [[nodiscard]] bool isLoaded() const { return m_engines != nullptr; }
    /// The look of the first page, if there is none yet.
    void setDark(bool dark) { m_profile.isDark = dark; }

private:
    [[nodiscard]] PageEngines* engines(); ///< Null if there is no library.

    const QStringList m_candidates;
    PageProfile m_profile;
    bool m_wasLookedFor = false;
    std::unique_ptr<PageEngines> m_engines;
};

} // namespace Bralto
