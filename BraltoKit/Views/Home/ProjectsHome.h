#pragma once

#include "Views/Home/RecentProjects.h"
#include "Views/Kit/ThemedWidget.h"

#include <QMenu>

class QVBoxLayout;

namespace Bralto {

class Field;
class IconButton;
class Label;
class Place;
class ProjectRow;
class Sheet;
class TextButton;

/// The home screen: the projects that were used last, and the ways to one more.
class ProjectsHome final : public ThemedWidget {
    Q_OBJECT

public:
    ProjectsHome(const ViewServices& services, QWidget* parent);

    [[nodiscard]] Field& search() const { return *m_search; }
    [[nodiscard]] const std::vector<ProjectRow*>& rows() const { return m_rows; }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHead();
    void reload();
    void filter();
    void place();

    ViewServices m_services;
    Sheet* m_sheet;
    QWidget* m_content;
    QWidget* m_column;
    Field* m_search;
    IconButton* m_more = nullptr;
    QWidget* m_list;
    QVBoxLayout* m_listColumn;
    Label* m_heading;
    Label* m_count;
    Label* m_noMatch;
    Place* m_empty;
    std::vector<ProjectEntry> m_entries;
    std::vector<ProjectRow*> m_rows;
};

} // namespace Bralto
