#include "Terminals/TerminalPanel.h"

#include "Base/Uuid.h"
#include "Terminals/OutliveThisTurn.h"

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

constexpr std::chrono::milliseconds SlideAway{340};

} // namespace

TerminalPanel::TerminalPanel(QString directory, const std::optional<PanelSnapshot>& snapshot,
                             Services services)
    : m_directory(std::move(directory))
    , m_services(std::move(services))
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

TerminalGroup* TerminalPanel::group(const QString& id) const
{
    const auto found =
        std::ranges::find_if(m_groups, [&id](const auto& each) { return each->id() == id; });
    return found != m_groups.end() ? found->get() : nullptr;
}

template <typename Predicate>
ConsolePane* TerminalPanel::findPane(Predicate isIt) const
{
    for (const auto& each : m_groups) {
        for (const auto& pane : each->panes()) {
            if (isIt(*pane))
                return pane.get();
        }
    }
    return nullptr;
}

ConsolePane* TerminalPanel::pane(const QString& id) const
{
    return findPane([&id](const ConsolePane& pane) { return pane.id() == id; });
}

std::vector<TerminalSession*> TerminalPanel::allSessions() const
{
    std::vector<TerminalSession*> sessions;
    for (const auto& each : m_groups) {
        for (const auto& pane : each->panes()) {
            if (TerminalSession* session = pane->terminal())
                sessions.push_back(session);
        }
    }
    return sessions;
}

const ConsolePane* TerminalPanel::paneOfConversation(const QString& claudeSessionId) const
{
    return findPane([&claudeSessionId](const ConsolePane& pane) {
        return pane.claudeSessionId() == claudeSessionId;
    });
}

// --- opening and hiding

void TerminalPanel::show()
{
    if (m_groups.empty())
        addGroup(PaneKind::Claude, std::nullopt);
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
    emit focusReturned();
    parkWhenAtRest();
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
    if (visible)
        setParked(false);
    emit isVisibleChanged(visible);
}

void TerminalPanel::setMaximized(bool maximized)
{
    if (maximized == m_isMaximized)
        return;
    m_isMaximized = maximized;
    emit isMaximizedChanged(maximized);
}

void TerminalPanel::setParked(bool parked)
{
    if (parked == m_isParked)
        return;
    m_isParked = parked;
    emit isParkedChanged(parked);
}

/// What slides away stays on show until it is out of sight.
void TerminalPanel::parkWhenAtRest()
{
    Motion& motion = m_services.motion;
    if (motion.inFlight() > 0) {
        connect(
            &motion, &Motion::ended, this, [this] { parkWhenAtRest(); }, Qt::SingleShotConnection);
        return;
    }
    if (motion.isReduced())
        park();
    else
        m_services.scheduler.after(SlideAway, this, [this] { park(); });
}

void TerminalPanel::park()
{
    if (m_isVisible)
        return;
    setMaximized(false);
    setParked(true);
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
    addGroup(PaneKind::Shell, folder);
    setVisible(true);
}

void TerminalPanel::resumeClaude(const QUuid& sessionId)
{
    const QString id = sessionId.toString(QUuid::WithoutBraces);
    if (const ConsolePane* pane = paneOfConversation(id))
        focus(pane);
    else
        insertBesideFocused(std::make_unique<ConsolePane>(
            resumedTerminal(id, m_directory), PaneStyle::newPaneDefault(m_services.shared)));
    setVisible(true);
}

void TerminalPanel::adoptChats(const QStringList& sessionIds)
{
    const std::size_t before = m_groups.size();
    for (const QString& each : sessionIds) {
        const QString id = each.toLower();
        if (paneOfConversation(id) || !parsedUuid(id))
            continue;
        std::vector<std::unique_ptr<ConsolePane>> panes;
        panes.push_back(std::make_unique<ConsolePane>(m_services.makeChat(m_directory, id)));
        m_groups.push_back(std::make_unique<TerminalGroup>(std::move(panes)));
    }
    if (m_groups.size() == before)
        return;
    m_activeGroupId = m_groups.back()->id();
    emit groupsChanged();
    emit activeGroupChanged();
    setVisible(true);
}

std::unique_ptr<ConsolePane> TerminalPanel::makePane(PaneKind kind,
                                                     const std::optional<QString>& folder)
{
    const QString directory = folder.value_or(m_directory);
    ConsolePane::Content content;
    if (kind == PaneKind::Chat)
        content = m_services.makeChat(directory, std::nullopt);
    else
        content = makeSession({kind, directory, m_directory, std::nullopt});
    return std::make_unique<ConsolePane>(std::move(content),
                                         PaneStyle::newPaneDefault(m_services.shared));
}

std::unique_ptr<TerminalSession> TerminalPanel::makeSession(const TerminalSession::Start& start)
{
    auto session = m_services.makeSession(start);
    connect(session.get(), &TerminalSession::ended, this,
            [this, made = session.get()] { removeEnded(made); });
    return session;
}

std::unique_ptr<TerminalSession> TerminalPanel::resumedTerminal(const QString& claudeSessionId,
                                                                const QString& folder)
{
    PaneSnapshot conversation;
    conversation.kind = PaneKind::Claude;
    conversation.claudeSessionId = claudeSessionId;
    conversation.directory = folder;
    return makeSession({PaneKind::Claude, m_directory, m_directory, conversation});
}

// --- closing

void TerminalPanel::removeEnded(const TerminalSession* session)
{
    // A swap ends its shell and goes on with the pane.
    const ConsolePane* ended = findPane([session](const ConsolePane& pane) {
        return pane.terminal() == session && !pane.isSwapping();
    });
    if (ended)
        remove(ended);
}

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
    outliveThisTurn(this, take(*index));

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

std::unique_ptr<TerminalGroup> TerminalPanel::take(std::size_t index)
{
    auto taken = std::move(m_groups[index]);
    m_groups.erase(m_groups.begin() + std::ptrdiff_t(index));
    return taken;
}

/// A group that lost its panes to another one, which has become the active one.
void TerminalPanel::dropGroup(const TerminalGroup* group)
{
    if (const auto index = indexOf(group))
        outliveThisTurn(this, take(*index));
}

void TerminalPanel::close(const TerminalGroup* group)
{
    if (!indexOf(group))
        return;
    std::vector<const ConsolePane*> panes;
    for (const auto& pane : group->panes()) {
        panes.push_back(pane.get());
        pane->stop();
    }
    for (const ConsolePane* pane : panes)
        remove(pane);
}

void TerminalPanel::close(const ConsolePane* pane)
{
    if (!groupOf(pane))
        return;
    this->pane(pane->id())->stop();
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
    if (const ConsolePane* found = pane(id))
        emit focusRequested(found);
}

void TerminalPanel::setActiveGroupId(const QString& id)
{
    if (id == m_activeGroupId)
        return;
    m_activeGroupId = id;
    emit activeGroupChanged();
}

} // namespace Bralto
