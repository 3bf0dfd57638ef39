#include "Web/WebHeartbeat.h"

#include <QPointer>
#include <QWebEnginePage>
#include <QWebEngineScript>

namespace Bralto {

namespace {

constexpr std::chrono::seconds Pause{1};

} // namespace

WebHeartbeat::WebHeartbeat(QWebEnginePage& page, std::chrono::milliseconds patience,
                           QObject* parent)
    : QObject(parent)
    , m_page(page)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(Pause);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        if (m_isWanted)
            ask();
    });
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { setResponding(false); });
}

void WebHeartbeat::setWanted(bool wanted)
{
    m_isWanted = wanted;
    // Nearly everything is answered before the first question.
    if (wanted && !m_pause.isActive() && !m_isAsking)
        m_pause.start();
}

void WebHeartbeat::check()
{
    if (!m_pause.isActive() && !m_isAsking) {
        ask();
        m_pause.start();
    }
}

void WebHeartbeat::setPaused(bool paused)
{
    if (paused == m_isPaused)
        return;
    m_isPaused = paused;
    if (paused)
        m_patience.stop();
    else
        restart();
}

void WebHeartbeat::restart()
{
    ++m_question;
    m_isAsking = false;
    m_patience.stop();
    m_pause.stop();
    if (m_isWanted)
        m_pause.start();
    setResponding(true);
}

void WebHeartbeat::ask()
{
    if (m_isPaused || m_isAsking)
        return;
    m_isAsking = true;
    m_patience.start();
    const quint64 question = ++m_question;
    const QPointer<WebHeartbeat> self(this);
    m_page.runJavaScript(QStringLiteral("0"), QWebEngineScript::ApplicationWorld,
                         [self, question](const QVariant&) {
                             if (self && self->m_question == question)
                                 self->restart();
                         });
}

void WebHeartbeat::setResponding(bool responds)
{
    if (responds == m_responds)
        return;
    m_responds = responds;
    emit respondsChanged(responds);
}

} // namespace Bralto
