#pragma once

#include <QKeySequence>

/// The chords of the program's commands. Menus, help texts and tool tips all read this table.
namespace Bralto::Shortcuts {

enum class Command {
    New,
    NewBrowserTab,
    NewFolder,
    Open,
    AllProjects,
    Close,
    CloseFolder,
    Save,
    SaveAll,
    ToggleSidebar,
    ToggleTerminal,
    MaximizeTerminal,
    ToggleSplit,
    EditSpace,
    HiddenFiles,
    ZoomIn,
    ZoomOut,
    ActualSize,
    NewChat,
    NextTab,
    PreviousTab,
    Search,
    Menu,
    Rename,
    MoveToTrash
};

[[nodiscard]] QKeySequence sequence(Command command);

/// The chord as a tool tip shows it, for example "Ctrl+Alt+\".
[[nodiscard]] QString text(Command command);

} // namespace Bralto::Shortcuts
