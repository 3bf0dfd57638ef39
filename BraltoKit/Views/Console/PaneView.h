#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QPointer>

namespace Bralto {

class ConsolePane;
class PaneHead;
class Sheet;
class TerminalPanel;

/// One pane of the console: a small sheet with a head that names it, and what it holds.
class PaneView final : public ThemedWidget {
    Q_OBJECT

public:
    /// Whether the pane's head shows; a low console with a single pane leaves it out.
    enum class Head { Hidden, Shown };

    /// `content` belongs to the view from now on. The view goes with its pane.
    PaneView(Theme& theme, TerminalPanel& panel, ConsolePane& pane, QWidget* content,
             QWidget* parent);
    ~PaneView() override;

    [[nodiscard]] const QString& paneId() const { return m_paneId; }
    [[nodiscard]] QWidget* content() const { return m_content; }
    void setHead(Head head);
    /// Whether it is the pane that has, or would get, the keyboard.
    void setFocusedPane(bool focused);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();
    void markFocused(const QWidget* focus);

    TerminalPanel& m_panel;
    ConsolePane& m_pane;
    QString m_paneId;
    Sheet* m_sheet;
    QWidget* m_body;
    PaneHead* m_head;
    QWidget* m_content;
};

} // namespace Bralto
