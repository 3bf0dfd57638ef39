#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Selection/Selection.h"
#include "Kovalt/TerminalDelegate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Kovalt {

class GraphemeTable;

/// The selection of one terminal. It stays with its text while the screen scrolls, is cut where
/// rows leave the history, and goes when its text does: when a cell of it no longer shows what
/// was selected, when the text is cut anew for another width, and when the buffer is another.
/// The same text written again keeps it.
///
/// Register it at the terminal, call `setBuffer` when another buffer becomes active, and `sync`
/// after output and after each change of the size, before anything is read. The verbs do so
/// themselves. One thread at a time.
class SelectionService final : public TerminalSelection {
public:
    /// Both must outlive the service.
    SelectionService(const Buffer& buffer, const GraphemeTable& graphemes);

    /// Drops the selection if it is another one.
    void setBuffer(const Buffer& buffer);

    /// Selects what the point takes by itself, in place of what was selected.
    void start(SelectionMode mode, const SelectionPoint& point);
    /// Moves the end that is not fixed to the point. Does nothing after the selection was dropped.
    void extend(const SelectionPoint& point);
    /// Moves the end that is nearer to the point and fixes the other. Without a selection it
    /// starts one.
    void shiftExtend(const SelectionPoint& point);
    /// From the oldest row to the last with anything in it.
    void selectAll();
    void clear();

    /// Compares with the buffer, and follows or drops.
    void sync();
    /// What is selected; none if nothing is, although a start may wait to be extended.
    [[nodiscard]] std::optional<Selection> selection() const;
    /// Rises with every change, for those who draw it.
    [[nodiscard]] std::uint64_t revision() const { return m_revision; }

    /// The columns that are selected in a row of the ring, empty if none are.
    [[nodiscard]] ColumnRange columnsInRow(int ringRow) const;
    [[nodiscard]] bool contains(Position cell) const;
    /// The text in UTF-8, empty without a selection. See `SelectionRules::text`.
    [[nodiscard]] std::string text() const;

    void adjustForInPlaceScroll(const Buffer& buffer, int top, int bottom, int lines) override;

private:
    struct Active {
        Selection selection;
        TextRange fixed; ///< The part that `extend` leaves selected.

        bool operator==(const Active&) const = default;
    };
    /// What a selected row of the screen showed. Rows of the history stay as they are.
    struct ShownRow {
        std::int64_t row;
        int column;
        std::vector<std::int32_t> codes;
    };

    void change(const std::optional<Active>& next);
    void remember();
    [[nodiscard]] bool stillShows(const ShownRow& shown) const;
    [[nodiscard]] std::optional<Active> clipped(std::int64_t top, std::int64_t bottom) const;

    const Buffer* m_buffer;
    const GraphemeTable& m_graphemes;
    std::optional<Active> m_active;
    std::vector<ShownRow> m_shown;
    std::uint64_t m_numbering = 0; ///< Of the buffer, and its columns, when `m_active` was made.
    int m_cols = 0;
    std::uint64_t m_revision = 0;
};

} // namespace Kovalt
