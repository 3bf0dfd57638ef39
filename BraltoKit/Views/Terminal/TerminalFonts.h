#pragma once

#include "Kovalt/Attribute.h"
#include "Kovalt/BufferLine.h"
#include "Views/Terminal/GlyphMask.h"

#include <QFont>
#include <QRawFont>
#include <QSize>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace Bralto {

/// What characters look like in cells of one size: masks that are made once and kept. All measures
/// are device pixels. Terminals that look the same share one. Main thread.
class TerminalFonts {
public:
    struct Face {
        QString family = {}; ///< Empty for the program's own.
        double size = 12;    ///< Of the letters.
        double lineHeight = 18;
        bool hasLigatures = false;

        bool operator==(const Face&) const = default;
    };
    /// Bits of `Glyph::style`.
    static constexpr std::uint8_t Bold = 1;
    static constexpr std::uint8_t Italic = 2;
    static constexpr std::size_t StyleCount = 4;

    /// Where a character stands: in how many cells, and in which kind of row.
    struct Place {
        std::uint8_t style = 0;
        std::uint8_t columns = 1;
        Kovalt::RenderLineMode mode = Kovalt::RenderLineMode::Single;

        bool operator==(const Place&) const = default;
    };

    explicit TerminalFonts(Face face);

    /// The one that all who ask for this face share; it goes with the last of them.
    [[nodiscard]] static std::shared_ptr<TerminalFonts> shared(const Face& face);

    [[nodiscard]] const Face& face() const { return m_face; }
    [[nodiscard]] QSize cell() const { return m_cell; }
    /// The thickness of lines: underlines, frames.
    [[nodiscard]] int line() const { return m_line; }
    [[nodiscard]] int baseline() const { return m_baseline; }

    /// Valid until `trim` drops it.
    [[nodiscard]] const GlyphMask& scalar(char32_t scalar, Place place);
    [[nodiscard]] const GlyphMask& ascii(std::uint8_t byte, std::uint8_t style)
    {
        const GlyphMask* const known = m_ascii[style][byte & 0x7FU];
        return known ? *known : scalar(byte, {.style = style});
    }
    /// Of several scalars in UTF-8.
    [[nodiscard]] const GlyphMask& cluster(const std::string& text, Place place);
    /// Signs that the face draws as one, in as many cells; null if it doesn't.
    [[nodiscard]] const GlyphMask* ligature(const std::string& signs, std::uint8_t style);
    /// A line under, or through, one cell.
    [[nodiscard]] const GlyphMask& underline(Kovalt::UnderlineStyle style,
                                             Kovalt::RenderLineMode mode);
    [[nodiscard]] const GlyphMask& strike(Kovalt::RenderLineMode mode);

    /// Drops all masks if they have become too many. Call it between rows.
    void trim();
    /// Rises when masks are dropped.
    [[nodiscard]] std::uint64_t generation() const { return m_generation; }

private:
    struct Style {
        QFont font;
        QRawFont raw;
        bool needsBold = false;
        bool needsItalic = false;
    };
    using Key = std::uint64_t;

    void measure();
    [[nodiscard]] const GlyphMask& keep(std::unique_ptr<GlyphMask>& slot, GlyphMask mask);
    [[nodiscard]] GlyphMask drawn(const QString& text, Place place) const;
    [[nodiscard]] GlyphMask drawnScalar(char32_t scalar, Place place) const;
    [[nodiscard]] GlyphMask line(Kovalt::UnderlineStyle style, bool isStrike,
                                 Kovalt::RenderLineMode mode) const;

    Face m_face;
    std::array<Style, StyleCount> m_styles;
    QSize m_cell;
    int m_line = 1;
    int m_baseline = 0;
    int m_underline = 0; ///< The middle of an underline, from the cell's top.
    int m_strike = 0;
    std::array<std::array<const GlyphMask*, 128>, StyleCount> m_ascii{};
    std::unordered_map<Key, std::unique_ptr<GlyphMask>> m_scalars;
    std::unordered_map<std::string, std::unique_ptr<GlyphMask>> m_clusters;
    std::unordered_map<Key, std::unique_ptr<GlyphMask>> m_lines;
    std::unordered_map<std::string, const GlyphMask*> m_ligatures; ///< Null for what isn't one.
    std::size_t m_bytes = 0;
    std::uint64_t m_generation = 0;
};

} // namespace Bralto
