#pragma once

#include "Views/Kit/Control.h"
#include "Views/ViewServices.h"

#include <QMenu>
#include <QPixmap>

namespace Bralto {

class IconButton;

/// One tab: symbol, name, and a close button that shows unsaved text while the pointer is away.
class EditorTab final : public Control {
    Q_OBJECT

public:
    EditorTab(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent);

    [[nodiscard]] const QString& tabId() const { return m_tab.id(); }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();
    [[nodiscard]] IconButton* closeButton() const { return m_close; }
    [[nodiscard]] bool isActive() const;
    [[nodiscard]] bool hasUnsavedText() const;
    [[nodiscard]] QSize sizeHint() const override;
    void refresh();

signals:
    /// The tab wants another width.
    void widthChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void followContent();
    void followIcon();
    void activate();
    void close();
    void showClose();
    [[nodiscard]] QString symbol() const;

    ViewServices m_services;
    WorkspaceTab m_tab;
    IconButton* m_close;
    QPixmap m_icon; ///< The page's own; null if it has none.
};

} // namespace Bralto
