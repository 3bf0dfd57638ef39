#pragma once

#include "Base/Shortcuts.h"
#include "Workspace/FocusArea.h"

#include <QString>

class QWidget;

namespace Bralto {

/// Tells which part of the program's window has the keyboard, from the widget that has it.
class WindowFocus final : public FocusReader {
public:
    [[nodiscard]] FocusArea current() const override;
    [[nodiscard]] QString focusedTabId() const override;

    /// The area of a widget: that of the nearest one above it that belongs to an area; a field
    /// elsewhere counts as content.
    [[nodiscard]] static FocusArea areaOf(const QWidget* widget);

    /// Everything in `widget` belongs to `area`.
    static void mark(QWidget& widget, FocusArea area);
    /// Everything in `widget` belongs to a tab, and to the content.
    static void markTab(QWidget& widget, const QString& tabId);
    /// The widget hands what is typed to a process; what lies on it doesn't.
    static void markTerminal(QWidget& widget);
    /// Which chords work while the widget has the keyboard.
    [[nodiscard]] static Shortcuts::Keyboard keyboardOf(const QWidget& widget);
};

} // namespace Bralto
