#include "Web/WebCalls.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QTimerEvent>
#include <QWebEnginePage>
#include <QWebEngineScript>

#include <algorithm>

namespace Bralto {

namespace {

using Kind = PageScriptError::Kind;

/// The value of a JSON text, which need not be a list or an object; absent if it is none.
std::optional<QJsonValue> parsed(const QString& text)
{
    const auto document = QJsonDocument::fromJson('[' + text.toUtf8() + ']');
    const QJsonArray list = document.array();
    return list.size() == 1 ? std::optional<QJsonValue>(list.at(0)) : std::nullopt;
}

PageScriptError exceptionFrom(const QString& text)
{
    const QJsonArray parts = parsed(text).value_or(QJsonValue()).toArray();
    return {Kind::Exception, parts.at(0).toString(), parts.at(1).toString()};
}

PageScriptResult resultFrom(const WebBridge::Message& message)
{
    switch (message.kind) {
    case WebBridge::Message::Kind::Value:
        // What is nested too deeply can't be read here, though the page could write it.
        if (const auto value = parsed(message.text))
            return *value;
        return Unexpected{PageScriptError{Kind::Unserialisable}};
    case WebBridge::Message::Kind::Undefined:
        return QJsonValue(QJsonValue::Undefined);
    case WebBridge::Message::Kind::Exception:
        return Unexpected{exceptionFrom(message.text)};
    default:
        return Unexpected{PageScriptError{Kind::Unserialisable}};
    }
}

PageScriptError syntaxError(const QString& nameAndMessage)
{
    return {Kind::Exception, nameAndMessage.section(u'\n', 0, 0), nameAndMessage.section(u'\n', 1)};
}

} // namespace

WebCalls::WebCalls(QWebEnginePage& page, const WebBridge::Keys& keys, QObject* parent)
    : QObject(parent)
    , m_page(page)
    , m_keys(keys)
{
}

WebCalls::~WebCalls()
{
    endAll({Kind::Ended});
}

quint64 WebCalls::add(std::chrono::milliseconds timeout, Done done)
{
    const quint64 id = ++m_lastId;
    const bool isFirst = m_calls.empty();
    m_calls[id] = {std::move(done), startTimer(std::max(timeout, std::chrono::milliseconds(1)))};
    if (isFirst)
        emit begun();
    return id;
}

void WebCalls::call(const PageScript& script, std::chrono::milliseconds timeout, Done done)
{
    const quint64 id = add(timeout, std::move(done));
    const QStringList names = script.arguments.keys();
    const auto bad = std::find_if_not(names.begin(), names.end(), WebBridge::isArgumentName);
    if (bad != names.end()) {
        const PageScriptError error{Kind::Exception, QStringLiteral("SyntaxError"),
                                    QStringLiteral("Invalid parameter name “%1”").arg(*bad)};
        endSoon(id, error);
        return;
    }
    check(id, script);
}

void WebCalls::refuse(const PageScriptError& error, Done done)
{
    endSoon(add(std::chrono::hours(1), std::move(done)), error);
}

void WebCalls::endSoon(quint64 id, const PageScriptError& error)
{
    QMetaObject::invokeMethod(
        this, [this, id, error] { end(id, Unexpected{error}); }, Qt::QueuedConnection);
}

void WebCalls::check(quint64 id, const PageScript& script)
{
    const QPointer<WebCalls> self(this);
    m_page.runJavaScript(WebBridge::syntaxCheck(script.arguments.keys(), script.body),
                         QWebEngineScript::ApplicationWorld,
                         [self, id, script](const QVariant& found) {
                             if (!self || !self->m_calls.contains(id))
                                 return;
                             const QString text = found.toString();
                             if (!text.isEmpty())
                                 self->end(id, Unexpected{syntaxError(text)});
                             else
                                 self->run(id, WebBridge::start(self->m_keys.bridge, id,
                                                                script.body, script.arguments));
                         });
}

void WebCalls::run(quint64 id, const QString& text, bool isSecondTry)
{
    const QPointer<WebCalls> self(this);
    m_page.runJavaScript(
        text, QWebEngineScript::MainWorld, [self, id, text, isSecondTry](const QVariant& started) {
            if (!self || !self->m_calls.contains(id) || started.toBool())
                return;
            // The text itself can't fail, so its document is gone.
            if (!started.isValid()) {
                self->end(id, Unexpected{PageScriptError{Kind::Navigated}});
                return;
            }
            if (isSecondTry) {
                const QString reason = QStringLiteral("This document runs no scripts.");
                self->end(id, Unexpected{PageScriptError{Kind::Exception, {}, reason}});
                return;
            }
            // The first, empty document of a page, for example, comes without.
            self->m_page.runJavaScript(
                WebBridge::documentScript(self->m_keys, WebBridge::Arrival::Late),
                QWebEngineScript::MainWorld);
            self->run(id, text, true);
        });
}

void WebCalls::awaitFrame(std::chrono::milliseconds timeout, Done done)
{
    const quint64 id = add(timeout, std::move(done));
    run(id, WebBridge::nextFrame(m_keys.bridge, id));
}

void WebCalls::read(const WebBridge::Message& message)
{
    if (m_calls.contains(message.id))
        end(message.id, resultFrom(message));
}

void WebCalls::end(quint64 id, const PageScriptResult& result)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end())
        return;
    const Done done = std::move(found->second.done);
    killTimer(found->second.timer);
    m_calls.erase(found);
    if (m_calls.empty())
        emit idle();
    done(result);
}

void WebCalls::endAll(const PageScriptError& error)
{
    if (m_calls.empty())
        return;
    const auto calls = std::move(m_calls);
    m_calls.clear();
    for (const auto& [id, call] : calls)
        killTimer(call.timer);
    emit idle();
    for (const auto& [id, call] : calls)
        call.done(Unexpected{error});
}

void WebCalls::timerEvent(QTimerEvent* event)
{
    const auto found = std::find_if(m_calls.begin(), m_calls.end(), [event](const auto& each) {
        return each.second.timer == event->timerId();
    });
    if (found != m_calls.end())
        end(found->first, Unexpected{PageScriptError{Kind::TimedOut}});
}

} // namespace Bralto
