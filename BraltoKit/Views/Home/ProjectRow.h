#pragma once

#include "Views/Home/RecentProjects.h"
#include "Views/Kit/Control.h"

#include <QMenu>

namespace Bralto {

class IconButton;

/// One project as a row: icon, name, path and when it was used. While the pointer or the keyboard
/// is on it, what can be done with it takes the place of the time.
class ProjectRow final : public Control {
    Q_OBJECT

public:
    /// The path shows in a list that is wide enough.
    enum class Size { Small, Large };

    ProjectRow(const ViewServices& services, const ProjectEntry& entry, Size size, QWidget* parent);

    [[nodiscard]] const ProjectEntry& entry() const { return m_entry; }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void open();
    void showActions();
    [[nodiscard]] QString when() const;

    ViewServices m_services;
    ProjectEntry m_entry;
    Size m_size;
    class TextButton* m_open;
    IconButton* m_more;
};

} // namespace Bralto
