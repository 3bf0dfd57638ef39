#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QPointer>

#include <optional>

namespace Bralto {

class ConsolePane;
class IconButton;
class NameField;
class TerminalPanel;

/// The head of a pane: its symbol, its name, its menu, and the button that closes it. A double
/// click writes another name, a drag takes the pane elsewhere.
class PaneHead final : public ThemedWidget {
    Q_OBJECT

public:
    /// `look` is that of the pane.
    PaneHead(Theme& look, TerminalPanel& panel, ConsolePane& pane, QWidget* parent);

    void setFocusedPane(bool focused);
    void rename();
    [[nodiscard]] NameField* nameField() const; ///< Null unless it is being named.
    [[nodiscard]] IconButton& menuButton() const { return *m_menu; }
    [[nodiscard]] IconButton& closeButton() const { return *m_close; }
    /// The symbol that stands for what fills the pane.
    [[nodiscard]] static QString symbol(const ConsolePane& pane);

signals:
    void menuRequested(const QPoint& globalPosition);
    /// The user drags the head, from a place in it.
    void dragRequested(const QPoint& grip);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void place();
    void refresh();
    [[nodiscard]] QRect nameRect() const;

    TerminalPanel& m_panel;
    ConsolePane& m_pane;
    IconButton* m_menu;
    IconButton* m_close;
    QPointer<NameField> m_field;
    bool m_isFocused = false;
    std::optional<QPoint> m_press; ///< Where a click began that may become a drag.
};

} // namespace Bralto
