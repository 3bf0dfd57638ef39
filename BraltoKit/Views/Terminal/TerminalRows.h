#pragma once

#include "Kovalt/Links.h"
#include "Kovalt/Search/SearchService.h"
#include "Kovalt/Selection/SelectionService.h"
#include "Kovalt/Terminal.h"
#include "Views/Terminal/TerminalPainter.h"

#include <QImage>
#include <QPoint>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

class QPainter;

namespace Bralto {

/// The rows of a view as they were painted last, each in a place of its own: a row that scrolls
/// stays where it is painted, and one that did not change is not painted again. Main thread.
class TerminalRows {
public:
    /// What there is to see. Pointers may be null.
    struct Source {
        const Kovalt::Terminal& terminal;
        const Kovalt::SelectionService* selection = nullptr;
        const Kovalt::SearchService* search = nullptr;
        const Kovalt::LinkMatch* link = nullptr;
        int cursorRow = -1; ///< Of the view.
        std::optional<CursorLook> cursor = std::nullopt;
        std::optional<PreeditLook> preedit = std::nullopt;
    };

    /// Another size drops all that was painted.
    void setSize(int cols, int rows, QSize cell);
    /// Paints all rows again, the next time.
    void forget();
    /// Gives the memory back, until the next `refresh`.
    void release();

    /// Paints what differs. Tells the rows of the view that have to be shown again, ascending.
    [[nodiscard]] const std::vector<int>& refresh(TerminalPainter& painter, const Source& source);
    /// Nothing was painted yet, or not since the size changed.
    [[nodiscard]] bool isEmpty() const { return m_picture.isNull(); }
    /// How many rows the last `refresh` painted.
    [[nodiscard]] int paintedRows() const { return m_painted; }

    /// Shows the rows of the last `refresh`. The painter counts in device pixels.
    void draw(QPainter& painter, QPoint at) const;

private:
    /// What a place shows. Rows are compared by address and generation: while neither numbering
    /// nor size change, no other row has both.
    struct Painted {
        const Kovalt::BufferLine* line = nullptr;
        std::uint64_t generation = 0;
        RowLook look;

        bool operator==(const Painted&) const = default;
    };

    [[nodiscard]] std::size_t place(std::int64_t row) const;
    [[nodiscard]] RowLook lookOf(const Source& source, int row) const;
    void noteHits(const Source& source, int top);

    int m_cols = 0;
    int m_rows = 0;
    QSize m_cell;
    QImage m_picture;
    std::vector<Painted> m_places;
    std::vector<Kovalt::SearchHighlight> m_hits; ///< Of the rows in view.
    std::vector<int> m_changed;
    const Kovalt::Buffer* m_buffer = nullptr;
    std::uint64_t m_numbering = 0;
    int m_count = 0;        ///< Of the rows in the buffer.
    std::int64_t m_top = 0; ///< The view's first row at the last refresh, which scrolling keeps.
    int m_painted = 0;
    bool m_isForgotten = true;
};

} // namespace Bralto
