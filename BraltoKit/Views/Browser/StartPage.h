#pragma once

#include "Browser/LocalServers.h"
#include "Views/Kit/ThemedWidget.h"

#include <QTimer>
#include <QUrl>

namespace Bralto {

class Place;

/// What a tab shows before it has an address: the servers that run on this machine, looked for
/// anew as long as the page is on the screen.
class StartPage final : public ThemedWidget {
    Q_OBJECT

public:
    static constexpr int RescanMilliseconds = 3000;

    /// `servers` may be null, and outlives the page.
    StartPage(Theme& theme, LocalServers* servers, QWidget* parent);

signals:
    void addressChosen(const QUrl& url);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void scan();
    void show(const std::vector<LocalServer>& found);

    LocalServers* m_servers;
    Place* m_place;
    QWidget* m_list;
    std::vector<LocalServer> m_found;
    QTimer m_rescan;
};

} // namespace Bralto
