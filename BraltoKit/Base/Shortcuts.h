#pragma once

#include <QString>

#include <span>

namespace Bralto::Shortcuts {

/// Every command of the menus, in the order of the menus, then what only a terminal needs.
enum class Command {
    CheckForUpdates,
    NotificationHooks,

    New,
    NewFile,
    NewBrowserTab,
    NewFolder,
    Open,
    AllProjects,
    OpenRecent,
    ClearMenu,

    Close,
    CloseFolder,
    Save,
    SaveAll,
    SaveAutomatically,

    ToggleSidebar,
    ToggleTerminal,
    ToggleTerminalSize,
    ToggleSplit,
    EditSpace,
    ShowHiddenFiles,
    ZoomIn,
    ZoomOut,
    ActualSize,

    NewClaudeBeside,
    NewClaudeChat,
    NewShellBeside,
    NewTerminalTab,
    ToggleChatView,
    StylePane,
    KillTerminal,

    NextTab,
    PreviousTab,
    NextEditorTab,
    PreviousEditorTab,
    OpenLocation,
    ReloadPage,
    ClearBrowsingData,
    RevealInFinder,

    Quit,

    Copy,
    Paste,
    PasteSelection,
    SelectAll,
    Find,
    ScrollPageUp,
    ScrollPageDown,
    ScrollToTop,
    ScrollToBottom,
    PreviousPrompt,
    NextPrompt,
};

/// Where the keyboard is. A terminal pane hands plain Ctrl chords to its process, so there the
/// program's own commands have Shift added.
enum class Keyboard { Elsewhere, InTerminal };

/// Whether the thing that a command switches is on now: the sidebar is visible, the view is split.
enum class Switched { Off, On };

struct Entry {
    Command command;
    const char* title;        ///< UTF-8.
    const char* titleWhenOn;  ///< Null if the title is always the same.
    const char* keys;         ///< Portable text such as "Ctrl+Shift+N"; empty without a shortcut.
    const char* terminalKeys; ///< The same while a terminal pane has the keyboard.
};

/// The whole table, one entry for each command, in their order.
[[nodiscard]] std::span<const Entry> all();

[[nodiscard]] QString title(Command command, Switched state = Switched::Off);

/// The chord in the portable text of a key sequence, which is also how it is shown. Empty if the
/// command has none there.
[[nodiscard]] QString keys(Command command, Keyboard keyboard = Keyboard::Elsewhere);

/// `text` with the chord behind it in brackets, for a tool tip: "Edit Space (Ctrl+Alt+,)".
[[nodiscard]] QString hint(const QString& text, Command command,
                           Keyboard keyboard = Keyboard::Elsewhere);

} // namespace Bralto::Shortcuts
