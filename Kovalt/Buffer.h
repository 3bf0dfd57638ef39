#pragma once

#include "Kovalt/CircularBufferLineList.h"
#include "Kovalt/Position.h"
#include "Kovalt/SemanticState.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Kovalt {

/// What a buffer asks of the terminal while text goes in.
class BufferHost {
public:
    /// The cursor stands in the last row of the scroll region and needs another one.
    virtual void scroll(bool isWrapped) = 0;
    /// The code of the open hyperlink, 0 for none. Asked once a run of text.
    [[nodiscard]] virtual std::uint16_t resolvePayload() = 0;

protected:
    ~BufferHost() = default;
};

/// A screen with its history: rows in a ring, a cursor, margins, tab stops.
///
/// Row `y` of the screen is `lines()[yBase + y]`; the view's first row is `lines()[yDisp]`, which
/// is less than `yBase` while the user looks at the history. The ring holds `yBase + rows()` rows.
/// `x` may stand behind the last column: then the next character wraps.
///
/// The fields are plain, since the control sequences set most of them. What reads them keeps
/// inside the screen whatever they hold. One thread at a time.
class Buffer final : private CircularBufferLineList::Owner {
public:
    struct Options {
        int cols = 80;
        int rows = 25;
        int tabStopWidth = 8;
        std::optional<int> scrollback; ///< Rows of history; none means that there is no history.
        BidiPresentationState bidiState;
    };
    explicit Buffer(const Options& options);
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer();

    /// Must be set before text goes in, and outlive the buffer.
    void setHost(BufferHost* host) { m_host = host; }

    int x = 0;
    int y = 0;
    int xDisp = 0;
    int yDisp = 0;
    int xBase = 0;
    int yBase = 0;
    /// Rows that have left the ring at its top since it was made. A row's index plus this stays
    /// the same as long as the row lives, until the next reflow (`numbering`).
    std::int64_t linesTop = 0;
    int scrollTop = 0;
    int scrollBottom = 0;
    int marginLeft = 0;
    int marginRight = 0;
    std::vector<bool> tabStops; ///< One a column.

    /// The last character was printed in the last column before the right edge or margin, and the
    /// cursor has not moved since.
    bool waits = false;

    int savedX = 0;
    int savedY = 0;
    bool savedOriginMode = false;
    bool savedMarginMode = false;
    bool savedWraparound = false;
    bool savedReverseWraparound = false;
    bool savedWaits = false;
    Attribute savedAttr;
    std::uint32_t savedCharset = 0; ///< The terminal's own encoding of its character sets.

    Attribute curAttr;
    bool insertMode = false;
    bool marginMode = false;
    bool wraparound = true;

    SemanticState semantic;
    BidiPresentationState defaultBidiState;

    /// Another number whenever rows are numbered anew: by a reflow and by `clear`.
    [[nodiscard]] std::uint64_t numbering() const { return m_numbering; }
    [[nodiscard]] int cols() const { return m_cols; }
    [[nodiscard]] int rows() const { return m_rows; }
    [[nodiscard]] bool hasScrollback() const { return m_scrollback.has_value(); }
    [[nodiscard]] std::optional<int> scrollback() const { return m_scrollback; }
    [[nodiscard]] CircularBufferLineList& lines() { return m_lines; }
    [[nodiscard]] const CircularBufferLineList& lines() const { return m_lines; }
    /// A row of the screen; out of range the nearest.
    [[nodiscard]] BufferLine& screenLine(int row)
    {
        if (yBase < 0 || m_lines.count() < yBase + m_rows) [[unlikely]]
            ensureScreen();
        return m_lines[yBase + std::clamp(row, 0, m_rows - 1)];
    }
    /// The column that the cursor is shown in: while it waits behind the right edge or margin, the
    /// last one before it.
    [[nodiscard]] int standingColumn() const
    {
        const int limit = rightLimit();
        return waits && x == limit + 1 ? limit : std::clamp(x, 0, m_cols - 1);
    }
    /// The row of the cursor.
    [[nodiscard]] BufferLine& cursorLine() { return screenLine(y); }

    [[nodiscard]] std::unique_ptr<BufferLine> getBlankLine(const Attribute& attribute,
                                                           bool isWrapped = false) const;
    [[nodiscard]] static CharData getNullCell(const Attribute& attribute = {});
    /// The cell at a column and row of the view; a null cell outside.
    [[nodiscard]] CharData getChar(Position position) const;
    /// The cell at a column and a row of the ring; a null cell outside.
    [[nodiscard]] CharData getCharAtBufferRelative(Position position) const;
    [[nodiscard]] bool isCursorInViewPort() const;

    /// Blank rows for the whole screen, only if there are none.
    void fillViewportRows(const Attribute& attribute = {});
    /// An empty ring, cursor, view, margins and shell marks as at the start. Follow it with
    /// `fillViewportRows`.
    void clear();
    void softReset();
    /// Rows and columns of at least 1. History reflows when the width changes.
    void resize(int newCols, int newRows);
    /// Drops the history; the screen stays.
    void clearScrollback();
    /// None means no history.
    void changeHistorySize(std::optional<int> scrollback);

    /// Index -1 sets stops at each multiple of the width; else stops before the index stay and the
    /// same grid goes on from the last of them. A width of 0 sets nothing.
    void setupTabStops(int index, int tabStopWidth);
    /// The column of the next stop, or the last column (the right margin in margin mode). Index -1
    /// means the cursor.
    [[nodiscard]] int nextTabStop(int index = -1, bool inMargins = false) const;
    /// The column of the stop before the index (-1: the cursor), 0 if there is none.
    [[nodiscard]] int previousTabStop(int index = -1) const;
    void tabSet(int column);
    void tabClear(int column);
    void tabClearAll();

    /// Prints one character of 1 or 2 columns at the cursor: code, width and attribute are taken
    /// from the cell, link and shell mark from host and `semantic`.
    void insertCharacter(const CharData& character);
    /// The same with a link that is known already.
    void insertCharacter(const CharData& character, std::uint16_t payload);
    /// Prints bytes 0x20 to 0x7E, of which it takes all but in insert mode, where it takes none.
    /// Returns how many were taken.
    [[nodiscard]] std::size_t insertAsciiRun(std::string_view text, const Attribute& attribute);
    /// The same with a link that is known already.
    [[nodiscard]] std::size_t insertAsciiRun(std::string_view text, const Attribute& attribute,
                                             std::uint16_t payload);
    /// A character that is one scalar, of 1 or 2 columns.
    struct PrintedScalar {
        char32_t scalar;
        std::int8_t width;
    };
    /// Prints scalars under one link as `insertCharacter` would each.
    void insertScalarRun(std::span<const PrintedScalar> run, const Attribute& attribute,
                         std::uint16_t payload);

    /// One row up in the scroll region, a blank one at its bottom. A region of the whole screen
    /// hands its top row to the history, and `yDisp` goes along unless the user has scrolled back.
    void scrollUp(const Attribute& fill, bool isWrapped, const BidiPresentationState& bidiState,
                  bool userScrolling);
    /// The rows `top` to `bottom` of the screen move up or down by `n` within themselves; blank
    /// ones come in. Nothing goes to the history, nothing is allocated.
    void shiftRowsUp(int top, int bottom, int n, const Attribute& fill,
                     const BidiPresentationState& bidiState);
    void shiftRowsDown(int top, int bottom, int n, const Attribute& fill,
                       const BidiPresentationState& bidiState);

    /// Adds an image to a row of the ring.
    void attachImage(std::shared_ptr<TerminalImage> image, int ringRow);
    void clearImagesFromLine(int ringRow);
    void recalculateLinesWithImagesCount();
    [[nodiscard]] int linesWithImagesCount() const { return m_linesWithImagesCount; }

private:
    std::unique_ptr<BufferLine> makeEmpty() override;
    void linePushed(bool hasImages) override;
    void lineRecycled(bool hadImages) override;

    [[nodiscard]] static int getCorrectBufferLength(int rows, std::optional<int> scrollback);
    [[nodiscard]] int rightLimit() const
    {
        return marginMode ? std::clamp(marginRight, 0, m_cols - 1) : m_cols - 1;
    }
    [[nodiscard]] int leftLimit() const;
    void ensureScreen();
    void beginRow(BufferLine& line, const Attribute& fill, bool isWrapped,
                  const BidiPresentationState& bidiState);
    [[nodiscard]] BufferHost& host() const;
    void wrapLine();
    void trimOldest(int n);
    void shrinkRows(int newRows);
    /// Returns by how many rows the screen's text has moved down.
    [[nodiscard]] int growRows(int newRows);
    void resizeLines();
    void reflow(int oldCols, int cursorX, int savedCursorX);
    void assertLineSizes() const;

    int m_cols;
    int m_rows;
    std::optional<int> m_scrollback;
    int m_linesWithImagesCount = 0;
    std::uint64_t m_numbering = 0;
    BufferHost* m_host = nullptr;
    CircularBufferLineList m_lines;
};

} // namespace Kovalt
