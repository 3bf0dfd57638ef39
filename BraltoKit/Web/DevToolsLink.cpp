#include "Web/DevToolsLink.h"

#include "Web/WebBridge.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QWebEngineScript>

namespace Bralto {

namespace {

/// Beyond what the developer page numbers its own commands with.
constexpr int FirstId = 900000;

/// Takes the replies to our own commands out of what the developer page gets.
constexpr auto Hook = R"(
(() => {
  const tell = console.debug.bind(console);
  const isOurs = (message) => {
    let reply;
    try {
      reply = typeof message === "string" ? JSON.parse(message) : message;
    } catch {
      return false;
    }
    if (!reply || !(reply.id >= %1)) return false;
    tell("%2" + JSON.stringify(reply));
    return true;
  };
  const dispatch = DevToolsAPI.dispatchMessage.bind(DevToolsAPI);
  DevToolsAPI.dispatchMessage = (message) => {
    if (!isOurs(message)) dispatch(message);
  };
  let parts = "";
  let size = 0;
  DevToolsAPI.dispatchMessageChunk = (part, whole) => {
    if (whole) {
      parts = "";
      size = whole;
    }
    parts += part;
    if (parts.length < size) return;
    const message = parts;
    parts = "";
    size = 0;
    if (!isOurs(message)) dispatch(message);
  };
  return true;
})();
)";

QString compact(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

class DevToolsLink::Page final : public QWebEnginePage {
public:
    Page(QWebEnginePage& inspected, DevToolsLink& link)
        : QWebEnginePage(inspected.profile(), &inspected)
        , tag(WebBridge::newKey())
        , m_link(&link)
    {
    }

    const QString tag;

protected:
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel /*level*/, const QString& text,
                                  int /*line*/, const QString& /*source*/) override
    {
        if (m_link && text.startsWith(tag))
            m_link->read(text.mid(tag.size()));
    }

private:
    const QPointer<DevToolsLink> m_link;
};

DevToolsLink::DevToolsLink(QWebEnginePage& inspected)
    : m_page(new Page(inspected, *this))
    , m_lastId(FirstId)
{
    connect(m_page, &QWebEnginePage::loadFinished, this, [this](bool isThere) {
        if (isThere)
            hook();
    });
    m_page->setInspectedPage(&inspected);
}

DevToolsLink::~DevToolsLink()
{
    if (!m_page)
        return;
    m_page->setInspectedPage(nullptr);
    // A reply may be what ends the link, and then the page is still telling it.
    m_page->deleteLater();
}

void DevToolsLink::hook()
{
    m_page->runJavaScript(QString::fromLatin1(Hook).arg(QString::number(FirstId), m_page->tag),
                          QWebEngineScript::MainWorld,
                          [link = QPointer(this)](const QVariant& isHooked) {
                              if (!link || !isHooked.toBool())
                                  return;
                              link->m_isHooked = true;
                              for (const QString& message : std::exchange(link->m_waiting, {}))
                                  link->post(message);
                          });
}

void DevToolsLink::send(const QString& method, const QJsonObject& parameters, Reply reply)
{
    const int id = ++m_lastId;
    m_replies[id] = std::move(reply);
    const QString message = compact({{QStringLiteral("id"), id},
                                     {QStringLiteral("method"), method},
                                     {QStringLiteral("params"), parameters}});
    if (m_isHooked)
        post(message);
    else
        m_waiting.push_back(message);
}

void DevToolsLink::post(const QString& message)
{
    const QJsonObject envelope{
        {QStringLiteral("id"), m_lastId},
        {QStringLiteral("method"), QStringLiteral("dispatchProtocolMessage")},
        {QStringLiteral("params"), QJsonArray{message}}};
    if (m_page)
        m_page->runJavaScript(
            QStringLiteral("DevToolsHost.sendMessageToEmbedder(JSON.stringify(%1))")
                .arg(compact(envelope)),
            QWebEngineScript::MainWorld);
}

void DevToolsLink::read(const QString& text)
{
    const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
    const auto found = m_replies.find(message.value(QStringLiteral("id")).toInt());
    if (found == m_replies.end())
        return;
    const Reply reply = std::move(found->second);
    m_replies.erase(found);
    const QJsonValue result = message.value(QStringLiteral("result"));
    reply(result.isObject() ? std::optional(result.toObject()) : std::nullopt);
}

} // namespace Bralto
