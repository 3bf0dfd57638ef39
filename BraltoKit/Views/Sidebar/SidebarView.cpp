#include "Views/Sidebar/SidebarView.h"

#include "Views/Sidebar/SidebarList.h"
#include "Views/Sidebar/TitleRow.h"
#include "Views/Window/WindowFocus.h"

#include <QVBoxLayout>

namespace Bralto {

SidebarView::SidebarView(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_list(new SidebarList(services, this))
{
    WindowFocus::mark(*this, FocusArea::Sidebar);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Measure::FrameInset, 0, Measure::FrameInset, Measure::FrameInset);
    column->setSpacing(0);
    column->addWidget(new TitleRow(services.theme, services.workspace, services.desktop, this));
    column->addWidget(m_list, 1);
}

} // namespace Bralto
