#pragma once

/// @file
/// The lower region of a project's window: groups (its tabs) of panes. Main thread.

#include "Base/DefaultsStore.h"
#include "Base/Motion.h"
#include "Chat/ClaudeChat.h"
#include "Terminals/PanelSnapshot.h"
#include "Terminals/TerminalSession.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace Bralto {

/// One pane: a terminal or a chat, with the name and the look that the user gave it.
class ConsolePane final : public QObject {
    Q_OBJECT

public:
    using Content = std::variant<std::unique_ptr<TerminalSession>, std::unique_ptr<ClaudeChat>>;

    explicit ConsolePane(Content content, PaneStyle style = {}, std::optional<QString> name = {});
    ~ConsolePane() override;

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID.
    [[nodiscard]] PaneKind kind() const;
    [[nodiscard]] TerminalSession* terminal() const; ///< Null for a chat.
    [[nodiscard]] ClaudeChat* chat() const;          ///< Null for a terminal.
    [[nodiscard]] bool isClaude() const { return kind() != PaneKind::Shell; }
    [[nodiscard]] const std::optional<QString>& name() const { return m_name; }
    void setName(const std::optional<QString>& name);
    [[nodiscard]] const PaneStyle& style() const { return m_style; }
    void setStyle(const PaneStyle& style);
    /// The name trimmed, if that leaves text; else the chat's title, "Claude", or the terminal's
    /// title.
    [[nodiscard]] QString label() const;
    /// In lower case; empty if there is none.
    [[nodiscard]] QString claudeSessionId() const;
    /// A swap between terminal and chat is under way.
    [[nodiscard]] bool isSwapping() const { return m_isSwapping; }
    /// The popover of the pane's look is open.
    [[nodiscard]] bool isEditingStyle() const { return m_isEditingStyle; }
    void setEditingStyle(bool editing);
    [[nodiscard]] PaneSnapshot snapshot() const;
    void stop(); ///< Ends what runs in the pane.

signals:
    void labelChanged();
    void styleChanged();
    void isSwappingChanged(bool swapping);
    void isEditingStyleChanged(bool editing);
    /// `terminal` or `chat` is another one; what was there lives until the turn is over.
    void contentChanged();

private:
    friend class TerminalPanel;

    void setSwapping(bool swapping);
    [[nodiscard]] Content exchange(Content content);
    void follow();

    QString m_id;
    Content m_content;
    PaneStyle m_style;
    std::optional<QString> m_name;
    bool m_isSwapping = false;
    bool m_isEditingStyle = false;
};

/// A tab of the panel: panes from left to right.
class TerminalGroup final : public QObject {
    Q_OBJECT

public:
    /// The first pane has the focus.
    explicit TerminalGroup(std::vector<std::unique_ptr<ConsolePane>> panes,
                           std::optional<QString> name = {});
    ~TerminalGroup() override;

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID.
    [[nodiscard]] const std::vector<std::unique_ptr<ConsolePane>>& panes() const { return m_panes; }
    [[nodiscard]] const QString& focusedPaneId() const
    {
        return m_focusedPaneId;
    } ///< Empty if none.
    /// The pane of that id, else the first; null only for an empty group.
    [[nodiscard]] ConsolePane* focusedPane() const;
    [[nodiscard]] const std::optional<QString>& name() const { return m_name; }
    /// The name trimmed, if that leaves text, else the panes' labels, each once, joined by " + ".
    [[nodiscard]] QString title() const;
    [[nodiscard]] bool containsClaude() const; ///< In a chat or in a terminal.

    void setName(const std::optional<QString>& name);
    void setFocusedPaneId(const QString& id);
    /// Puts the pane at `index`, at most at the end, and gives it the focus.
    void insert(std::unique_ptr<ConsolePane> pane, std::size_t index);
    /// Takes the pane out; the focus it had goes to its left neighbour. Null if it isn't here.
    std::unique_ptr<ConsolePane> detach(const ConsolePane* pane);
    /// Where the pane stands; absent if it isn't here. `pane` is compared and never looked into.
    [[nodiscard]] std::optional<std::size_t> indexOf(const ConsolePane* pane) const;
    [[nodiscard]] GroupSnapshot snapshot() const;

signals:
    void panesChanged();
    void focusedPaneChanged();
    void titleChanged();

private:
    friend class TerminalPanel;

    // A pane on its way to another group is nowhere for a moment, which nobody may see.
    void putQuietly(std::unique_ptr<ConsolePane> pane, std::size_t index);
    std::unique_ptr<ConsolePane> takeQuietly(const ConsolePane* pane);
    void announce();
    void follow(const ConsolePane* pane);

    QString m_id;
    std::vector<std::unique_ptr<ConsolePane>> m_panes;
    QString m_focusedPaneId;
    std::optional<QString> m_name;
};

/// The panel of one project. What is closed lives on until the turn of the event loop is over, so
/// that a view may close what it shows. An operation on a pane or a group that is no longer here
/// does nothing.
class TerminalPanel final : public QObject {
    Q_OBJECT

public:
    /// Makes a conversation in a folder: the stored one of a session id, or a new one.
    using ChatFactory = std::function<std::unique_ptr<ClaudeChat>(
        const QString& folder, const std::optional<QString>& sessionId)>;
    using SessionFactory =
        std::function<std::unique_ptr<TerminalSession>(const TerminalSession::Start&)>;

    /// Everything outlives the panel.
    struct Services {
        ChatFactory makeChat;
        SessionFactory makeSession;
        DefaultsStore& shared;
        Motion& motion;
        Scheduler& scheduler;
        /// The pane waits for nothing any more.
        std::function<void(const QString& pane)> clearAttention;
    };

    static constexpr double SmallestFraction = 0.15;
    static constexpr double LargestFraction = 0.85;

    /// The panel of `directory` as the snapshot has it; without one it is empty and hidden.
    TerminalPanel(QString directory, const std::optional<PanelSnapshot>& snapshot,
                  Services services);
    ~TerminalPanel() override;

    [[nodiscard]] const QString& directory() const { return m_directory; }
    [[nodiscard]] const std::vector<std::unique_ptr<TerminalGroup>>& groups() const
    {
        return m_groups;
    }
    [[nodiscard]] TerminalGroup* activeGroup() const; ///< Null if none is active.
    [[nodiscard]] bool isVisible() const { return m_isVisible; }
    /// The panel takes the editor's place as well; never kept, and over once the panel hides.
    [[nodiscard]] bool isMaximized() const { return m_isMaximized; }
    [[nodiscard]] double editorFraction() const
    {
        return m_editorFraction;
    } ///< The editor's share of the height.
    [[nodiscard]] bool hasPanes() const { return !m_groups.empty(); }
    /// Nothing of the panel is on show: between a `hide` that has come to rest and the next `show`.
    [[nodiscard]] bool isParked() const { return m_isParked; }
    [[nodiscard]] std::vector<TerminalSession*> allSessions() const;
    [[nodiscard]] TerminalGroup* group(const QString& id) const;         ///< Null if it isn't here.
    [[nodiscard]] TerminalGroup* groupOf(const ConsolePane* pane) const; ///< Null if it isn't here.
    [[nodiscard]] ConsolePane* pane(const QString& id) const;            ///< Null if it isn't here.
    /// The pane that holds a conversation, by its id in lower case; null if none does.
    [[nodiscard]] const ConsolePane* paneOfConversation(const QString& claudeSessionId) const;
    [[nodiscard]] PanelSnapshot snapshot() const;

    void show(); ///< Opens the panel; an empty one gets a Claude terminal first.
    void hide();
    void toggleMaximized();
    void setEditorFraction(double fraction); ///< Clamped.
    void activateGroup(const TerminalGroup* group);
    void addPane(PaneKind kind); ///< To the right of the focused one.
    /// A new tab at the end, in `folder` or else in the panel's own.
    void addGroup(PaneKind kind, const std::optional<QString>& folder);
    /// A new tab with a shell, and the panel opens.
    void newTab(const std::optional<QString>& folder);
    /// Opens the panel at the pane that holds a stored conversation; without one, at a new terminal
    /// to the right of the focused pane.
    void resumeClaude(const QUuid& sessionId);
    /// A tab with a chat for each stored conversation that no pane holds yet; the last one becomes
    /// active.
    void adoptChats(const QStringList& sessionIds);
    /// Takes the pane out without ending what runs in it. The last pane of a tab takes the tab
    /// along, the last tab hides the panel.
    void remove(const ConsolePane* pane);
    void close(const TerminalGroup* group); ///< Ends what runs in the tab.
    void close(const ConsolePane* pane);    ///< Ends what runs in the pane.
    void closeFocused();
    /// The next tab; with a single tab its next pane. Goes round.
    void cycle(bool forward);
    /// Makes the pane the focused one of the active tab, in the model only; whether it is here.
    bool markFocused(const ConsolePane* pane);
    void focus(const ConsolePane* pane);
    /// Shows a Claude pane's conversation as a chat instead of a terminal, or the other way round.
    void toggleView(const ConsolePane* pane);

    // Indices are places between what is there now, at most its count.

    void move(const ConsolePane* pane, const TerminalGroup* target, std::size_t index);
    /// All panes of a tab go into another one, from left to right.
    void merge(const TerminalGroup* group, const TerminalGroup* target, std::size_t index);
    /// Without an index at the end.
    void moveToNewGroup(const ConsolePane* pane, std::optional<std::size_t> index);
    /// `index` counts without the tab itself.
    void moveGroup(const TerminalGroup* group, std::size_t index);

signals:
    void groupsChanged();
    void activeGroupChanged();
    void isVisibleChanged(bool visible);
    void isMaximizedChanged(bool maximized);
    void editorFractionChanged(double fraction);
    void isParkedChanged(bool parked);
    /// The pane's view takes the keyboard, after the turn of the event loop that asked for it.
    void focusRequested(const Bralto::ConsolePane* pane);
    /// The keyboard goes back to where it was before the panel.
    void focusReturned();

private:
    void restore(const PanelSnapshot& snapshot);
    [[nodiscard]] std::unique_ptr<ConsolePane> restored(const PaneSnapshot& snapshot);
    [[nodiscard]] std::unique_ptr<ConsolePane> makePane(PaneKind kind,
                                                        const std::optional<QString>& folder);
    [[nodiscard]] std::unique_ptr<TerminalSession> makeSession(const TerminalSession::Start& start);
    /// A terminal that goes on with a stored conversation.
    [[nodiscard]] std::unique_ptr<TerminalSession> resumedTerminal(const QString& claudeSessionId,
                                                                   const QString& folder);
    void removeEnded(const TerminalSession* session);
    template <typename Predicate>
    [[nodiscard]] ConsolePane* findPane(Predicate isIt) const; ///< Null if none is it.
    [[nodiscard]] std::optional<std::size_t> indexOf(const TerminalGroup* group) const;
    void append(std::unique_ptr<ConsolePane> pane);
    void insertBesideFocused(std::unique_ptr<ConsolePane> pane);
    std::unique_ptr<TerminalGroup> take(std::size_t index);
    void dropGroup(const TerminalGroup* group);
    void removeEmpty(const TerminalGroup* group);
    void swapToTerminal(ConsolePane& pane);
    void swapToChat(ConsolePane& pane);
    void finishSwap(ConsolePane& pane, ConsolePane::Content content);
    void setActiveGroupId(const QString& id);
    void setVisible(bool visible);
    void setMaximized(bool maximized);
    void setParked(bool parked);
    void parkWhenAtRest();
    void park();
    void requestFocus();

    QString m_directory;
    std::vector<std::unique_ptr<TerminalGroup>> m_groups;
    QString m_activeGroupId;
    bool m_isVisible = false;
    bool m_isParked = true;
    bool m_isMaximized = false;
    double m_editorFraction = 0.5;
    Services m_services;
    QString m_requestedFocus; ///< A pane's id; empty while no request is on its way.
};

} // namespace Bralto
