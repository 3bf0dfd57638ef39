#pragma once

#include "Views/ViewServices.h"

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

class SidebarList;

/// The column at the left of a project's window: whose project it is, what is open, its files. It
/// lies on the frame and has no ground of its own.
class SidebarView final : public ThemedWidget {
    Q_OBJECT

public:
    SidebarView(const ViewServices& services, QWidget* parent);

    [[nodiscard]] SidebarList& list() const { return *m_list; }

private:
    SidebarList* m_list;
};

} // namespace Bralto
