#pragma once

#include "Kovalt/BufferLine.h"
#include "Kovalt/GraphemeTable.h"
#include "Kovalt/TextPosition.h"
#include "Views/Terminal/TerminalFonts.h"
#include "Views/Terminal/TerminalPalette.h"

#include <QImage>
#include <QRgb>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Bralto {

/// The colours of what lies over a program's own: they may be translucent but for the last three.
struct TerminalInks {
    QRgb selection = 0;
    QRgb hit = 0;
    QRgb currentHit = 0;
    QRgb onCurrentHit = 0;
    QRgb cursor = 0;
    QRgb onCursor = 0; ///< Text under a block.
    QRgb outline = 0;  ///< Of a cursor without the keyboard.

    bool operator==(const TerminalInks&) const = default;
};

/// A cursor as it is at the moment.
struct CursorLook {
    enum class Shape : std::uint8_t { Block, Underline, Bar, Outline };

    int column = 0;
    int columns = 1;
    Shape shape = Shape::Block;

    bool operator==(const CursorLook&) const = default;
};

/// Text that an input method has not finished, in place of what stands in the row.
struct PreeditLook {
    int column = 0;
    QString text;
    int cursor = 0; ///< In UTF-16 units of the text.

    bool operator==(const PreeditLook&) const = default;
};

/// What one row shows besides its cells.
struct RowLook {
    Kovalt::ColumnRange selection;
    Kovalt::ColumnRange link;                               ///< Under the pointer.
    std::vector<std::pair<Kovalt::ColumnRange, bool>> hits; ///< True for the current one.
    std::optional<CursorLook> cursor;
    std::optional<PreeditLook> preedit;

    [[nodiscard]] bool isPlain() const
    {
        return selection.isEmpty() && link.isEmpty() && hits.empty() && !cursor && !preedit;
    }
    bool operator==(const RowLook&) const = default;
};

/// Paints rows of cells into pictures. It keeps what it needs again, but for the time of a call
/// nothing of the terminal. Main thread.
class TerminalPainter {
public:
    explicit TerminalPainter(std::shared_ptr<TerminalFonts> fonts);

    [[nodiscard]] TerminalFonts& fonts() const { return *m_fonts; }
    /// Another look of letters, or another terminal.
    void setFonts(std::shared_ptr<TerminalFonts> fonts);
    void setInks(const TerminalInks& inks) { m_inks = inks; }
    [[nodiscard]] const TerminalInks& inks() const { return m_inks; }
    void setPalette(const TerminalPalette& palette) { m_palette = palette; }
    [[nodiscard]] const TerminalPalette& palette() const { return m_palette; }

    /// Paints every pixel of `cols` cells from the left edge, from row `top` of the picture on. The
    /// picture is of Format_RGB32 and large enough.
    void paintRow(QImage& picture, int top, const Kovalt::BufferLine& line, int cols,
                  const RowLook& look, const Kovalt::GraphemeTable& graphemes);

private:
    /// The pixels between a ground and an ink, by coverage.
    struct Ramp {
        QRgb ground = 0;
        QRgb ink = 0;
        std::array<QRgb, 256> pixels{};
    };
    /// The row that is being painted.
    struct Target {
        QRgb* pixels; ///< Its upper left one.
        std::ptrdiff_t stride;
        int width;
        int cell; ///< The width of a cell, as its mode stretches it.
        int height;
    };
    enum Overlay : std::uint8_t { Selected = 1, Hit = 2, CurrentHit = 4, Hovered = 8, Cursor = 16 };

    void paintCells(const Target& target, const Kovalt::BufferLine& line, int cols);
    void paintCell(const Target& target, int column, const Kovalt::CharData& cell,
                   Kovalt::RenderLineMode mode);
    void paintMask(const Target& target, int column, int columns, const GlyphMask& glyph);
    /// Paints the signs there as one if the font does so; how many cells they took. Else `apart`
    /// is the column behind them.
    [[nodiscard]] int paintLigature(const Target& target, int column,
                                    std::span<const Kovalt::CharData> cells, int& apart);
    void paintLines(const Target& target, int column, int columns,
                    const Kovalt::Attribute& attribute, std::uint8_t overlay,
                    Kovalt::RenderLineMode mode);
    void paintCursor(const Target& target, const CursorLook& cursor);
    void paintPreedit(const Target& target, const PreeditLook& preedit, int cols);
    void paintCluster(const Target& target, int column, const QString& text, int width);
    [[nodiscard]] bool markOverlays(const RowLook& look, int cols);
    [[nodiscard]] TerminalPalette::Inks inks(const Kovalt::Attribute& attribute,
                                             std::uint8_t overlay) const;
    [[nodiscard]] const GlyphMask& mask(const Kovalt::CharData& cell, Kovalt::RenderLineMode mode);
    void use(const TerminalPalette::Inks& inks);
    [[nodiscard]] const Ramp& ramp(QRgb ground, QRgb ink);

    static constexpr std::size_t RampCount = 64;

    std::shared_ptr<TerminalFonts> m_fonts;
    TerminalInks m_inks;
    TerminalPalette m_palette;
    std::vector<Ramp> m_ramps;
    std::vector<std::uint8_t> m_overlays; ///< A byte a column, while a row has any.
    std::unordered_map<std::uint64_t, const GlyphMask*> m_clusters;
    std::uint64_t m_fontGeneration = 0;
    const Kovalt::GraphemeTable* m_graphemes = nullptr;
    TerminalPalette::Inks m_current{};
    const Ramp* m_ramp = nullptr;
};

} // namespace Bralto
