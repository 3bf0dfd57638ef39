#pragma once

#include "Views/Kit/Control.h"

#include <QMenu>

namespace Bralto {

class TerminalGroup;
class TerminalPanel;

/// The tab of one group of panes. An amber dot takes the place of its symbol while one of its
/// conversations waits for the user.
class GroupChip final : public Control {
    Q_OBJECT

public:
    /// The chip goes with its group.
    GroupChip(Theme& theme, TerminalPanel& panel, TerminalGroup& group, QWidget* parent);

    [[nodiscard]] const QString& groupId() const { return m_groupId; }
    [[nodiscard]] bool isActive() const;
    [[nodiscard]] bool isWaiting() const { return m_isWaiting; }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();
    [[nodiscard]] QSize sizeHint() const override;
    void refresh();

signals:
    /// The chip wants another width.
    void widthChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void followPanes();
    void close();

    TerminalPanel& m_panel;
    TerminalGroup& m_group;
    QString m_groupId;
    bool m_isWaiting = false;
};

} // namespace Bralto
