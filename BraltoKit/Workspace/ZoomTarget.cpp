#include "Workspace/ZoomTarget.h"

#include "Workspace/Workspace.h"

namespace Bralto::ZoomTarget {

Zoom::Area area(FocusArea focus, const std::optional<WorkspaceTab>& focusedTab, bool isPanelVisible)
{
    if (focus == FocusArea::Sidebar)
        return Zoom::Area::Files;
    if (focus == FocusArea::Terminal)
        return Zoom::Area::Terminal;
    if (focusedTab)
        return focusedTab->browser() ? Zoom::Area::Browser : Zoom::Area::Editor;
    return isPanelVisible ? Zoom::Area::Terminal : Zoom::Area::Files;
}

Zoom::Area area(const Workspace& workspace)
{
    return area(workspace.focusArea(), workspace.focusedTab(), workspace.terminal().isVisible());
}

} // namespace Bralto::ZoomTarget
