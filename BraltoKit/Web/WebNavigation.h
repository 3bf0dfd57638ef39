#pragma once

#include "Browser/PageEngine.h"
#include "Web/WebCertificates.h"

#include <QObject>
#include <QTimer>
#include <QWebEngineLoadingInfo>

#include <optional>

class QWebEnginePage;

namespace Bralto {

/// The loads of one page: what is on its way, what is there, and why something is not.
/// Every signal is the last that its cause brings about, so a listener may end the page.
class WebNavigation final : public QObject {
    Q_OBJECT

public:
    WebNavigation(QWebEnginePage& page, WebCertificates& certificates,
                  std::chrono::milliseconds answerLimit, QObject* parent);

    void load(const QUrl& url);
    void goBack();
    void goForward();
    void reload();
    void stop();
    void visitDespiteCertificate();

    /// Where the page is being led, else where it is, or should be after a failure.
    [[nodiscard]] QUrl url() const;
    [[nodiscard]] const QString& title() const { return m_title; } ///< Empty until there is one.
    [[nodiscard]] bool canGoBack() const;
    [[nodiscard]] bool canGoForward() const;
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] double progress() const { return m_progress; }
    /// The page's process is gone, and no load has started another.
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }

    /// A document at `url` says that it took the old one's place, and no script runs in that any
    /// more.
    void meet(const QUrl& url);
    void endWithProcess();

    /// Whether a page with this address calls itself `title` only for want of a title.
    [[nodiscard]] static bool isAddress(const QString& title, const QUrl& url);

signals:
    void began(); ///< A load.
    void changed();
    /// The document that was there is gone, and its scripts with it.
    void replaced();
    void committed();
    void failed(const Bralto::PageLoadError& error);

private:
    void commit(const QUrl& url);
    void begin(const QUrl& url);
    void follow(const QWebEngineLoadingInfo& info);
    void finish(const QWebEngineLoadingInfo& info);
    void succeed();
    void tellError();
    void fail(const PageLoadError& error);
    void end(double progress);
    void setTitle(const QString& title);
    void decide(QWebEngineCertificateError error);

    QWebEnginePage& m_page;
    WebCertificates& m_certificates;
    QTimer m_answerTimer;
    QUrl m_wanted; ///< Asked for, and not there yet; or failed.
    QUrl m_url;    ///< Of the document that is there.
    QString m_title;
    bool m_isLoading = false;
    bool m_isCommitted = false;           ///< What is loading has taken its place.
    bool m_hasEnded = false;              ///< There is no process.
    bool m_awaitsWord = false;            ///< The document is there, and has not said so.
    bool m_isErrorThere = false;          ///< The engine's document for what failed.
    std::optional<PageLoadError> m_error; ///< Told once that document is there.
    QTimer m_errorTimer;                  ///< Or once it should have been.
    double m_progress = 0;
    /// Of the last load that failed for its certificate alone.
    std::optional<WebCertificates::Entry> m_refused;
};

} // namespace Bralto
