#include "Views/Kit/Shortcuts.h"

namespace Bralto::Shortcuts {

QKeySequence sequence(Command command)
{
    switch (command) {
    case Command::New:
        return {Qt::CTRL | Qt::Key_N};
    case Command::NewBrowserTab:
        return {Qt::CTRL | Qt::Key_T};
    case Command::NewFolder:
        return {Qt::CTRL | Qt::SHIFT | Qt::Key_N};
    case Command::Open:
        return {Qt::CTRL | Qt::Key_O};
    case Command::AllProjects:
        return {Qt::CTRL | Qt::SHIFT | Qt::Key_O};
    case Command::Close:
        return {Qt::CTRL | Qt::Key_W};
    case Command::CloseFolder:
        return {Qt::CTRL | Qt::SHIFT | Qt::Key_W};
    case Command::Save:
        return {Qt::CTRL | Qt::ALT | Qt::Key_S};
    case Command::SaveAll:
        return {Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_S};
    case Command::ToggleSidebar:
        return {Qt::CTRL | Qt::Key_S};
    case Command::ToggleTerminal:
        return {Qt::CTRL | Qt::Key_J};
    case Command::MaximizeTerminal:
        return {Qt::CTRL | Qt::Key_K};
    case Command::ToggleSplit:
        return {Qt::CTRL | Qt::ALT | Qt::Key_Backslash};
    case Command::EditSpace:
        return {Qt::CTRL | Qt::ALT | Qt::Key_Comma};
    case Command::HiddenFiles:
        return {Qt::CTRL | Qt::SHIFT | Qt::Key_Period};
    case Command::ZoomIn:
        return {Qt::CTRL | Qt::Key_Equal};
    case Command::ZoomOut:
        return {Qt::CTRL | Qt::Key_Minus};
    case Command::ActualSize:
        return {Qt::CTRL | Qt::Key_0};
    case Command::NewChat:
        return {Qt::CTRL | Qt::ALT | Qt::Key_J};
    case Command::NextTab:
        return {Qt::CTRL | Qt::Key_Tab};
    case Command::PreviousTab:
        return {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab};
    case Command::Search:
        return {Qt::CTRL | Qt::Key_F};
    case Command::Menu:
        return {Qt::Key_F10};
    case Command::Rename:
        return {Qt::Key_F2};
    case Command::MoveToTrash:
        return {Qt::Key_Delete};
    }
    return {};
}

QString text(Command command)
{
    return sequence(command).toString(QKeySequence::NativeText);
}

} // namespace Bralto::Shortcuts
