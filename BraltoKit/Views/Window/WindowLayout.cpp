#include "Views/Window/WindowLayout.h"

#include <algorithm>
#include <cmath>

namespace Bralto::WindowLayout {

Screen screen(Role role, bool hasProject)
{
    if (hasProject)
        return Screen::Project;
    return role == Role::FolderApplication ? Screen::Welcome : Screen::Home;
}

EditorLayout target(bool isPanelVisible, bool isPanelMaximized, bool hasActiveTab)
{
    if (!isPanelVisible)
        return EditorLayout::Full;
    if (!hasActiveTab || isPanelMaximized)
        return EditorLayout::Hidden;
    return EditorLayout::Shared;
}

bool shrinksEditor(EditorLayout present, EditorLayout next)
{
    return next > present;
}

double sidebarWidth(std::optional<double> stored)
{
    if (!stored || !std::isfinite(*stored))
        return DefaultSidebar;
    return std::clamp(*stored, SmallestSidebar, LargestSidebar);
}

double draggedSidebar(double atStart, double translation)
{
    return std::clamp(atStart + translation, SmallestSidebar, LargestSidebar);
}

std::optional<double> draggedShare(double atStart, double translation, double total,
                                   double smallest, double largest)
{
    if (total <= 0)
        return std::nullopt;
    return std::clamp(atStart + translation / total, smallest, largest);
}

} // namespace Bralto::WindowLayout
