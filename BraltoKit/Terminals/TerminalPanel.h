#pragma once

/// @file
/// The lower region of a project's window: groups (its tabs) of panes. Main thread.

#include "Chat/ClaudeChat.h"
#include "Terminals/PanelSnapshot.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

/// One pane: a conversation with the name that the user gave it, if any.
class ConsolePane final : public QObject {
    Q_OBJECT

public:
    explicit ConsolePane(std::unique_ptr<ClaudeChat> chat, std::optional<QString> name = {},
                         std::optional<QJsonObject> style = {});
    ~ConsolePane() override;

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID.
    [[nodiscard]] PaneKind kind() const { return PaneKind::Chat; }
    [[nodiscard]] ClaudeChat* chat() const { return m_chat.get(); }
    [[nodiscard]] const std::optional<QString>& name() const { return m_name; }
    void setName(const std::optional<QString>& name);
    /// The name trimmed, if that leaves text, else the conversation's title.
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString claudeSessionId() const;
    /// What the snapshot keeps of the pane. Its style is passed on as it was found.
    [[nodiscard]] PaneSnapshot snapshot() const;

signals:
    void labelChanged();

private:
    QString m_id;
    std::unique_ptr<ClaudeChat> m_chat;
    std::optional<QString> m_name;
    std::optional<QJsonObject> m_style;
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

    static constexpr double SmallestFraction = 0.15;
    static constexpr double LargestFraction = 0.85;

    /// The panel of `directory` as the snapshot has it; without one it is empty and hidden.
    TerminalPanel(QString directory, const std::optional<PanelSnapshot>& snapshot,
                  ChatFactory makeChat);
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
    [[nodiscard]] PanelSnapshot snapshot() const;

    void show(); ///< Opens the panel; an empty one gets a conversation first.
    void hide();
    void toggleMaximized();
    void setEditorFraction(double fraction); ///< Clamped.
    void activateGroup(const TerminalGroup* group);
    /// A new pane to the right of the focused one. `Chat` is the one kind that can be started.
    void addPane(PaneKind kind);
    /// A new tab at the end, in `folder` or else in the panel's own.
    void addGroup(PaneKind kind, const std::optional<QString>& folder);
    /// As `addGroup`, and the panel opens.
    void newTab(const std::optional<QString>& folder);
    /// Opens the panel at the pane that holds a stored conversation; without one, at a new pane to
    /// the right of the focused one.
    void resumeClaude(const QUuid& sessionId);
    /// A tab for each stored conversation that no pane holds yet; the last one becomes active.
    void adoptChats(const QStringList& sessionIds);
    /// Takes the pane out without ending its conversation. The last pane of a tab takes the tab
    /// along, the last tab hides the panel.
    void remove(const ConsolePane* pane);
    void close(const TerminalGroup* group); ///< Ends every conversation of the tab.
    void close(const ConsolePane* pane);    ///< Ends the conversation.
    void closeFocused();
    /// The next tab; with a single tab its next pane. Goes round.
    void cycle(bool forward);
    /// Makes the pane the focused one of the active tab, in the model only; whether it is here.
    bool markFocused(const ConsolePane* pane);
    void focus(const ConsolePane* pane);

signals:
    void groupsChanged();
    void activeGroupChanged();
    void isVisibleChanged(bool visible);
    void isMaximizedChanged(bool maximized);
    void editorFractionChanged(double fraction);
    /// The pane's view takes the keyboard, after the turn of the event loop that asked for it.
    void focusRequested(const Bralto::ConsolePane* pane);
    /// The keyboard goes back to where it was before the panel.
    void focusReturned();

private:
    void restore(const PanelSnapshot& snapshot);
    [[nodiscard]] std::unique_ptr<ConsolePane> restored(const PaneSnapshot& snapshot) const;
    [[nodiscard]] std::unique_ptr<ConsolePane> makePane(PaneKind kind,
                                                        const std::optional<QString>& folder) const;
    [[nodiscard]] std::optional<std::size_t> indexOf(const TerminalGroup* group) const;
    [[nodiscard]] TerminalGroup* groupOf(const ConsolePane* pane) const;
    [[nodiscard]] const ConsolePane* paneOf(const QString& claudeSessionId) const;
    void append(std::unique_ptr<ConsolePane> pane);
    void insertBesideFocused(std::unique_ptr<ConsolePane> pane);
    void removeEmpty(const TerminalGroup* group);
    void setActiveGroupId(const QString& id);
    void setVisible(bool visible);
    void setMaximized(bool maximized);
    void requestFocus();

    QString m_directory;
    std::vector<std::unique_ptr<TerminalGroup>> m_groups;
    QString m_activeGroupId;
    bool m_isVisible = false;
    bool m_isMaximized = false;
    double m_editorFraction = 0.5;
    ChatFactory m_makeChat;
    QString m_requestedFocus; ///< A pane's id; empty while no request is on its way.
};

} // namespace Bralto
