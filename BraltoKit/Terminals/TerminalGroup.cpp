#include "Base/Uuid.h"
#include "Terminals/TerminalPanel.h"

#include <algorithm>

namespace Bralto {

namespace {

/// The name as it shows, if it shows anything.
std::optional<QString> shown(const std::optional<QString>& name)
{
    const QString trimmed = name.value_or(QString()).trimmed();
    return trimmed.isEmpty() ? std::nullopt : std::optional(trimmed);
}

} // namespace

ConsolePane::ConsolePane(std::unique_ptr<ClaudeChat> chat, std::optional<QString> name,
                         std::optional<QJsonObject> style)
    : m_id(newUuid())
    , m_chat(std::move(chat))
    , m_name(std::move(name))
    , m_style(std::move(style))
{
    connect(m_chat.get(), &ClaudeChat::titleChanged, this, &ConsolePane::labelChanged);
}

ConsolePane::~ConsolePane() = default;

void ConsolePane::setName(const std::optional<QString>& name)
{
    if (name == m_name)
        return;
    m_name = name;
    emit labelChanged();
}

QString ConsolePane::label() const
{
    return shown(m_name).value_or(m_chat->title());
}

QString ConsolePane::claudeSessionId() const
{
    return m_chat->sessionId();
}

PaneSnapshot ConsolePane::snapshot() const
{
    PaneSnapshot snapshot;
    snapshot.kind = kind();
    if (const auto session = parsedUuid(m_chat->sessionId()))
        snapshot.claudeSessionId = session->toString(QUuid::WithoutBraces);
    snapshot.directory = m_chat->folder();
    snapshot.name = m_name;
    snapshot.style = m_style;
    return snapshot;
}

TerminalGroup::TerminalGroup(std::vector<std::unique_ptr<ConsolePane>> panes,
                             std::optional<QString> name)
    : m_id(newUuid())
    , m_panes(std::move(panes))
    , m_name(std::move(name))
{
    if (!m_panes.empty())
        m_focusedPaneId = m_panes.front()->id();
    for (const auto& pane : m_panes)
        follow(pane.get());
}

TerminalGroup::~TerminalGroup() = default;

ConsolePane* TerminalGroup::focusedPane() const
{
    if (m_panes.empty())
        return nullptr;
    const auto focused = std::find_if(m_panes.begin(), m_panes.end(), [this](const auto& pane) {
        return pane->id() == m_focusedPaneId;
    });
    return focused != m_panes.end() ? focused->get() : m_panes.front().get();
}

QString TerminalGroup::title() const
{
    if (const auto name = shown(m_name))
        return *name;
    QStringList labels;
    for (const auto& pane : m_panes)
        labels.append(pane->label());
    labels.removeDuplicates();
    return labels.join(QStringLiteral(" + "));
}

void TerminalGroup::setName(const std::optional<QString>& name)
{
    if (name == m_name)
        return;
    m_name = name;
    emit titleChanged();
}

void TerminalGroup::setFocusedPaneId(const QString& id)
{
    if (id == m_focusedPaneId)
        return;
    m_focusedPaneId = id;
    emit focusedPaneChanged();
}

void TerminalGroup::insert(std::unique_ptr<ConsolePane> pane, std::size_t index)
{
    const QString id = pane->id();
    follow(pane.get());
    const auto place = std::ptrdiff_t(std::min(index, m_panes.size()));
    m_panes.insert(m_panes.begin() + place, std::move(pane));
    m_focusedPaneId = id;
    emit panesChanged();
    emit focusedPaneChanged();
    emit titleChanged();
}

std::unique_ptr<ConsolePane> TerminalGroup::detach(const ConsolePane* pane)
{
    const auto index = indexOf(pane);
    if (!index)
        return nullptr;
    std::unique_ptr<ConsolePane> detached = std::move(m_panes[*index]);
    m_panes.erase(m_panes.begin() + std::ptrdiff_t(*index));
    disconnect(detached.get(), nullptr, this, nullptr);

    const bool hadFocus = detached->id() == m_focusedPaneId;
    if (hadFocus && m_panes.empty())
        m_focusedPaneId.clear();
    else if (hadFocus)
        m_focusedPaneId = m_panes[*index > 0 ? *index - 1 : 0]->id();
    emit panesChanged();
    if (hadFocus)
        emit focusedPaneChanged();
    emit titleChanged();
    return detached;
}

std::optional<std::size_t> TerminalGroup::indexOf(const ConsolePane* pane) const
{
    const auto found = std::find_if(m_panes.begin(), m_panes.end(),
                                    [pane](const auto& each) { return each.get() == pane; });
    if (found == m_panes.end())
        return std::nullopt;
    return std::size_t(found - m_panes.begin());
}

GroupSnapshot TerminalGroup::snapshot() const
{
    GroupSnapshot snapshot;
    snapshot.name = m_name;
    for (std::size_t index = 0; index < m_panes.size(); ++index) {
        if (m_panes[index]->id() == m_focusedPaneId)
            snapshot.focusedIndex = int(index);
        snapshot.panes.push_back(m_panes[index]->snapshot());
    }
    return snapshot;
}

void TerminalGroup::follow(const ConsolePane* pane)
{
    connect(pane, &ConsolePane::labelChanged, this, &TerminalGroup::titleChanged);
}

} // namespace Bralto
