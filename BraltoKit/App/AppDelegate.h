#pragma once

#include "Base/DefaultsStore.h"
#include "Base/Desktop.h"
#include "Base/LaunchRole.h"
#include "Base/Scheduler.h"
#include "Projects/SpaceApps.h"
#include "Workspace/Workspace.h"

#include <QObject>
#include <QStringList>

#include <functional>

namespace Bralto {

/// The life of the application from its launch to its end: what happens when, in which order.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    struct Services {
        LaunchRole role;
        Workspace& workspace;
        Defaults defaults;
        Desktop& desktop;
        Scheduler& scheduler;
        SpaceApps& spaceApps;
        /// Shows the window and brings it to the front.
        std::function<void()> activate;
        /// Whether a window that is more than a panel is on screen.
        std::function<bool()> hasWindow;
    };

    explicit AppDelegate(Services services, QObject* parent = nullptr);

    void willFinishLaunching();
    void didFinishLaunching();

    /// Paths and addresses that the application was asked to open, in order.
    void open(const QStringList& urls);

    void didBecomeActive();
    void didResignActive();

    /// Saves the session first, then asks about documents that can't be saved. Whether the
    /// application may end; a cancelled quit loses nothing.
    [[nodiscard]] bool shouldTerminate();
    /// The last thing before the process ends.
    void willTerminate();

private:
    void openOne(const QString& url);
    void checkWindow();

    Services m_services;
};

} // namespace Bralto
