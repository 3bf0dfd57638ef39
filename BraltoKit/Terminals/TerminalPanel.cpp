#include "Terminals/TerminalPanel.h"

#include "Base/Uuid.h"

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

/// Keeps `object` until the turn of the event loop is over. `owner` destroys it earlier if it goes
/// first, since a queued call dies with its context.
template <typename Object>
void outliveThisTurn(QObject* owner, std::unique_ptr<Object> object)
{
    const std::shared_ptr<Object> shared = std::move(object);
    QMetaObject::invokeMethod(
        owner, [shared] {}, Qt::QueuedConnection);
}

} // namespace

TerminalPanel::TerminalPanel(QString directory, const std::optional<PanelSnapshot>& snapshot,
                             ChatFactory makeChat)
    : m_directory(std::move(directory))
    , m_makeChat(std::move(makeChat))
{
    if (snapshot)
        restore(*snapshot);
}

TerminalPanel::~TerminalPanel() = default;

// --- what there is

TerminalGroup* TerminalPanel::activeGroup() const
{
    const auto active = std::find_if(m_groups.begin(), m_groups.end(), [this](const auto& group) {
        return group->id() == m_activeGroupId;
    });
    return active != m_groups.end() ? active->get() : nullptr;
}

PanelSnapshot TerminalPanel::snapshot() const
{
    PanelSnapshot snapshot;
    snapshot.isVisible = m_isVisible;
    snapshot.editorFraction = m_editorFraction;
    for (std::size_t index = 0; index < m_groups.size(); ++index) {
        if (m_groups[index]->id() == m_activeGroupId)
            snapshot.activeGroupIndex = int(index);
        snapshot.groups.push_back(m_groups[index]->snapshot());
    }
    return snapshot;
}

std::optional<std::size_t> TerminalPanel::indexOf(const TerminalGroup* group) const
{
    const auto found = std::find_if(m_groups.begin(), m_groups.end(),
                                    [group](const auto& each) { return each.get() == group; });
    if (found == m_groups.end())
        return std::nullopt;
    return std::size_t(found - m_groups.begin());
}

TerminalGroup* TerminalPanel::groupOf(const ConsolePane* pane) const
{
    const auto found = std::find_if(m_groups.begin(), m_groups.end(), [pane](const auto& group) {
        return group->indexOf(pane).has_value();
    });
    return found != m_groups.end() ? found->get() : nullptr;
}

const ConsolePane* TerminalPanel::paneOf(const QString& claudeSessionId) const
{
    for (const auto& group : m_groups) {
        for (const auto& pane : group->panes()) {
            if (pane->claudeSessionId() == claudeSessionId)
                return pane.get();
        }
    }
    return nullptr;
}

// --- opening and hiding

void TerminalPanel::show()
{
    if (m_groups.empty())
        addGroup(PaneKind::Chat, std::nullopt);
    setVisible(true);
    if (const TerminalGroup* group = activeGroup())
        focus(group->focusedPane());
}

void TerminalPanel::hide()
{
    if (!m_isVisible)
        return;
    // What is typed from now on must not reach a hidden pane.
    m_requestedFocus.clear();
    setVisible(false);
    setMaximized(false);
    emit focusReturned();
}

void TerminalPanel::toggleMaximized()
{
    if (!m_isVisible) {
        show();
        setMaximized(true);
        return;
    }
    setMaximized(!m_isMaximized);
    if (!m_isMaximized)
        emit focusReturned();
    else if (const TerminalGroup* group = activeGroup())
        focus(group->focusedPane());
}

void TerminalPanel::setEditorFraction(double fraction)
{
    if (std::isnan(fraction))
        return;
    const double clamped = std::clamp(fraction, SmallestFraction, LargestFraction);
    if (clamped == m_editorFraction)
        return;
    m_editorFraction = clamped;
    emit editorFractionChanged(clamped);
}

void TerminalPanel::setVisible(bool visible)
{
    if (visible == m_isVisible)
        return;
    m_isVisible = visible;
    emit isVisibleChanged(visible);
}

void TerminalPanel::setMaximized(bool maximized)
{
    if (maximized == m_isMaximized)
        return;
    m_isMaximized = maximized;
    emit isMaximizedChanged(maximized);
}

// --- adding

void TerminalPanel::addPane(PaneKind kind)
{
    insertBesideFocused(makePane(kind, std::nullopt));
    setVisible(true);
}

void TerminalPanel::addGroup(PaneKind kind, const std::optional<QString>& folder)
{
    append(makePane(kind, folder));
}

/// A tab of its own at the end.
void TerminalPanel::append(std::unique_ptr<ConsolePane> pane)
{
    const ConsolePane* focused = pane.get();
    std::vector<std::unique_ptr<ConsolePane>> panes;
    panes.push_back(std::move(pane));
    m_groups.push_back(std::make_unique<TerminalGroup>(std::move(panes)));
    m_activeGroupId = m_groups.back()->id();
    emit groupsChanged();
    emit activeGroupChanged();
    focus(focused);
}

/// To the right of the active tab's focused pane; without an active tab in one of its own.
void TerminalPanel::insertBesideFocused(std::unique_ptr<ConsolePane> pane)
{
    TerminalGroup* group = activeGroup();
    if (!group) {
        append(std::move(pane));
        return;
    }
    const ConsolePane* inserted = pane.get();
    const auto& panes = group->panes();
    const auto focused = std::find_if(panes.begin(), panes.end(), [group](const auto& each) {
        return each->id() == group->focusedPaneId();
    });
    const auto index = focused != panes.end() ? focused - panes.begin() + 1 : std::ssize(panes);
    group->insert(std::move(pane), std::size_t(index));
    focus(inserted);
}

void TerminalPanel::newTab(const std::optional<QString>& folder)
{
    addGroup(PaneKind::Chat, folder);
    setVisible(true);
}

void TerminalPanel::resumeClaude(const QUuid& sessionId)
{
    const QString id = sessionId.toString(QUuid::WithoutBraces);
    if (const ConsolePane* pane = paneOf(id))
        focus(pane);
    else
        insertBesideFocused(std::make_unique<ConsolePane>(m_makeChat(m_directory, id)));
    setVisible(true);
}

void TerminalPanel::adoptChats(const QStringList& sessionIds)
{
    const std::size_t before = m_groups.size();
    for (const QString& each : sessionIds) {
        const QString id = each.toLower();
        if (paneOf(id) || !parsedUuid(id))
            continue;
        std::vector<std::unique_ptr<ConsolePane>> panes;
        panes.push_back(std::make_unique<ConsolePane>(m_makeChat(m_directory, id)));
        m_groups.push_back(std::make_unique<TerminalGroup>(std::move(panes)));
    }
    if (m_groups.size() == before)
        return;
    m_activeGroupId = m_groups.back()->id();
    emit groupsChanged();
    emit activeGroupChanged();
    setVisible(true);
}

std::unique_ptr<ConsolePane> TerminalPanel::makePane([[maybe_unused]] PaneKind kind,
                                                     const std::optional<QString>& folder) const
{
    Q_ASSERT(kind == PaneKind::Chat);
    return std::make_unique<ConsolePane>(m_makeChat(folder.value_or(m_directory), std::nullopt));
}

// --- closing

void TerminalPanel::remove(const ConsolePane* pane)
{
    TerminalGroup* group = groupOf(pane);
    if (!group)
        return;
    outliveThisTurn(this, group->detach(pane));
    if (group->panes().empty())
        removeEmpty(group);
    else if (group == activeGroup())
        focus(group->focusedPane());
}

void TerminalPanel::removeEmpty(const TerminalGroup* group)
{
    // A listener to the group's own change may have been faster.
    const auto index = indexOf(group);
    if (!index)
        return;
    const bool wasActive = group->id() == m_activeGroupId;
    outliveThisTurn(this, std::move(m_groups[*index]));
    m_groups.erase(m_groups.begin() + std::ptrdiff_t(*index));

    if (m_groups.empty())
        m_activeGroupId.clear();
    else if (wasActive)
        m_activeGroupId = m_groups[std::min(m_groups.size() - 1, *index)]->id();
    emit groupsChanged();
    if (wasActive)
        emit activeGroupChanged();
    if (m_groups.empty())
        hide();
    else if (const TerminalGroup* active = activeGroup(); active && wasActive)
        focus(active->focusedPane());
}

void TerminalPanel::close(const TerminalGroup* group)
{
    if (!indexOf(group))
        return;
    std::vector<const ConsolePane*> panes;
    for (const auto& pane : group->panes()) {
        panes.push_back(pane.get());
        pane->chat()->stop();
    }
    for (const ConsolePane* pane : panes)
        remove(pane);
}

void TerminalPanel::close(const ConsolePane* pane)
{
    if (!groupOf(pane))
        return;
    pane->chat()->stop();
    remove(pane);
}

void TerminalPanel::closeFocused()
{
    if (const TerminalGroup* group = activeGroup())
        close(group->focusedPane());
}

// --- focus

void TerminalPanel::activateGroup(const TerminalGroup* group)
{
    if (indexOf(group))
        focus(group->focusedPane());
}

void TerminalPanel::cycle(bool forward)
{
    const TerminalGroup* group = activeGroup();
    if (!group)
        return;
    const auto next = [forward](std::size_t index, std::size_t count) {
        return (index + (forward ? 1 : count - 1)) % count;
    };
    if (m_groups.size() >= 2) {
        activateGroup(m_groups[next(*indexOf(group), m_groups.size())].get());
        return;
    }
    const auto& panes = group->panes();
    const auto index = group->indexOf(group->focusedPane());
    if (panes.size() >= 2 && index)
        focus(panes[next(*index, panes.size())].get());
}

bool TerminalPanel::markFocused(const ConsolePane* pane)
{
    TerminalGroup* group = groupOf(pane);
    if (!group)
        return false;
    setActiveGroupId(group->id());
    group->setFocusedPaneId(pane->id());
    return true;
}

void TerminalPanel::focus(const ConsolePane* pane)
{
    if (!markFocused(pane))
        return;
    // A pane that was added in this turn has no view yet. Of several requests the last one counts.
    const bool isOnItsWay = !m_requestedFocus.isEmpty();
    m_requestedFocus = pane->id();
    if (!isOnItsWay)
        QMetaObject::invokeMethod(
            this, [this] { requestFocus(); }, Qt::QueuedConnection);
}

void TerminalPanel::requestFocus()
{
    const QString id = std::exchange(m_requestedFocus, QString());
    if (!m_isVisible)
        return;
    for (const auto& group : m_groups) {
        for (const auto& pane : group->panes()) {
            if (pane->id() == id) {
                emit focusRequested(pane.get());
                return;
            }
        }
    }
}

void TerminalPanel::setActiveGroupId(const QString& id)
{
    if (id == m_activeGroupId)
        return;
    m_activeGroupId = id;
    emit activeGroupChanged();
}

} // namespace Bralto
