#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

class QVBoxLayout;

namespace Bralto {

class Place;
class ProjectRow;
class Sheet;

/// The window of a project whose folder has gone: the way to another one.
class WelcomeView final : public ThemedWidget {
    Q_OBJECT

public:
    WelcomeView(const ViewServices& services, QWidget* parent);

    [[nodiscard]] const std::vector<ProjectRow*>& rows() const { return m_rows; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void reload();

    ViewServices m_services;
    Sheet* m_sheet;
    Place* m_place;
    QWidget* m_list;
    QVBoxLayout* m_listColumn;
    std::vector<ProjectRow*> m_rows;
};

} // namespace Bralto
