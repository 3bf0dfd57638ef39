#include "Base/Uuid.h"
#include "Terminals/PaneName.h"
#include "Terminals/TerminalPanel.h"

#include <utility>

namespace Bralto {

ConsolePane::ConsolePane(Content content, PaneStyle style, std::optional<QString> name)
    : m_id(newUuid())
    , m_content(std::move(content))
    , m_style(std::move(style))
    , m_name(std::move(name))
{
    follow();
}

ConsolePane::~ConsolePane() = default;

PaneKind ConsolePane::kind() const
{
    const TerminalSession* session = terminal();
    return session ? session->kind() : PaneKind::Chat;
}

TerminalSession* ConsolePane::terminal() const
{
    const auto* session = std::get_if<std::unique_ptr<TerminalSession>>(&m_content);
    return session ? session->get() : nullptr;
}

ClaudeChat* ConsolePane::chat() const
{
    const auto* chat = std::get_if<std::unique_ptr<ClaudeChat>>(&m_content);
    return chat ? chat->get() : nullptr;
}

void ConsolePane::follow()
{
    if (const TerminalSession* session = terminal())
        connect(session, &TerminalSession::titleChanged, this, &ConsolePane::labelChanged);
    else
        connect(chat(), &ClaudeChat::titleChanged, this, &ConsolePane::labelChanged);
}

ConsolePane::Content ConsolePane::exchange(Content content)
{
    Content old = std::exchange(m_content, std::move(content));
    std::visit([this](const auto& gone) { disconnect(gone.get(), nullptr, this, nullptr); }, old);
    follow();
    emit contentChanged();
    emit labelChanged();
    return old;
}

void ConsolePane::setName(const std::optional<QString>& name)
{
    if (name == m_name)
        return;
    m_name = name;
    emit labelChanged();
}

void ConsolePane::setStyle(const PaneStyle& style)
{
    if (style == m_style)
        return;
    m_style = style;
    emit styleChanged();
}

void ConsolePane::setSwapping(bool swapping)
{
    if (swapping == m_isSwapping)
        return;
    m_isSwapping = swapping;
    emit isSwappingChanged(swapping);
}

void ConsolePane::setEditingStyle(bool editing)
{
    if (editing == m_isEditingStyle)
        return;
    m_isEditingStyle = editing;
    emit isEditingStyleChanged(editing);
}

QString ConsolePane::label() const
{
    if (const auto name = PaneName::shown(m_name))
        return *name;
    if (const ClaudeChat* conversation = chat())
        return conversation->title();
    return kind() == PaneKind::Claude ? QStringLiteral("Claude") : terminal()->title();
}

QString ConsolePane::claudeSessionId() const
{
    if (const ClaudeChat* conversation = chat())
        return conversation->sessionId();
    return terminal()->claudeSessionId().value_or(QString());
}

PaneSnapshot ConsolePane::snapshot() const
{
    PaneSnapshot snapshot;
    if (const TerminalSession* session = terminal()) {
        snapshot = session->snapshot();
    } else {
        snapshot.kind = PaneKind::Chat;
        if (const auto conversation = parsedUuid(chat()->sessionId()))
            snapshot.claudeSessionId = conversation->toString(QUuid::WithoutBraces);
        snapshot.directory = chat()->folder();
    }
    snapshot.name = m_name;
    if (!m_style.isDefault())
        snapshot.style = m_style;
    return snapshot;
}

void ConsolePane::stop()
{
    if (TerminalSession* session = terminal())
        session->terminate();
    else
        chat()->stop();
}

} // namespace Bralto
