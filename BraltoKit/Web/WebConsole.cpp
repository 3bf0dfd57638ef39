#include "Web/WebConsole.h"

#include "Browser/BrowserConsole.h"

#include <QPointer>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace Bralto {

namespace {

constexpr std::chrono::milliseconds Pause{30};
constexpr int LongestText = 4000;
constexpr const char* EngineWords[] = {"Access to ", "Refused to ", "Mixed Content: "};

QString nameOf(int level)
{
    return level >= 2   ? QStringLiteral("error")
           : level == 1 ? QStringLiteral("warn")
                        : QStringLiteral("log");
}

} // namespace

WebConsole::WebConsole(PageDelegate& delegate, QObject* parent)
    : QObject(parent)
    , m_delegate(delegate)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(Pause);
    connect(&m_timer, &QTimer::timeout, this, &WebConsole::flush);
}

void WebConsole::add(const QString& level, const QString& text)
{
    m_entries.push_back({level, text.left(LongestText)});
    // Nobody keeps more than these.
    if (m_entries.size() > BrowserConsole::Capacity)
        m_entries.pop_front();
    if (!m_timer.isActive())
        m_timer.start();
}

void WebConsole::addNative(int level, const QString& text, int line, const QString& source)
{
    if (m_expectsMuted && text.startsWith(QStringLiteral("Uncaught "))) {
        m_expectsMuted = false;
        // Or one in a script of the program's own.
        if (!source.startsWith(QStringLiteral("bralto-eval-")))
            add(nameOf(level), QStringLiteral("%1 (%2:%3)").arg(text, source).arg(line));
        return;
    }
    const bool isEngines =
        std::any_of(std::begin(EngineWords), std::end(EngineWords),
                    [&text](const char* words) { return text.startsWith(QLatin1String(words)); });
    if (isEngines)
        add(nameOf(level), text);
}

void WebConsole::flush()
{
    m_timer.stop();
    const auto entries = std::move(m_entries);
    m_entries.clear();
    const QPointer<WebConsole> self(this);
    for (const Entry& entry : entries) {
        if (!self)
            return;
        m_delegate.pageLogged(entry.level, entry.text);
    }
}

} // namespace Bralto
