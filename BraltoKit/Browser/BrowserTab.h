#pragma once

#include "Base/Clock.h"
#include "Base/Desktop.h"
#include "Base/Zoom.h"
#include "Browser/BrowserConsole.h"
#include "Browser/PageEngine.h"

#include <QObject>
#include <QPoint>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

/// What the tabs of a window are made with. Everything outlives them.
struct BrowserServices {
    PageEngines* pages = nullptr; ///< Null where pages can't be shown: a tab is its address then.
    const Clock* clock = nullptr; ///< Stamps the console; never null where there are pages.
    Zoom* zoom = nullptr;         ///< Null: no zoom.
    Desktop* desktop = nullptr;   ///< Null: nothing is opened elsewhere.
};

/// One tab on the web: its address, what its page says of itself, and what the user is asked for
/// it. Mirrors the engine's state, and keeps the last of it when the page ends. Main thread.
class BrowserTab final : public QObject, private PageDelegate {
    Q_OBJECT

public:
    /// A restored tab loads when it is first looked at or driven, not at once.
    enum class Load { Now, WhenNeeded };

    /// A blank tab, whose address field wants the keyboard, if `url` is empty.
    explicit BrowserTab(const BrowserServices& services, const QUrl& url = {},
                        Load load = Load::Now, QObject* parent = nullptr);
    /// An address and no page.
    explicit BrowserTab(const QUrl& url, QObject* parent = nullptr);
    ~BrowserTab() override;

    // State
    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID; lasts for the process.
    [[nodiscard]] const QString& title() const { return m_title; } ///< "New Tab" before the first.
    [[nodiscard]] bool hasTitle() const { return m_hasTitle; }     ///< The page has told one.
    [[nodiscard]] const QUrl& url() const { return m_url; }        ///< Empty for a blank tab.
    [[nodiscard]] bool canGoBack() const { return m_canGoBack; }
    [[nodiscard]] bool canGoForward() const { return m_canGoForward; }
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] double progress() const { return m_progress; } ///< 0 to 1.
    /// Why the last load failed, or that the page ended.
    [[nodiscard]] const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    /// The last load failed for the server's certificate alone.
    [[nodiscard]] bool canVisitAnyway() const { return m_canVisitAnyway; }
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; } ///< The page's process is gone.
    [[nodiscard]] bool responds() const { return m_responds; }
    [[nodiscard]] bool isFullScreen() const { return m_isFullScreen; }
    [[nodiscard]] const QByteArray& icon() const { return m_icon; }         ///< A PNG, or empty.
    [[nodiscard]] const QUrl& hoveredLink() const { return m_hoveredLink; } ///< Empty: none.
    /// In the order in which they were asked.
    [[nodiscard]] const std::vector<PageQuestion>& questions() const { return m_questions; }
    [[nodiscard]] BrowserConsole& console() { return m_console; }
    /// The name of the tool that acts on the page now; empty if none does.
    [[nodiscard]] QString actingTool() const;

    // The address field
    [[nodiscard]] const QString& addressText() const { return m_addressText; }
    [[nodiscard]] bool isEditingAddress() const { return m_isEditingAddress; }
    /// Each increase asks the view to focus the field.
    [[nodiscard]] int addressFocusRequest() const { return m_addressFocusRequest; }
    void setAddressText(const QString& text);
    void setEditingAddress(bool editing); ///< Once it ends, the field follows the page again.
    void requestAddressFocus();
    /// Return in the address field. A text that is no address and no search changes nothing.
    void submit();
    /// An address, a host or a search for what a user typed; absent if it is blank or no URL.
    [[nodiscard]] static std::optional<QUrl> resolve(const QString& text);

    // The page
    /// The page, made (and loaded) if there is none yet. Null where pages can't be shown and once
    /// the tab is closed.
    [[nodiscard]] PageEngine* page();
    [[nodiscard]] PageEngine* pageIfMade() const { return m_page.get(); }
    void load(const QUrl& url);
    void goBack();
    void goForward();
    void reload(); ///< After a failure the address that failed.
    void stopLoading();
    void visitAnyway();
    void stopPage(); ///< Ends a page that no longer responds.
    void openInDefaultBrowser();
    void answer(quint64 question, const PageAnswer& answer);
    void leaveFullScreen();
    void close(); ///< Releases the page.

    /// Marks the tab as driven for as long as the result lives.
    [[nodiscard]] std::shared_ptr<void> markActing(const QString& tool);

signals:
    void titleChanged(const QString& title);
    void urlChanged(const QUrl& url);
    void historyChanged(); ///< `canGoBack` or `canGoForward`.
    void isLoadingChanged(bool loading);
    void progressChanged(double progress);
    void statusChanged(); ///< `errorMessage`, `hasEnded` or `responds`.
    void addressTextChanged(const QString& text);
    void addressFocusRequested();
    void iconChanged();
    void hoveredLinkChanged(const QUrl& link);
    void fullScreenChanged(bool fullScreen);
    void questionsChanged();
    void actingToolChanged();
    void pageMade();
    /// The widget of the page is about to go.
    void pageGoing();
    void menuRequested(const Bralto::PageContext& context, const QPoint& position);

private:
    void pageChanged() override;
    void pageCommitted() override;
    void pageFailed(const PageLoadError& error) override;
    void pageLogged(const QString& level, const QString& text) override;
    void pageWantsNewPage(const QUrl& url) override;
    void pageAsked(const PageQuestion& question) override;
    void pageWithdrew(quint64 question) override;
    void pageWantsMenu(const PageContext& context, const QPoint& position) override;
    void pageHovered(const QUrl& link) override;
    void pageWantsFullScreen(bool wants) override;
    void pageIconChanged(const QByteArray& png) override;
    void pageEnded() override;
    void pageResponds(bool responds) override;

    void setUrl(const QUrl& url);
    void setStatus(const std::optional<QString>& error, bool canVisitAnyway, bool hasEnded);
    void applyZoom();

    BrowserServices m_services;
    QString m_id;
    QString m_title;
    bool m_hasTitle = false;
    QUrl m_url;
    bool m_canGoBack = false;
    bool m_canGoForward = false;
    bool m_isLoading = false;
    double m_progress = 0;
    std::optional<QString> m_errorMessage;
    bool m_canVisitAnyway = false;
    bool m_hasEnded = false;
    bool m_responds = true;
    bool m_isFullScreen = false;
    bool m_isClosed = false;
    bool m_loadsAfterEnd = false; ///< The page was ended to make way for a load.
    QByteArray m_icon;
    QUrl m_hoveredLink;
    std::vector<PageQuestion> m_questions;
    BrowserConsole m_console;
    std::vector<std::pair<int, QString>> m_acting; ///< Tools at work, by a number of their own.
    int m_lastActing = 0;
    QString m_addressText;
    bool m_isEditingAddress = false;
    int m_addressFocusRequest = 0;
    std::unique_ptr<PageEngine> m_page;
};

} // namespace Bralto
