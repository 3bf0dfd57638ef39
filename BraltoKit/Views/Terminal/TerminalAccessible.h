#pragma once

#include "Kovalt/Position.h"
#include "Kovalt/Terminal.h"

#include <QAccessibleWidget>
#include <QString>

#include <optional>
#include <vector>

namespace Bralto {

class TerminalView;

/// The screen of a terminal as one text, a line a row, for assistive technology.
struct ScreenText {
    QString text;
    std::vector<Kovalt::Position> cells; ///< Of each UTF-16 unit; rows are those of the view.

    [[nodiscard]] static ScreenText of(const Kovalt::Terminal& terminal);
    /// The nearest unit that is not before the cell.
    [[nodiscard]] int offsetOf(Kovalt::Position cell) const;
};

/// Tells assistive technology what a terminal's view shows, where its cursor is and what is
/// selected.
class TerminalAccessible final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TerminalAccessible(TerminalView& view);

    /// Makes views of this program accessible; once is enough.
    static void install();
    /// Something else is shown. Costs nothing unless somebody listens.
    static void noteFrame(TerminalView& view);

    [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;

    void selection(int index, int* start, int* end) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int position) override;
    [[nodiscard]] QString text(int start, int end) const override;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int start, int end) override;
    [[nodiscard]] QString attributes(int offset, int* start, int* end) const override;

private:
    [[nodiscard]] TerminalView& view() const;
    [[nodiscard]] ScreenText screen() const;
};

} // namespace Bralto
