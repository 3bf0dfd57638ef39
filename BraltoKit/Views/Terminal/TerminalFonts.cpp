#include "Views/Terminal/TerminalFonts.h"

#include "Views/Kit/Fonts.h"
#include "Views/Terminal/BoxDrawing.h"
#include "Views/Terminal/CoverageCanvas.h"
#include "Views/Terminal/GlyphDrawing.h"
#include "Views/Terminal/TerminalLigatures.h"

#include <QPainterPath>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace Bralto {
namespace {

using GlyphDrawing::Box;
using Kovalt::RenderLineMode;
using Kovalt::UnderlineStyle;

/// More masks than any screen shows at once; a flood of all that there is must not eat the memory.
constexpr std::size_t MostBytes = 24U << 20U;

const QString EmojiFamily = QStringLiteral("Noto Color Emoji");

/// Families that are asked one after the other: those for cells stand before those for prose.
QStringList families(const QString& own)
{
    QStringList result{own};
    for (const QString& family :
         {QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Noto Sans Mono"),
          QStringLiteral("Noto Sans Mono CJK SC"), QStringLiteral("Noto Sans CJK SC"),
          QStringLiteral("DejaVu Sans"), EmojiFamily})
        result.append(family);
    return result;
}

/// Signs that hardly a font has as letters, only as pictures, and what shows them as letters.
char32_t asLetter(char32_t scalar)
{
    switch (scalar) {
    case 0x23F8: // Pause
        return 0x2016;
    case 0x23F9: // Stop
        return 0x25A0;
    case 0x23FA: // Record
        return 0x25CF;
    default:
        return scalar;
    }
}

std::uint64_t key(char32_t scalar, TerminalFonts::Place place)
{
    return std::uint64_t(scalar) << 24U | std::uint64_t(place.style) << 16U |
           std::uint64_t(place.columns) << 8U | std::uint64_t(place.mode);
}

} // namespace

TerminalFonts::TerminalFonts(Face face)
    : m_face(std::move(face))
{
    QFont base = font(TextRole::Terminal);
    QString family = m_face.family.isEmpty() ? base.families().value(0) : m_face.family;
    // The cut without ligatures is of no use to who wants them.
    if (m_face.hasLigatures && family.endsWith(QStringLiteral(" NL")))
        family.chop(3);
    base.setFamilies(families(family));
    base.setPixelSize(std::max(1, qRound(m_face.size)));
    // Every glyph is looked up by itself; only clusters and ligatures are shaped.
    base.setStyleStrategy(QFont::NoSubpixelAntialias);
    for (std::size_t i = 0; i < m_styles.size(); ++i) {
        Style& style = m_styles[i];
        style.font = base;
        style.font.setBold((i & Bold) != 0);
        style.font.setItalic((i & Italic) != 0);
        style.raw = QRawFont::fromFont(style.font);
        style.raw.setPixelSize(m_face.size);
        style.needsBold = (i & Bold) != 0 && style.raw.weight() < QFont::DemiBold;
        style.needsItalic = (i & Italic) != 0 && style.raw.style() == QFont::StyleNormal;
    }
    measure();
}

std::shared_ptr<TerminalFonts> TerminalFonts::shared(const Face& face)
{
    static std::vector<std::weak_ptr<TerminalFonts>> known;
    std::erase_if(known, [](const auto& fonts) { return fonts.expired(); });
    for (const auto& weak : known) {
        if (auto fonts = weak.lock(); fonts && fonts->face() == face)
            return fonts;
    }
    auto fonts = std::make_shared<TerminalFonts>(face);
    known.push_back(fonts);
    return fonts;
}

void TerminalFonts::measure()
{
    const QRawFont& raw = m_styles[0].raw;
    const auto glyphs = raw.glyphIndexesForString(QStringLiteral("0"));
    const double advance = raw.advancesForGlyphIndexes(glyphs).value(0).x();
    const double letters = raw.ascent() + raw.descent();
    const int width = std::max(2, qRound(advance > 0 ? advance : m_face.size * 0.6));
    const int height = std::max({4, qRound(m_face.lineHeight), int(std::ceil(letters - 0.25))});
    m_cell = {width, height};
    m_baseline = qRound((height - letters) / 2 + raw.ascent());
    m_line = std::max(1, qRound(m_face.size / 13));
    const int below = std::max(1 + m_line / 2, qRound(raw.underlinePosition()));
    m_underline = std::min(m_baseline + below, height - 1 - m_line / 2);
    m_strike = m_baseline - qRound(raw.xHeight() / 2);
}

const GlyphMask& TerminalFonts::keep(std::unique_ptr<GlyphMask>& slot, GlyphMask mask)
{
    slot = std::make_unique<GlyphMask>(std::move(mask));
    m_bytes += slot->bytes();
    return *slot;
}

const GlyphMask& TerminalFonts::scalar(char32_t scalar, Place place)
{
    std::unique_ptr<GlyphMask>& slot = m_scalars[key(scalar, place)];
    if (slot)
        return *slot;
    const GlyphMask& mask = keep(slot, drawnScalar(scalar, place));
    if (scalar < 128 && place.columns == 1 && place.mode == RenderLineMode::Single)
        m_ascii[place.style][scalar] = &mask;
    return mask;
}

const GlyphMask& TerminalFonts::cluster(const std::string& text, Place place)
{
    const std::uint64_t looks = key(0, place);
    std::string name(reinterpret_cast<const char*>(&looks), sizeof looks);
    name += text;
    std::unique_ptr<GlyphMask>& slot = m_clusters[name];
    return slot ? *slot : keep(slot, drawn(QString::fromStdString(text), place));
}

GlyphMask TerminalFonts::drawnScalar(char32_t scalar, Place place) const
{
    const Box box{QSize(m_cell.width() * place.columns, m_cell.height()), double(m_baseline),
                  place.mode};
    if (scalar <= U' ' || scalar == 0x7F || scalar == 0xA0) {
        GlyphMask blank;
        blank.width = box.size.width() * GlyphDrawing::stretch(place.mode).x;
        blank.height = box.size.height();
        return blank;
    }
    if (scalar >= BoxDrawing::First) {
        const auto stretched = GlyphDrawing::stretch(place.mode);
        CoverageCanvas canvas(box.size.width() * stretched.x, box.size.height() * stretched.y);
        if (BoxDrawing::draw(scalar, canvas, m_line * stretched.x))
            return GlyphDrawing::mask(canvas, box);
    }
    if (place.columns == 1)
        scalar = asLetter(scalar);
    const QString text = QString::fromUcs4(&scalar, 1);
    const Style& style = m_styles[place.style];
    if (!GlyphDrawing::isEmoji(text, place.columns)) {
        const auto glyphs = style.raw.glyphIndexesForString(text);
        if (glyphs.size() == 1 && glyphs[0] != 0)
            return GlyphDrawing::glyph(style.raw, glyphs[0], box,
                                       {style.needsBold, style.needsItalic});
    }
    return drawn(text, place);
}

GlyphMask TerminalFonts::drawn(const QString& text, Place place) const
{
    const Box box{QSize(m_cell.width() * place.columns, m_cell.height()), double(m_baseline),
                  place.mode};
    const Style& style = m_styles[place.style];
    if (GlyphDrawing::isEmoji(text, place.columns)) {
        QFont emoji = m_styles[0].font;
        emoji.setFamilies(QStringList{EmojiFamily} + emoji.families());
        // The picture's font is chosen already, and the selector would only part a sequence.
        QString sequence = text;
        sequence.remove(QChar(0xFE0F));
        return GlyphDrawing::layout(emoji, m_face.size, sequence, box, {});
    }
    return GlyphDrawing::layout(style.font, m_face.size, text, box,
                                {style.needsBold, style.needsItalic});
}

const GlyphMask* TerminalFonts::ligature(const std::string& signs, std::uint8_t style)
{
    const auto [known, isNew] = m_ligatures.try_emplace(char(style) + signs, nullptr);
    const Style& look = m_styles[style];
    if (isNew && TerminalLigatures::joins(look.font, look.raw, QString::fromStdString(signs)))
        known->second = &cluster(signs, {style, std::uint8_t(signs.size())});
    return known->second;
}

const GlyphMask& TerminalFonts::underline(UnderlineStyle style, RenderLineMode mode)
{
    std::unique_ptr<GlyphMask>& slot = m_lines[std::uint64_t(style) << 8U | std::uint64_t(mode)];
    return slot ? *slot : keep(slot, line(style, false, mode));
}

const GlyphMask& TerminalFonts::strike(RenderLineMode mode)
{
    std::unique_ptr<GlyphMask>& slot = m_lines[std::uint64_t(1) << 16U | std::uint64_t(mode)];
    return slot ? *slot : keep(slot, line(UnderlineStyle::Single, true, mode));
}

GlyphMask TerminalFonts::line(UnderlineStyle style, bool isStrike, RenderLineMode mode) const
{
    const auto stretched = GlyphDrawing::stretch(mode);
    const Box box{m_cell, double(m_baseline), mode};
    CoverageCanvas canvas(m_cell.width() * stretched.x, m_cell.height() * stretched.y);
    const int width = canvas.width();
    const int thick = m_line * stretched.y;
    const int middle = (isStrike ? m_strike : m_underline) * stretched.y;
    const int top = middle - thick / 2;
    switch (style) {
    case UnderlineStyle::None:
        break;
    case UnderlineStyle::Single:
        canvas.fill(0, top, width, top + thick);
        break;
    case UnderlineStyle::Double: {
        const int lower = std::min(top + 2 * thick, canvas.height() - thick);
        canvas.fill(0, lower - 2 * thick, width, lower - thick);
        canvas.fill(0, lower, width, lower + thick);
        break;
    }
    case UnderlineStyle::Dotted:
        for (int dot = 0; dot * 2 * thick < width; ++dot)
            canvas.fill(dot * 2 * thick, top, dot * 2 * thick + thick, top + thick);
        break;
    case UnderlineStyle::Dashed:
        canvas.fill(0, top, width - std::max(1, width / 3), top + thick);
        break;
    case UnderlineStyle::Curly: {
        // One wave a cell, which begins and ends on its middle: waves of neighbours join.
        const double height = std::max(1.0, thick * 1.25);
        const double axis = std::min(middle + thick / 2.0, canvas.height() - height - thick / 2.0);
        QPainterPath wave(QPointF(-1, axis));
        for (int x = 0; x <= width * 4; ++x) {
            const double at = x / 4.0;
            wave.lineTo(at, axis - height * std::sin(2 * std::numbers::pi * at / width));
        }
        wave.lineTo(width + 1, axis);
        canvas.stroke(wave, thick);
        break;
    }
    }
    return GlyphDrawing::mask(canvas, box);
}

void TerminalFonts::trim()
{
    if (m_bytes < MostBytes)
        return;
    m_scalars.clear();
    m_clusters.clear();
    m_lines.clear();
    m_ligatures.clear();
    m_ascii = {};
    m_bytes = 0;
    ++m_generation;
}

} // namespace Bralto
