#include "Browser/ToolTexts.h"

#include "Browser/BrowserTab.h"

#include <QDir>
#include <QStringList>

namespace Bralto {

QString ToolTexts::shortId(const BrowserTab& tab)
{
    return tab.id().left(8).toLower();
}

QString ToolTexts::address(const BrowserTab& tab)
{
    const PageEngine* page = tab.pageIfMade();
    const QUrl url = page && !page->url().isEmpty() ? page->url() : tab.url();
    return url.isEmpty() ? QStringLiteral("about:blank") : url.toString(QUrl::FullyEncoded);
}

QString ToolTexts::summary(const BrowserTab& tab)
{
    const PageEngine* page = tab.pageIfMade();
    QString title = page ? page->title() : QString();
    if (title.trimmed().isEmpty())
        title = tab.title();
    QString text =
        QStringLiteral("tab %1: ").arg(shortId(tab)) + title + QStringLiteral(" — ") + address(tab);
    if (page && page->isLoading())
        text += QStringLiteral(" (still loading)");
    if (tab.errorMessage())
        text += QStringLiteral(" (failed: ") + *tab.errorMessage() + u')';
    return text;
}

Expected<QUrl, ControlError> ToolTexts::url(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(u'/'))
        return QUrl::fromLocalFile(trimmed);
    if (trimmed.startsWith(QStringLiteral("~/")))
        return QUrl::fromLocalFile(QDir::homePath() + trimmed.mid(1));
    static const QStringList schemes{QStringLiteral("http"),  QStringLiteral("https"),
                                     QStringLiteral("file"),  QStringLiteral("data"),
                                     QStringLiteral("about"), QStringLiteral("blob")};
    const QUrl url(trimmed, QUrl::TolerantMode);
    if (url.isValid() && schemes.contains(url.scheme().toLower()))
        return url;
    if (const auto resolved = BrowserTab::resolve(trimmed))
        return *resolved;
    return Unexpected{ControlError{QStringLiteral("Couldn’t make a URL out of ") + text}};
}

QString ToolTexts::wholeSeconds(std::chrono::milliseconds time)
{
    return QString::number(std::chrono::floor<std::chrono::seconds>(time).count());
}

QString ToolTexts::cut(const QString& text, qsizetype most, const QString& mark)
{
    if (text.size() <= most)
        return text;
    // Half of a character outside the basic plane is none.
    const qsizetype end = text.at(most - 1).isHighSurrogate() ? most - 1 : most;
    return text.left(end) + mark;
}

} // namespace Bralto
