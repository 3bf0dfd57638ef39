#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

namespace Bralto {

/// One tab on the web: its address and what the page says of itself. Main thread.
class BrowserTab final : public QObject {
    Q_OBJECT

public:
    /// A blank tab without an address.
    explicit BrowserTab(QObject* parent = nullptr);
    explicit BrowserTab(const QUrl& url, QObject* parent = nullptr);

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID; lasts for the process.
    [[nodiscard]] const QUrl& url() const { return m_url; }  ///< Empty for a blank tab.
    /// The page's last title, else its host, else "New Tab".
    [[nodiscard]] QString title() const;

    void setUrl(const QUrl& url);
    void setTitle(const QString& title); ///< An empty one is ignored.
    void stopLoading();

signals:
    void urlChanged(const QUrl& url);
    void titleChanged(const QString& title); ///< What `title` gives is another.
    void stopRequested();

private:
    QString m_id;
    QUrl m_url;
    QString m_title;
};

} // namespace Bralto
