#include "Views/Terminal/GlyphDrawing.h"

#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace Bralto::GlyphDrawing {
namespace {

using Kovalt::RenderLineMode;

constexpr double Slant = -0.2;
constexpr char16_t TextSelector = 0xFE0E;
constexpr char16_t PictureSelector = 0xFE0F;

/// A transparent picture of the whole box, stretched, and the painter's way into it.
class Sheet {
public:
    explicit Sheet(const Box& box)
        : m_stretch(stretch(box.mode))
        , m_height(box.size.height())
        , m_image(box.size.width() * m_stretch.x, box.size.height() * m_stretch.y,
                  QImage::Format_ARGB32_Premultiplied)
    {
        m_image.fill(Qt::transparent);
    }

    template <typename Draw>
    void draw(Draw draw, Synthesis synthesis, double baseline)
    {
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::TextAntialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setPen(Qt::white);
        painter.scale(m_stretch.x, m_stretch.y);
        if (synthesis.italic) {
            painter.translate(0, baseline);
            painter.shear(Slant, 0);
            painter.translate(0, -baseline);
        }
        draw(painter);
        if (synthesis.bold) {
            painter.translate(std::max(0.5, baseline / 24), 0);
            draw(painter);
        }
    }

    [[nodiscard]] GlyphMask mask() const
    {
        GlyphMask mask;
        mask.width = m_image.width();
        mask.height = m_height;
        bool isEmpty = true;
        bool isColoured = false;
        const auto size = std::size_t(mask.width) * std::size_t(mask.height);
        mask.coverage.reserve(size);
        mask.picture.reserve(size);
        for (int y = 0; y < m_height; ++y) {
            const auto* pixels =
                reinterpret_cast<const QRgb*>(m_image.constScanLine(y + m_stretch.top * m_height));
            for (int x = 0; x < mask.width; ++x) {
                const QRgb pixel = pixels[x];
                isEmpty = isEmpty && qAlpha(pixel) == 0;
                isColoured = isColoured || std::abs(qRed(pixel) - qAlpha(pixel)) > 8 ||
                             std::abs(qGreen(pixel) - qAlpha(pixel)) > 8 ||
                             std::abs(qBlue(pixel) - qAlpha(pixel)) > 8;
                mask.coverage.push_back(std::uint8_t(qAlpha(pixel)));
                mask.picture.push_back(pixel);
            }
        }
        if (isEmpty || !isColoured)
            mask.picture = {};
        if (isEmpty || isColoured)
            mask.coverage = {};
        if (!isEmpty)
            mask.kind = isColoured ? GlyphMask::Kind::Picture : GlyphMask::Kind::Coverage;
        return mask;
    }

private:
    Stretch m_stretch;
    int m_height;
    QImage m_image;
};

} // namespace

Stretch stretch(RenderLineMode mode)
{
    switch (mode) {
    case RenderLineMode::Single:
        break;
    case RenderLineMode::DoubleWidth:
        return {2, 1, 0};
    case RenderLineMode::DoubledTop:
        return {2, 2, 0};
    case RenderLineMode::DoubledDown:
        return {2, 2, 1};
    }
    return {};
}

GlyphMask glyph(const QRawFont& font, quint32 index, const Box& box, Synthesis synthesis)
{
    const double advance = font.advancesForGlyphIndexes({index}).value(0).x();
    // A fraction of a pixel would blur what the face was drawn for.
    const double spare = box.size.width() - advance;
    const double left = std::abs(spare) < 1 ? 0 : std::round(spare / 2);
    QGlyphRun run;
    run.setRawFont(font);
    run.setGlyphIndexes({index});
    run.setPositions({QPointF(0, 0)});

    Sheet sheet(box);
    sheet.draw([&](QPainter& painter) { painter.drawGlyphRun(QPointF(left, box.baseline), run); },
               synthesis, box.baseline);
    return sheet.mask();
}

GlyphMask layout(const QFont& font, double size, const QString& text, const Box& box,
                 Synthesis synthesis)
{
    // A layout takes whole pixels only; what is missing is scaled.
    QFont whole = font;
    whole.setPixelSize(std::max(1, qRound(size)));
    const double scale = size / whole.pixelSize();

    QTextLayout layout(text, whole);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid())
        return Sheet(box).mask();
    line.setLineWidth(1e6);
    layout.endLayout();

    const double width = line.naturalTextWidth() * scale;
    const double fit = width > box.size.width() ? box.size.width() / width : 1;
    const double left = (box.size.width() - width * fit) / 2;
    Sheet sheet(box);
    sheet.draw(
        [&](QPainter& painter) {
            painter.save();
            painter.translate(left, box.baseline);
            painter.scale(scale * fit, scale * fit);
            line.draw(&painter, QPointF(0, -line.ascent()));
            painter.restore();
        },
        synthesis, box.baseline);
    return sheet.mask();
}

GlyphMask mask(const CoverageCanvas& canvas, const Box& box)
{
    const Stretch stretched = stretch(box.mode);
    GlyphMask mask;
    mask.kind = GlyphMask::Kind::Coverage;
    mask.width = canvas.width();
    mask.height = box.size.height();
    mask.coverage = canvas.rows(stretched.top * mask.height, mask.height);
    return mask;
}

bool isEmoji(const QString& text, int columns)
{
    if (text.contains(QChar(PictureSelector)))
        return true;
    if (text.contains(QChar(TextSelector)) || text.isEmpty())
        return false;
    const char32_t first = text.toUcs4().value(0);
    if (first >= 0x1F000 && first <= 0x1FAFF)
        return columns == 2;
    const bool isSymbol = (first >= 0x2000 && first <= 0x2BFF) || first == 0x3030 ||
                          first == 0x303D || first == 0x3297 || first == 0x3299;
    return columns == 2 && isSymbol;
}

} // namespace Bralto::GlyphDrawing
