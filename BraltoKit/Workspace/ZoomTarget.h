#pragma once

#include "Base/Zoom.h"
#include "Workspace/FocusArea.h"
#include "Workspace/WorkspaceTab.h"

#include <optional>

namespace Bralto {

class Workspace;

namespace ZoomTarget {

/// The area that a zoom acts on: where the keyboard is, else what the focused tab shows; without
/// a tab the console if it is open.
[[nodiscard]] Zoom::Area area(FocusArea focus, const std::optional<WorkspaceTab>& focusedTab,
                              bool isPanelVisible);

[[nodiscard]] Zoom::Area area(const Workspace& workspace);

} // namespace ZoomTarget

} // namespace Bralto
