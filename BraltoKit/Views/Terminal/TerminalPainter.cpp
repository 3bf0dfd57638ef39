#include "Views/Terminal/TerminalPainter.h"

#include "Kovalt/UnicodeUtil.h"
#include "Views/Terminal/CellPixels.h"
#include "Views/Terminal/TerminalLigatures.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace Bralto {
namespace {

using Kovalt::BufferLine;
using Kovalt::CharData;
using Kovalt::RenderLineMode;
using Kovalt::UnderlineStyle;
namespace Style = Kovalt::CharacterStyle;

constexpr std::uint8_t styleOf(const Kovalt::Attribute& attribute)
{
    return std::uint8_t((attribute.has(Style::Bold) ? TerminalFonts::Bold : 0) |
                        (attribute.has(Style::Italic) ? TerminalFonts::Italic : 0));
}

} // namespace

TerminalPainter::TerminalPainter(std::shared_ptr<TerminalFonts> fonts)
    : m_fonts(std::move(fonts))
    , m_ramps(RampCount)
{
}

void TerminalPainter::setFonts(std::shared_ptr<TerminalFonts> fonts)
{
    m_fonts = std::move(fonts);
    m_clusters.clear();
}

void TerminalPainter::paintRow(QImage& picture, int top, const BufferLine& line, int cols,
                               const RowLook& look, const Kovalt::GraphemeTable& graphemes)
{
    m_fonts->trim();
    if (m_fontGeneration != m_fonts->generation() || m_graphemes != &graphemes) {
        m_fontGeneration = m_fonts->generation();
        m_graphemes = &graphemes;
        m_clusters.clear();
    }
    const RenderLineMode mode = line.renderMode();
    const int stretch = mode == RenderLineMode::Single ? 1 : 2;
    const QSize cell = m_fonts->cell();
    const Target target{reinterpret_cast<QRgb*>(picture.bits()) +
                            std::ptrdiff_t(top) * (picture.bytesPerLine() / 4),
                        picture.bytesPerLine() / 4, cols * cell.width(), cell.width() * stretch,
                        cell.height()};

    const bool hasOverlays = markOverlays(look, cols);
    if (!hasOverlays)
        m_overlays.clear();
    paintCells(target, line, (cols + stretch - 1) / stretch);
    if (look.preedit)
        paintPreedit(target, *look.preedit, cols / stretch);
    else if (look.cursor)
        paintCursor(target, *look.cursor);
}

bool TerminalPainter::markOverlays(const RowLook& look, int cols)
{
    if (look.isPlain())
        return false;
    m_overlays.assign(std::size_t(cols), 0);
    const auto mark = [&](int begin, int end, Overlay overlay) {
        for (int column = std::max(begin, 0); column < std::min(end, cols); ++column)
            m_overlays[std::size_t(column)] |= overlay;
    };
    mark(look.selection.begin, look.selection.end, Selected);
    mark(look.link.begin, look.link.end, Hovered);
    for (const auto& [columns, isCurrent] : look.hits)
        mark(columns.begin, columns.end, isCurrent ? CurrentHit : Hit);
    if (look.cursor && look.cursor->shape == CursorLook::Shape::Block && !look.preedit)
        mark(look.cursor->column, look.cursor->column + look.cursor->columns, Cursor);
    return true;
}

void TerminalPainter::paintCells(const Target& target, const BufferLine& line, int cols)
{
    const std::span<const CharData> live = line.live();
    const RenderLineMode mode = line.renderMode();
    const int liveCols = std::min(int(live.size()), cols);
    const bool hasOverlays = !m_overlays.empty();
    Kovalt::Attribute attribute;
    std::uint8_t overlay = 0;
    bool isFresh = true;
    const auto prepare = [&](const Kovalt::Attribute& next, int column) {
        const std::uint8_t over = hasOverlays ? m_overlays[std::size_t(column)] : std::uint8_t(0);
        if (!isFresh && next == attribute && over == overlay)
            return;
        attribute = next;
        overlay = over;
        isFresh = false;
        use(inks(next, over));
    };

    const bool hasLigatures = m_fonts->face().hasLigatures && mode == RenderLineMode::Single;
    int apart = 0; // Signs before this column are not drawn as one.
    int column = 0;
    while (column < liveCols) {
        const CharData& cell = live[std::size_t(column)];
        prepare(cell.attribute, column);
        int taken = 0;
        if (hasLigatures && column >= apart) {
            int end = column + 1;
            while (hasOverlays && end < liveCols && m_overlays[std::size_t(end)] == overlay)
                ++end;
            const int length = (hasOverlays ? end : liveCols) - column;
            taken = paintLigature(target, column,
                                  live.subspan(std::size_t(column), std::size_t(length)), apart);
        }
        if (taken == 0) {
            paintCell(target, column, cell, mode);
            taken = std::max<int>(1, cell.width);
        }
        const bool hasLines = cell.attribute.underlineStyle != UnderlineStyle::None ||
                              cell.attribute.has(Style::Underline | Style::CrossedOut) ||
                              (overlay & Hovered) != 0;
        if (hasLines)
            paintLines(target, column, taken, cell.attribute, overlay, mode);
        column += taken;
    }

    const CharData blank = line.blank();
    while (column < cols) {
        prepare(blank.attribute, column);
        int end = cols;
        if (hasOverlays) {
            end = column + 1;
            while (end < cols && m_overlays[std::size_t(end)] == overlay)
                ++end;
        }
        const int left = column * target.cell;
        CellPixels::fill({target.pixels + left, target.stride,
                          std::min(end * target.cell, target.width) - left, target.height},
                         m_current.ground);
        column = end;
    }
}

void TerminalPainter::paintCell(const Target& target, int column, const CharData& cell,
                                RenderLineMode mode)
{
    paintMask(target, column, std::max<int>(1, cell.width), mask(cell, mode));
}

void TerminalPainter::paintMask(const Target& target, int column, int columns,
                                const GlyphMask& glyph)
{
    const int left = column * target.cell;
    const CellPixels::Area area{target.pixels + left, target.stride,
                                std::min(columns * target.cell, target.width - left),
                                target.height};
    if (area.width <= 0)
        return;
    switch (glyph.kind) {
    case GlyphMask::Kind::Blank:
        CellPixels::fill(area, m_current.ground);
        break;
    case GlyphMask::Kind::Coverage:
        if (!m_ramp)
            m_ramp = &ramp(m_current.ground, m_current.text);
        CellPixels::write(area, glyph, m_ramp->pixels.data());
        break;
    case GlyphMask::Kind::Picture:
        if (m_current.text == m_current.ground)
            CellPixels::fill(area, m_current.ground); // Invisible text.
        else
            CellPixels::writePicture(area, glyph, m_current.ground);
        break;
    }
}

int TerminalPainter::paintLigature(const Target& target, int column,
                                   std::span<const CharData> cells, int& apart)
{
    const std::string signs = TerminalLigatures::signsAt(cells);
    if (signs.empty())
        return 0;
    const GlyphMask* const joined = m_fonts->ligature(signs, styleOf(cells.front().attribute));
    if (!joined) {
        apart = column + int(signs.size());
        return 0;
    }
    paintMask(target, column, int(signs.size()), *joined);
    return int(signs.size());
}

const GlyphMask& TerminalPainter::mask(const CharData& cell, RenderLineMode mode)
{
    const std::uint8_t style = styleOf(cell.attribute);
    if (cell.code < 128 && cell.width == 1 && mode == RenderLineMode::Single) [[likely]]
        return m_fonts->ascii(std::uint8_t(cell.code), style);
    const TerminalFonts::Place place{style, std::uint8_t(std::max<int>(1, cell.width)), mode};
    if (cell.code < CharData::FirstGrapheme)
        return m_fonts->scalar(char32_t(cell.code), place);

    const GlyphMask*& known =
        m_clusters[std::uint64_t(cell.code) << 24U | std::uint64_t(place.style) << 16U |
                   std::uint64_t(place.columns) << 8U | std::uint64_t(place.mode)];
    if (!known)
        known = &m_fonts->cluster(m_graphemes->textFor(cell.code), place);
    return *known;
}

TerminalPalette::Inks TerminalPainter::inks(const Kovalt::Attribute& attribute,
                                            std::uint8_t overlay) const
{
    TerminalPalette::Inks result = m_palette.inks(attribute);
    if (overlay == 0)
        return result;
    if ((overlay & Hit) != 0)
        result.ground = Pixels::over(m_inks.hit, result.ground);
    if ((overlay & CurrentHit) != 0)
        result = {m_inks.onCurrentHit, m_inks.currentHit, m_inks.onCurrentHit};
    if ((overlay & Selected) != 0)
        result.ground = Pixels::over(m_inks.selection, result.ground);
    if ((overlay & Cursor) != 0)
        result = {m_inks.onCursor, m_inks.cursor, m_inks.onCursor};
    return result;
}

void TerminalPainter::use(const TerminalPalette::Inks& inks)
{
    m_current = inks;
    m_ramp = nullptr;
}

const TerminalPainter::Ramp& TerminalPainter::ramp(QRgb ground, QRgb ink)
{
    const std::uint32_t mixed = (ground * 0x9E3779B1U) ^ (ink * 0x85EBCA77U);
    Ramp& slot = m_ramps[(mixed >> 16U) % RampCount];
    if (slot.ground == ground && slot.ink == ink)
        return slot;
    slot.ground = ground;
    slot.ink = ink;
    for (unsigned coverage = 0; coverage < 256; ++coverage)
        slot.pixels[coverage] = Pixels::mixed(ground, ink, coverage + (coverage >> 7U));
    return slot;
}

void TerminalPainter::paintLines(const Target& target, int column, int columns,
                                 const Kovalt::Attribute& attribute, std::uint8_t overlay,
                                 RenderLineMode mode)
{
    const auto draw = [&](const GlyphMask& mask, QRgb color) {
        for (int at = column; at < column + columns; ++at) {
            const int left = at * target.cell;
            CellPixels::blend({target.pixels + left, target.stride,
                               std::min(target.cell, target.width - left), target.height},
                              mask, color);
        }
    };
    UnderlineStyle style = attribute.underlineStyle;
    if (style == UnderlineStyle::None &&
        (attribute.has(Style::Underline) || (overlay & Hovered) != 0))
        style = UnderlineStyle::Single;
    if (style != UnderlineStyle::None)
        draw(m_fonts->underline(style, mode), m_current.underline);
    if (attribute.has(Style::CrossedOut))
        draw(m_fonts->strike(mode), m_current.text);
}

void TerminalPainter::paintCursor(const Target& target, const CursorLook& cursor)
{
    const int line = m_fonts->line();
    const int left = cursor.column * target.cell;
    const int width = std::min(cursor.columns * target.cell, target.width - left);
    if (width <= 0)
        return;
    const auto fill = [&](int x, int y, int w, int h, QRgb color) {
        CellPixels::fill({target.pixels + y * target.stride + left + x, target.stride,
                          std::min(w, width - x), h},
                         color);
    };
    switch (cursor.shape) {
    case CursorLook::Shape::Block:
        break; // The cell was painted in its colours.
    case CursorLook::Shape::Underline:
        fill(0, target.height - 2 * line, width, 2 * line, m_inks.cursor);
        break;
    case CursorLook::Shape::Bar:
        fill(0, 0, 2 * line, target.height, m_inks.cursor);
        break;
    case CursorLook::Shape::Outline:
        fill(0, 0, width, line, m_inks.outline);
        fill(0, target.height - line, width, line, m_inks.outline);
        fill(0, 0, line, target.height, m_inks.outline);
        fill(width - line, 0, line, target.height, m_inks.outline);
        break;
    }
}

void TerminalPainter::paintPreedit(const Target& target, const PreeditLook& preedit, int cols)
{
    struct Cluster {
        QString text;
        int width;
        int end; ///< In the whole text.
    };
    std::vector<Cluster> clusters;
    int whole = 0;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, preedit.text);
    for (qsizetype begin = 0, end = 0; (end = finder.toNextBoundary()) > begin; begin = end) {
        const QString text = preedit.text.mid(begin, end - begin);
        const int width = std::clamp(Kovalt::UnicodeUtil::columnWidth(text.toStdString()), 1, 2);
        clusters.push_back({text, width, int(end)});
        whole += width;
    }
    // It has a cell for its own cursor behind it, and begins earlier if it reaches the edge.
    int column = std::max(0, std::min(preedit.column, cols - whole - 1));
    int cursorColumn = column;
    use({m_palette.text(), m_palette.ground(), m_palette.text()});
    for (const Cluster& cluster : clusters) {
        if (column + cluster.width > cols)
            break;
        paintCluster(target, column, cluster.text, cluster.width);
        column += cluster.width;
        if (cluster.end <= preedit.cursor)
            cursorColumn = column;
    }
    if (cursorColumn < cols)
        paintCursor(target, {cursorColumn, 1, CursorLook::Shape::Bar});
}

void TerminalPainter::paintCluster(const Target& target, int column, const QString& text, int width)
{
    const GlyphMask& glyph = m_fonts->cluster(text.toStdString(), {.columns = std::uint8_t(width)});
    const CellPixels::Area area{target.pixels + column * target.cell, target.stride,
                                width * target.cell, target.height};
    CellPixels::fill(area, m_current.ground);
    if (glyph.kind == GlyphMask::Kind::Picture)
        CellPixels::writePicture(area, glyph, m_current.ground);
    else if (glyph.kind == GlyphMask::Kind::Coverage)
        CellPixels::blend(area, glyph, m_current.text);
    Kovalt::Attribute underlined;
    underlined.underlineStyle = UnderlineStyle::Single;
    paintLines(target, column, width, underlined, 0, RenderLineMode::Single);
}

} // namespace Bralto
