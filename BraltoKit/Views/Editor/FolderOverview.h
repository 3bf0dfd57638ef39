#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

class Place;
class SpaceTile;

/// A project with nothing open: its icon and name, and the two things to start with.
class FolderOverview final : public ThemedWidget {
    Q_OBJECT

public:
    FolderOverview(const ViewServices& services, QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    ViewServices m_services;
    Place* m_place;
    SpaceTile* m_tile;
};

} // namespace Bralto
