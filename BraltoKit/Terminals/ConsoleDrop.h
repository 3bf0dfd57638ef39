#pragma once

/// @file
/// What a drop on each kind of target does. One object for each target, made when it is asked.

#include "Terminals/ConsoleDrag.h"

namespace Bralto {

/// What the system tells about a drag over a target.
struct ConsoleDropInfo {
    QStringList formats; ///< The types of the data.
    double x = 0;        ///< From the target's left edge.
    double width = 0;    ///< Of the target.
};

enum class DropProposal { Forbidden, Move };

/// A pane as a target: what is dropped goes to the left or to the right of it.
class PaneDropDelegate {
public:
    PaneDropDelegate(ConsoleDrag& drag, TerminalPanel& panel, QString paneId);

    /// Not for the pane itself, its own tab, and what isn't of this panel.
    [[nodiscard]] bool validateDrop(const ConsoleDropInfo& info) const;
    DropProposal dropUpdated(const ConsoleDropInfo& info);
    void dropExited();
    /// Whether something was dropped. The drag is over in any case.
    bool performDrop(const ConsoleDropInfo& info);

private:
    ConsoleDrag& m_drag;
    TerminalPanel& m_panel;
    QString m_paneId;
};

/// The chip of a tab as a target: a pane goes to the tab's end, a tab goes beside it.
class ChipDropDelegate {
public:
    ChipDropDelegate(ConsoleDrag& drag, TerminalPanel& panel, QString groupId);

    [[nodiscard]] bool validateDrop(const ConsoleDropInfo& info) const;
    /// A pane of another tab opens this one, so that the user can go on into its panes.
    void dropEntered(const ConsoleDropInfo& info);
    DropProposal dropUpdated(const ConsoleDropInfo& info);
    void dropExited();
    bool performDrop(const ConsoleDropInfo& info);

private:
    ConsoleDrag& m_drag;
    TerminalPanel& m_panel;
    QString m_groupId;
};

/// The rest of the panel's head as a target: a pane gets a tab of its own, a tab goes to the end.
class HeaderDropDelegate {
public:
    HeaderDropDelegate(ConsoleDrag& drag, TerminalPanel& panel);

    [[nodiscard]] bool validateDrop(const ConsoleDropInfo& info) const;
    DropProposal dropUpdated(const ConsoleDropInfo& info);
    void dropExited();
    bool performDrop(const ConsoleDropInfo& info);

private:
    ConsoleDrag& m_drag;
    TerminalPanel& m_panel;
};

} // namespace Bralto
