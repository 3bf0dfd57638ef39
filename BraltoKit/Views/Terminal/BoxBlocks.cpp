// Blocks, mosaics and the arrow heads of prompts: areas, not lines.

#include "Views/Terminal/BoxDrawing.h"
#include "Views/Terminal/CoverageCanvas.h"

#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <array>

namespace Bralto::BoxDrawing {
namespace {

/// `parts` of `of` equal parts of a length, in whole pixels, at least one.
int share(int length, int parts, int of)
{
    return std::max(1, (length * parts * 2 + of) / (2 * of));
}

/// A grid of `columns` by `rows`; bit 0 is its upper left field, then to the right.
void drawMosaic(CoverageCanvas& canvas, int columns, int rows, unsigned fields)
{
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            if ((fields >> unsigned(row * columns + column) & 1U) == 0)
                continue;
            canvas.fill(canvas.width() * column / columns, canvas.height() * row / rows,
                        canvas.width() * (column + 1) / columns,
                        canvas.height() * (row + 1) / rows);
        }
    }
}

/// U+2580 to U+259F.
void drawBlock(char32_t scalar, CoverageCanvas& canvas)
{
    const int width = canvas.width();
    const int height = canvas.height();
    const int index = int(scalar - 0x2580);
    // Upper left, upper right, lower left, lower right as bits.
    constexpr std::array<unsigned, 10> Quadrants{4, 8, 1, 13, 9, 7, 11, 2, 6, 14};
    if (index == 0)
        canvas.fill(0, 0, width, height / 2);
    else if (index <= 8)
        canvas.fill(0, index == 4 ? height / 2 : height - share(height, index, 8), width, height);
    else if (index <= 15)
        canvas.fill(0, 0, index == 12 ? width / 2 : share(width, 16 - index, 8), height);
    else if (index == 16)
        canvas.fill(width / 2, 0, width, height);
    else if (index <= 19)
        canvas.fill(0, 0, width, height, std::uint8_t((index - 16) * 64));
    else if (index == 20)
        canvas.fill(0, 0, width, share(height, 1, 8));
    else if (index == 21)
        canvas.fill(width - share(width, 1, 8), 0, width, height);
    else
        drawMosaic(canvas, 2, 2, Quadrants[std::size_t(index - 22)]);
}

/// U+1FB00 to U+1FB3B: all sets of six fields but those that are blocks already.
void drawSextant(char32_t scalar, CoverageCanvas& canvas)
{
    constexpr unsigned LeftHalf = 21;
    constexpr unsigned RightHalf = 42;
    unsigned fields = unsigned(scalar - 0x1FB00) + 1;
    if (fields >= LeftHalf)
        ++fields;
    if (fields >= RightHalf)
        ++fields;
    drawMosaic(canvas, 2, 3, fields);
}

/// U+2800 to U+28FF: dots, the lowest row of which came later and has the highest bits.
void drawBraille(char32_t scalar, CoverageCanvas& canvas)
{
    constexpr std::array<int, 8> Columns{0, 0, 0, 1, 1, 1, 0, 1};
    constexpr std::array<int, 8> Rows{0, 1, 2, 0, 1, 2, 3, 3};
    const double fieldWidth = canvas.width() / 2.0;
    const double fieldHeight = canvas.height() / 4.0;
    const int size = std::max(1, qRound(std::min(fieldWidth, fieldHeight) * 0.6));
    for (std::size_t dot = 0; dot < Columns.size(); ++dot) {
        if ((scalar >> dot & 1U) == 0)
            continue;
        const int left = qRound((Columns[dot] + 0.5) * fieldWidth - size / 2.0);
        const int top = qRound((Rows[dot] + 0.5) * fieldHeight - size / 2.0);
        if (size < 4) {
            canvas.fill(left, top, left + size, top + size);
            continue;
        }
        QPainterPath disc;
        disc.addEllipse(QRectF(left, top, size, size));
        canvas.fill(disc);
    }
}

void fillTriangle(CoverageCanvas& canvas, QPointF a, QPointF b, QPointF c)
{
    QPainterPath path;
    path.addPolygon(QPolygonF({a, b, c}));
    path.closeSubpath();
    canvas.fill(path);
}

} // namespace

bool drawBlocks(char32_t scalar, CoverageCanvas& canvas)
{
    if (scalar >= 0x2580 && scalar <= 0x259F)
        drawBlock(scalar, canvas);
    else if (scalar >= 0x2800 && scalar <= 0x28FF)
        drawBraille(scalar, canvas);
    else if (scalar >= 0x1FB00 && scalar <= 0x1FB3B)
        drawSextant(scalar, canvas);
    else
        return false;
    return true;
}

bool drawArrowHeads(char32_t scalar, CoverageCanvas& canvas, int line)
{
    const double width = canvas.width();
    const double height = canvas.height();
    const QPointF topLeft(0, 0);
    const QPointF topRight(width, 0);
    const QPointF bottomLeft(0, height);
    const QPointF bottomRight(width, height);
    const auto chevron = [&](QPointF top, QPointF tip, QPointF bottom) {
        QPainterPath path(top);
        path.lineTo(tip);
        path.lineTo(bottom);
        canvas.stroke(path, line);
    };
    const auto halfDisc = [&](bool pointsRight) {
        QPainterPath path;
        path.addEllipse(QRectF(pointsRight ? -width : 0, 0, 2 * width, height));
        return path;
    };
    const auto diagonal = [&](QPointF from, QPointF to) {
        QPainterPath path(from);
        path.lineTo(to);
        canvas.stroke(path, line);
    };
    switch (scalar) {
    case 0x25E2:
    case 0xE0BA:
        fillTriangle(canvas, bottomLeft, bottomRight, topRight);
        return true;
    case 0x25E3:
    case 0xE0B8:
        fillTriangle(canvas, topLeft, bottomLeft, bottomRight);
        return true;
    case 0x25E4:
    case 0xE0BC:
        fillTriangle(canvas, topLeft, topRight, bottomLeft);
        return true;
    case 0x25E5:
    case 0xE0BE:
        fillTriangle(canvas, topLeft, topRight, bottomRight);
        return true;
    case 0xE0B0:
        fillTriangle(canvas, topLeft, QPointF(width, height / 2), bottomLeft);
        return true;
    case 0xE0B1:
        chevron(topLeft, QPointF(width - line / 2.0, height / 2), bottomLeft);
        return true;
    case 0xE0B2:
        fillTriangle(canvas, topRight, QPointF(0, height / 2), bottomRight);
        return true;
    case 0xE0B3:
        chevron(topRight, QPointF(line / 2.0, height / 2), bottomRight);
        return true;
    case 0xE0B4:
    case 0xE0B6:
        canvas.fill(halfDisc(scalar == 0xE0B4));
        return true;
    case 0xE0B5:
    case 0xE0B7:
        canvas.stroke(halfDisc(scalar == 0xE0B5), line * 2);
        return true;
    case 0xE0B9:
    case 0xE0BF:
        diagonal(topLeft, bottomRight);
        return true;
    case 0xE0BB:
    case 0xE0BD:
        diagonal(bottomLeft, topRight);
        return true;
    default:
        return false;
    }
}

} // namespace Bralto::BoxDrawing
