#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

class Place;

/// A page tab where pages can't be shown: its address, and the way to it.
class PageScreen final : public ThemedWidget {
    Q_OBJECT

public:
    PageScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    ViewServices m_services;
    WorkspaceTab m_tab; ///< Keeps the page while this view shows it.
    Place* m_place;
};

} // namespace Bralto
