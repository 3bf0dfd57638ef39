#include "Base/Shortcuts.h"

#include <array>

namespace Bralto::Shortcuts {

namespace {

using enum Command;

// Shells and agents use every Ctrl+letter, Ctrl+\ and Ctrl+]; in a terminal those commands get
// Shift. Where that chord belongs to another command, the other one gets Alt as well, and so does
// its counterpart. Sizes, Ctrl+Tab and all Ctrl+Alt chords mean nothing to a shell and stay.
constexpr std::array Table{
    // clang-format off
    Entry{CheckForUpdates,    "Check for Updates…",        nullptr,                 "",                 ""},
    Entry{NotificationHooks,  "Claude Notification Hooks", nullptr,                 "",                 ""},

    Entry{New,                "New",                       nullptr,                 "Ctrl+N",           "Ctrl+Shift+N"},
    Entry{NewFile,            "New File…",                 nullptr,                 "",                 ""},
    Entry{NewBrowserTab,      "New Browser Tab",           nullptr,                 "Ctrl+T",           "Ctrl+Shift+T"},
    Entry{NewFolder,          "New Folder…",               nullptr,                 "Ctrl+Shift+N",     "Ctrl+Alt+Shift+N"},
    Entry{Open,               "Open…",                     nullptr,                 "Ctrl+O",           "Ctrl+Shift+O"},
    Entry{AllProjects,        "All Projects",              nullptr,                 "Ctrl+Shift+O",     "Ctrl+Alt+Shift+O"},
    Entry{OpenRecent,         "Open Recent",               nullptr,                 "",                 ""},
    Entry{ClearMenu,          "Clear Menu",                nullptr,                 "",                 ""},

    Entry{Close,              "Close",                     nullptr,                 "Ctrl+W",           "Ctrl+Shift+W"},
    Entry{CloseFolder,        "Close Folder",              nullptr,                 "Ctrl+Shift+W",     "Ctrl+Alt+Shift+W"},
    Entry{Save,               "Save",                      nullptr,                 "Ctrl+Alt+S",       "Ctrl+Alt+S"},
    Entry{SaveAll,            "Save All",                  nullptr,                 "Ctrl+Alt+Shift+S", "Ctrl+Alt+Shift+S"},
    Entry{SaveAutomatically,  "Save Automatically",        nullptr,                 "",                 ""},

    Entry{ToggleSidebar,      "Show Sidebar",              "Hide Sidebar",          "Ctrl+S",           "Ctrl+Shift+S"},
    Entry{ToggleTerminal,     "Show Terminal",             "Hide Terminal",         "Ctrl+J",           "Ctrl+Shift+J"},
    Entry{ToggleTerminalSize, "Full-Height Terminal",      "Restore Terminal Size", "Ctrl+K",           "Ctrl+Shift+K"},
    Entry{ToggleSplit,        "Split View",                "Close Split View",      "Ctrl+Alt+\\",      "Ctrl+Alt+\\"},
    Entry{EditSpace,          "Edit Space…",               nullptr,                 "Ctrl+Alt+,",       "Ctrl+Alt+,"},
    Entry{ShowHiddenFiles,    "Show Hidden Files",         nullptr,                 "Ctrl+Shift+.",     "Ctrl+Shift+."},
    Entry{ZoomIn,             "Zoom In",                   nullptr,                 "Ctrl+=",           "Ctrl+="},
    Entry{ZoomOut,            "Zoom Out",                  nullptr,                 "Ctrl+-",           "Ctrl+-"},
    Entry{ActualSize,         "Actual Size",               nullptr,                 "Ctrl+0",           "Ctrl+0"},

    Entry{NewClaudeBeside,    "New Claude Beside",         nullptr,                 "Ctrl+\\",          "Ctrl+Shift+\\"},
    Entry{NewClaudeChat,      "New Claude Chat",           nullptr,                 "Ctrl+Alt+J",       "Ctrl+Alt+J"},
    Entry{NewShellBeside,     "New Shell Beside",          nullptr,                 "Ctrl+]",           "Ctrl+Shift+]"},
    Entry{NewTerminalTab,     "New Terminal Tab",          nullptr,                 "",                 ""},
    Entry{ToggleChatView,     "Show as Chat",              "Show as Terminal",      "",                 ""},
    Entry{StylePane,          "Style Pane…",               nullptr,                 "",                 ""},
    Entry{KillTerminal,       "Kill Terminal",             nullptr,                 "",                 ""},

    Entry{NextTab,            "Next Tab",                  nullptr,                 "Ctrl+Tab",         "Ctrl+Tab"},
    Entry{PreviousTab,        "Previous Tab",              nullptr,                 "Ctrl+Shift+Tab",   "Ctrl+Shift+Tab"},
    Entry{NextEditorTab,      "Next Editor Tab",           nullptr,                 "Ctrl+Shift+]",     "Ctrl+Alt+Shift+]"},
    Entry{PreviousEditorTab,  "Previous Editor Tab",       nullptr,                 "Ctrl+Shift+[",     "Ctrl+Alt+Shift+["},
    Entry{OpenLocation,       "Open Location…",            nullptr,                 "Ctrl+L",           "Ctrl+Shift+L"},
    Entry{ReloadPage,         "Reload Page",               nullptr,                 "Ctrl+R",           "Ctrl+Shift+R"},
    Entry{ClearBrowsingData,  "Clear Browsing Data…",      nullptr,                 "",                 ""},
    Entry{RevealInFinder,     "Reveal in Finder",          nullptr,                 "Ctrl+Alt+R",       "Ctrl+Alt+R"},

    Entry{Quit,               "Quit Bralto",               nullptr,                 "Ctrl+Q",           "Ctrl+Shift+Q"},

    Entry{Copy,               "Copy",                      nullptr,                 "Ctrl+C",           "Ctrl+Shift+C"},
    Entry{Paste,              "Paste",                     nullptr,                 "Ctrl+V",           "Ctrl+Shift+V"},
    Entry{PasteSelection,     "Paste Selection",           nullptr,                 "",                 "Shift+Ins"},
    Entry{SelectAll,          "Select All",                nullptr,                 "Ctrl+A",           "Ctrl+Shift+A"},
    Entry{Find,               "Find…",                     nullptr,                 "Ctrl+F",           "Ctrl+Shift+F"},
    Entry{ScrollPageUp,       "Scroll Page Up",            nullptr,                 "",                 "Shift+PgUp"},
    Entry{ScrollPageDown,     "Scroll Page Down",          nullptr,                 "",                 "Shift+PgDown"},
    Entry{ScrollToTop,        "Scroll to Top",             nullptr,                 "",                 "Shift+Home"},
    Entry{ScrollToBottom,     "Scroll to Bottom",          nullptr,                 "",                 "Shift+End"},
    Entry{PreviousPrompt,     "Previous Prompt",           nullptr,                 "",                 "Ctrl+Shift+Up"},
    Entry{NextPrompt,         "Next Prompt",               nullptr,                 "",                 "Ctrl+Shift+Down"},
    // clang-format on
};

consteval bool isInOrder()
{
    for (std::size_t index = 0; index < Table.size(); ++index) {
        if (std::size_t(Table[index].command) != index)
            return false;
    }
    return true;
}
static_assert(isInOrder());

const Entry& entry(Command command)
{
    return Table[std::size_t(command)];
}

} // namespace

std::span<const Entry> all()
{
    return Table;
}

QString title(Command command, Switched state)
{
    const Entry& found = entry(command);
    const bool hasOther = state == Switched::On && found.titleWhenOn;
    return QString::fromUtf8(hasOther ? found.titleWhenOn : found.title);
}

QString keys(Command command, Keyboard keyboard)
{
    const Entry& found = entry(command);
    return QString::fromLatin1(keyboard == Keyboard::InTerminal ? found.terminalKeys : found.keys);
}

QString hint(const QString& text, Command command, Keyboard keyboard)
{
    const QString chord = keys(command, keyboard);
    return chord.isEmpty() ? text : text + QStringLiteral(" (") + chord + u')';
}

} // namespace Bralto::Shortcuts
