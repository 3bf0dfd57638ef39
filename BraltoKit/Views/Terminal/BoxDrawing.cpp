#include "Views/Terminal/BoxDrawing.h"

#include "Views/Terminal/CoverageCanvas.h"

#include <QPainterPath>

#include <algorithm>
#include <array>
#include <string_view>

namespace Bralto::BoxDrawing {
namespace {

constexpr char32_t FirstLine = 0x2500;
constexpr char32_t LastLine = 0x257F;

/// One of the four ways from the middle of a cell to its edge.
enum class Arm : char { None = '0', Light = '1', Heavy = '2', Double = '3' };

/// Left, up, right, down; "----" is a character that has no arms.
using Arms = std::string_view;

constexpr std::array<Arms, 128> Table{
    // clang-format off
    "1010", "2020", "0101", "0202", "----", "----", "----", "----", // U+2500
    "----", "----", "----", "----", "0011", "0021", "0012", "0022",
    "1001", "2001", "1002", "2002", "0110", "0120", "0210", "0220", // U+2510
    "1100", "2100", "1200", "2200", "0111", "0121", "0211", "0112",
    "0212", "0221", "0122", "0222", "1101", "2101", "1201", "1102", // U+2520
    "1202", "2201", "2102", "2202", "1011", "2011", "1021", "2021",
    "1012", "2012", "1022", "2022", "1110", "2110", "1120", "2120", // U+2530
    "1210", "2210", "1220", "2220", "1111", "2111", "1121", "2121",
    "1211", "1112", "1212", "2211", "1221", "2112", "1122", "2221", // U+2540
    "2122", "2212", "1222", "2222", "----", "----", "----", "----",
    "3030", "0303", "0031", "0013", "0033", "3001", "1003", "3003", // U+2550
    "0130", "0310", "0330", "3100", "1300", "3300", "0131", "0313",
    "0333", "3101", "1303", "3303", "3031", "1013", "3033", "3130", // U+2560
    "1310", "3330", "3131", "1313", "3333", "----", "----", "----",
    "----", "----", "----", "----", "1000", "0100", "0010", "0001", // U+2570
    "2000", "0200", "0020", "0002", "1020", "0102", "2010", "0201",
    // clang-format on
};

/// Draws along one axis as if it were the horizontal one, so that arms are told once for all four.
class Strokes {
public:
    /// `isTransposed` swaps the axes, `isMirrored` then begins at the far end.
    Strokes(CoverageCanvas& canvas, int line, bool isTransposed, bool isMirrored)
        : m_canvas(canvas)
        , m_line(line)
        , m_isTransposed(isTransposed)
        , m_isMirrored(isMirrored)
    {
    }

    [[nodiscard]] int length() const
    {
        return m_isTransposed ? m_canvas.height() : m_canvas.width();
    }
    [[nodiscard]] int breadth() const
    {
        return m_isTransposed ? m_canvas.width() : m_canvas.height();
    }
    /// Where a line of this thickness around the middle begins, seen from this end.
    [[nodiscard]] int alongMiddle(int thickness) const
    {
        const int first = (length() - thickness) / 2;
        return m_isMirrored ? length() - first - thickness : first;
    }
    [[nodiscard]] int acrossMiddle(int thickness) const { return (breadth() - thickness) / 2; }

    /// From the edge up to `end`.
    void draw(int end, int across, int thickness) const
    {
        const int first = m_isMirrored ? length() - end : 0;
        const int last = m_isMirrored ? length() : end;
        if (m_isTransposed)
            m_canvas.fill(across, first, across + thickness, last);
        else
            m_canvas.fill(first, across, last, across + thickness);
    }

    [[nodiscard]] int line() const { return m_line; }

private:
    CoverageCanvas& m_canvas;
    int m_line;
    bool m_isTransposed;
    bool m_isMirrored;
};

int thickness(Arm arm, int line)
{
    if (arm == Arm::None)
        return 0;
    return arm == Arm::Heavy ? 2 * line : line;
}

/// An arm, the one that goes on behind it, and those to its sides: `before` has the smaller
/// coordinate.
struct Crossing {
    Arm arm;
    Arm opposite;
    Arm before;
    Arm after;
};

/// Where a single line ends: behind the lines that it crosses, so that the corner is filled.
int singleEnd(const Strokes& strokes, const Crossing& at)
{
    const int line = strokes.line();
    const int doubles = int(at.before == Arm::Double) + int(at.after == Arm::Double);
    if (doubles > 0) {
        const int middle = strokes.alongMiddle(line);
        const bool stopsAtTheNear = doubles == 2 && at.opposite == Arm::None;
        return stopsAtTheNear ? middle : middle + 2 * line;
    }
    const int crossed = std::max(thickness(at.before, line), thickness(at.after, line));
    if (crossed == 0)
        return (strokes.length() + 1) / 2;
    return strokes.alongMiddle(crossed) + crossed;
}

/// Where the line of a double one ends that lies on the side of `side`.
int doubleEnd(const Strokes& strokes, Arm side, Arm otherSide)
{
    const int line = strokes.line();
    const int middle = strokes.alongMiddle(line);
    if (side == Arm::Double)
        return middle;
    return otherSide == Arm::Double ? middle + 2 * line : middle + line;
}

void drawArm(const Strokes& strokes, const Crossing& at)
{
    const int line = strokes.line();
    if (at.arm == Arm::Double) {
        const int across = strokes.acrossMiddle(line);
        strokes.draw(doubleEnd(strokes, at.before, at.after), across - line, line);
        strokes.draw(doubleEnd(strokes, at.after, at.before), across + line, line);
    } else if (at.arm != Arm::None) {
        const int thick = thickness(at.arm, line);
        strokes.draw(singleEnd(strokes, at), strokes.acrossMiddle(thick), thick);
    }
}

void drawArms(Arms arms, CoverageCanvas& canvas, int line)
{
    const Arm left = Arm(arms[0]);
    const Arm up = Arm(arms[1]);
    const Arm right = Arm(arms[2]);
    const Arm down = Arm(arms[3]);
    drawArm(Strokes(canvas, line, false, false), {left, right, up, down});
    drawArm(Strokes(canvas, line, false, true), {right, left, up, down});
    drawArm(Strokes(canvas, line, true, false), {up, down, left, right});
    drawArm(Strokes(canvas, line, true, true), {down, up, left, right});
}

/// `count` dashes with as much gap at both ends as makes an even line of many cells.
void drawDashes(CoverageCanvas& canvas, int count, int thick, bool isVertical)
{
    const int length = isVertical ? canvas.height() : canvas.width();
    const int across = ((isVertical ? canvas.width() : canvas.height()) - thick) / 2;
    const int gap = std::max(1, length / (count * 3));
    for (int dash = 0; dash < count; ++dash) {
        const int first = dash * length / count + gap / 2;
        const int last = std::max(first + 1, (dash + 1) * length / count - (gap + 1) / 2);
        if (isVertical)
            canvas.fill(across, first, across + thick, last);
        else
            canvas.fill(first, across, last, across + thick);
    }
}

/// A rounded corner between two of the edges.
void drawArc(CoverageCanvas& canvas, int line, bool goesRight, bool goesDown)
{
    const double width = canvas.width();
    const double height = canvas.height();
    // The middles of the lines that it joins, whose edges are whole pixels.
    const int left = (canvas.width() - line) / 2;
    const int top = (canvas.height() - line) / 2;
    const double x = left + line / 2.0;
    const double y = top + line / 2.0;
    const double endX = goesRight ? width : 0;
    const double endY = goesDown ? height : 0;
    // The last pixels are straight, or the curve would reach into the rows beside the line's.
    const double radius =
        std::max(1.0, std::min(std::abs(endX - x), std::abs(endY - y)) - std::max(1, line));
    const double towardsX = goesRight ? radius : -radius;
    const double towardsY = goesDown ? radius : -radius;
    // How far a cubic's handles reach to look like a quarter of a circle.
    constexpr double Handle = 1 - 0.5523;

    QPainterPath path(QPointF(x, endY));
    path.lineTo(x, y + towardsY);
    path.cubicTo(x, y + towardsY * Handle, x + towardsX * Handle, y, x + towardsX, y);
    path.lineTo(endX, y);
    canvas.stroke(path, line);
}

void drawDiagonals(CoverageCanvas& canvas, int line, bool rises, bool falls)
{
    const double width = canvas.width();
    const double height = canvas.height();
    // Beyond the corners, so that the next cell's line goes on without a notch.
    const auto diagonal = [&](double startY, double endY) {
        const QPointF start(0, startY);
        const QPointF end(width, endY);
        const QPointF beyond = (end - start) * 0.5;
        QPainterPath path(start - beyond);
        path.lineTo(end + beyond);
        canvas.stroke(path, line);
    };
    if (rises)
        diagonal(height, 0);
    if (falls)
        diagonal(0, height);
}

} // namespace

bool drawLines(char32_t scalar, CoverageCanvas& canvas, int line)
{
    if (scalar < FirstLine || scalar > LastLine)
        return false;
    const Arms arms = Table[scalar - FirstLine];
    if (arms[0] != '-') {
        drawArms(arms, canvas, line);
        return true;
    }
    if (scalar >= 0x256D && scalar <= 0x2570) {
        drawArc(canvas, line, scalar == 0x256D || scalar == 0x2570, scalar <= 0x256E);
        return true;
    }
    if (scalar >= 0x2571 && scalar <= 0x2573) {
        drawDiagonals(canvas, line, scalar != 0x2572, scalar != 0x2571);
        return true;
    }
    // What remains are dashes: light and heavy by turns, horizontal and vertical by pairs.
    int count = 2;
    if (scalar < 0x2508)
        count = 3;
    else if (scalar < 0x250C)
        count = 4;
    drawDashes(canvas, count, (scalar & 1) != 0 ? 2 * line : line, (scalar & 2) != 0);
    return true;
}

bool drawRules(char32_t scalar, CoverageCanvas& canvas, int line)
{
    const int width = canvas.width();
    const int height = canvas.height();
    const int middle = (width - line) / 2;
    const int low = height * 3 / 4; // About where letters stand.
    const int high = height / 4;
    switch (scalar) {
    case 0x23BA: // The lines of a terminal's own graphics: first, third, seventh, ninth.
        canvas.fill(0, 0, width, line);
        return true;
    case 0x23BB:
        canvas.fill(0, (height - line) / 4, width, (height - line) / 4 + line);
        return true;
    case 0x23BC:
        canvas.fill(0, (height - line) * 3 / 4, width, (height - line) * 3 / 4 + line);
        return true;
    case 0x23BD:
        canvas.fill(0, height - line, width, height);
        return true;
    case 0x23BE: // Corners that hold what belongs to the row above, or below.
        canvas.fill(middle, high, middle + line, height);
        canvas.fill(middle, high, width, high + line);
        return true;
    case 0x23BF:
        canvas.fill(middle, 0, middle + line, low);
        canvas.fill(middle, low - line, width, low);
        return true;
    case 0x23CB:
        canvas.fill(middle, high, middle + line, height);
        canvas.fill(0, high, middle + line, high + line);
        return true;
    case 0x23CC:
        canvas.fill(middle, 0, middle + line, low);
        canvas.fill(0, low - line, middle + line, low);
        return true;
    default:
        return false;
    }
}

bool draw(char32_t scalar, CoverageCanvas& canvas, int line)
{
    return drawRules(scalar, canvas, line) || drawLines(scalar, canvas, line) ||
           drawBlocks(scalar, canvas) || drawArrowHeads(scalar, canvas, line);
}

} // namespace Bralto::BoxDrawing
