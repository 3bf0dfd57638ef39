#pragma once

#include "Views/Kit/Control.h"

#include <QMenu>

namespace Bralto {

class Desktop;
class IconButton;
class Workspace;

/// The project's name at the top of the sidebar. A press opens the project's menu; new files and
/// folders are at hand while the pointer is on it.
class TitleRow final : public Control {
    Q_OBJECT

public:
    TitleRow(Theme& theme, Workspace& workspace, Desktop& desktop, QWidget* parent);

    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void refresh();
    void openMenu();

    Workspace& m_workspace;
    Desktop& m_desktop;
    IconButton* m_newFile;
    IconButton* m_newFolder;
};

} // namespace Bralto
