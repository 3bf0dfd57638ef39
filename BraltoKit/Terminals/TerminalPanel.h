#pragma once

/// @file
/// The lower region of a project's window: groups (its tabs) of panes. Main thread.

#include "Chat/ClaudeChat.h"
#include "Terminals/PanelSnapshot.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

/// One pane: a conversation with the name that the user gave it, if any.
class ConsolePane final : public QObject {
    Q_OBJECT

public:
    explicit ConsolePane(std::unique_ptr<ClaudeChat> chat);
    ~ConsolePane() override;

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID.
    [[nodiscard]] PaneKind kind() const { return PaneKind::Chat; }
    [[nodiscard]] ClaudeChat* chat() const { return m_chat.get(); }
    [[nodiscard]] const std::optional<QString>& name() const { return m_name; }
    void setName(const std::optional<QString>& name);
    /// The name trimmed, if that leaves text, else the conversation's title.
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString claudeSessionId() const;

signals:
    void labelChanged();

private:
    QString m_id;
    std::unique_ptr<ClaudeChat> m_chat;
    std::optional<QString> m_name;
};

/// A tab of the panel: panes from left to right.
class TerminalGroup final : public QObject {
    Q_OBJECT

public:
    explicit TerminalGroup(std::vector<std::unique_ptr<ConsolePane>> panes);
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
    void insert(std::unique_ptr<ConsolePane> pane, std::size_t index);
    std::unique_ptr<ConsolePane> detach(const ConsolePane* pane);

signals:
    void panesChanged();
    void focusedPaneChanged();
    void titleChanged();

private:
    QString m_id;
    std::vector<std::unique_ptr<ConsolePane>> m_panes;
    QString m_focusedPaneId;
    std::optional<QString> m_name;
};

/// The panel of one project.
class TerminalPanel final : public QObject {
    Q_OBJECT

public:
    /// Makes a conversation in a folder: the stored one of a session id, or a new one.
    using ChatFactory = std::function<std::unique_ptr<ClaudeChat>(
        const QString& folder, const std::optional<QString>& sessionId)>;

    static constexpr double SmallestFraction = 0.15;
    static constexpr double LargestFraction = 0.85;

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
    void addPane(PaneKind kind);
    void addGroup(PaneKind kind, const std::optional<QString>& folder);
    void newTab(const std::optional<QString>& folder);
    void adoptChats(const QStringList& sessionIds);
    void remove(const ConsolePane* pane);
    void close(const TerminalGroup* group);
    void close(const ConsolePane* pane);
    void closeFocused();
    void cycle(bool forward);
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
    QString m_directory;
    std::vector<std::unique_ptr<TerminalGroup>> m_groups;
    QString m_activeGroupId;
    bool m_isVisible = false;
    bool m_isMaximized = false;
    double m_editorFraction = 0.5;
    ChatFactory m_makeChat;
};

} // namespace Bralto
