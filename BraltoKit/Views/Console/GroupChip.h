#pragma once

#include "Views/Kit/Control.h"

#include <QMenu>
#include <QPointer>

#include <memory>
#include <optional>

namespace Bralto {

class ConsoleDrag;
class IconButton;
class NameField;
class TerminalGroup;
class TerminalPanel;

/// The tab of one group of panes. An amber dot takes the place of its symbol while one of its
/// conversations waits for the user, a turning ring while one works out of sight. A double click
/// writes another name, a drag takes the tab elsewhere.
class GroupChip final : public Control {
    Q_OBJECT

public:
    enum class State { Quiet, Working, Waiting };

    /// The chip goes with its group.
    GroupChip(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, TerminalGroup& group,
              QWidget* parent);
    ~GroupChip() override;

    [[nodiscard]] const QString& groupId() const { return m_groupId; }
    [[nodiscard]] bool isActive() const;
    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] IconButton& closeButton() const { return *m_close; }
    [[nodiscard]] NameField* nameField() const; ///< Null unless it is being named.
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();
    [[nodiscard]] QSize sizeHint() const override;
    void refresh();
    void rename();

signals:
    /// The chip wants another width.
    void widthChanged();
    /// The user drags the chip, from a place in it.
    void dragRequested(const QPoint& grip);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void followPanes();
    void place();
    void close();
    void returnFocus();
    void setState(State state);
    void paintGround(QPainter& painter) const;
    void paintState(QPainter& painter, const QRectF& icon, const QColor& ink) const;
    [[nodiscard]] QRect nameRect() const;

    TerminalPanel& m_panel;
    ConsoleDrag& m_drag;
    TerminalGroup& m_group;
    QString m_groupId;
    IconButton* m_close;
    QPointer<NameField> m_field;
    State m_state = State::Quiet;
    std::optional<QPoint> m_press; ///< Where a click began that may become a drag.
};

} // namespace Bralto
