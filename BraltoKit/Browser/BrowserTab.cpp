#include "Browser/BrowserTab.h"

#include "Base/Uuid.h"

namespace Bralto {

BrowserTab::BrowserTab(QObject* parent)
    : BrowserTab(QUrl(), parent)
{
}

BrowserTab::BrowserTab(const QUrl& url, QObject* parent)
    : QObject(parent)
    , m_id(newUuid())
    , m_url(url)
{
}

QString BrowserTab::title() const
{
    if (!m_title.isEmpty())
        return m_title;
    return m_url.host().isEmpty() ? QStringLiteral("New Tab") : m_url.host();
}

void BrowserTab::setUrl(const QUrl& url)
{
    if (url == m_url)
        return;
    const QString before = title();
    m_url = url;
    emit urlChanged(m_url);
    if (title() != before)
        emit titleChanged(title());
}

void BrowserTab::setTitle(const QString& title)
{
    // Between two pages the engine reports an empty title.
    if (title.isEmpty())
        return;
    const QString before = this->title();
    m_title = title;
    if (title != before)
        emit titleChanged(title);
}

void BrowserTab::stopLoading()
{
    emit stopRequested();
}

} // namespace Bralto
