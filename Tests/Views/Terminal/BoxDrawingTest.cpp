#include "Views/Terminal/BoxDrawing.h"
#include "Views/Terminal/CoverageCanvas.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>
#include <vector>

using namespace Bralto;

namespace {

/// Cells of usual and odd sizes: 12 points at the ratios 1, 1.25, 1.5 and 2, and others.
struct CellSize {
    int width;
    int height;
    int line;
};
constexpr std::array Sizes{CellSize{7, 18, 1},  CellSize{9, 23, 1},  CellSize{11, 27, 1},
                           CellSize{14, 36, 2}, CellSize{8, 16, 1},  CellSize{10, 21, 2},
                           CellSize{29, 72, 4}, CellSize{13, 25, 3}, CellSize{6, 11, 1}};

CoverageCanvas drawn(char32_t scalar, const CellSize& size)
{
    CoverageCanvas canvas(size.width, size.height);
    EXPECT_TRUE(BoxDrawing::draw(scalar, canvas, size.line)) << std::hex << unsigned(scalar);
    return canvas;
}

std::vector<int> column(const CoverageCanvas& canvas, int x)
{
    std::vector<int> result;
    for (int y = 0; y < canvas.height(); ++y)
        result.push_back(canvas.at(x, y));
    return result;
}

std::vector<int> row(const CoverageCanvas& canvas, int y)
{
    std::vector<int> result;
    for (int x = 0; x < canvas.width(); ++x)
        result.push_back(canvas.at(x, y));
    return result;
}

bool isEmpty(const std::vector<int>& edge)
{
    return std::ranges::all_of(edge, [](int coverage) { return coverage == 0; });
}

/// Characters whose right edge goes on in those of `Left`.
struct Joint {
    std::u32string_view first;
    std::u32string_view second;
};

/// Every pair goes on from the right edge of the first to the left edge of the second.
constexpr std::array SideBySide{
    Joint{U"─┌└├┬┴┼╭╰╶╾┭╅┱", U"─┐┘┤┬┴┼╮╯╴╼┮╆┲"},
    Joint{U"━┏┗┣┳┻╋╺╼┮", U"━┓┛┫┳┻╋╸╾┭"},
    Joint{U"═╔╚╠╦╩╬╒╘╞╤╧╪", U"═╗╝╣╦╩╬╕╛╡╤╧╪"},
    Joint{U"█▀▄▂▔", U"█▀▄▂▔"},
    Joint{U"⎺⎻⎼⎽⎾⎿", U"⎺⎻⎼⎽⏋⏌"},
};
constexpr std::array OneAboveTheOther{
    Joint{U"│┌┐├┤┬┼╭╮╷╿", U"│└┘├┤┴┼╰╯╵╽"},
    Joint{U"┃┏┓┣┫┳╋╻╽", U"┃┗┛┣┫┻╋╹╿"},
    Joint{U"║╔╗╠╣╦╬╓╖╟╢╥╫", U"║╚╝╠╣╩╬╙╜╟╢╨╫"},
};

} // namespace

TEST(BoxDrawing, LinesGoOnInTheNextCellPixelByPixel)
{
    for (const CellSize& size : Sizes) {
        SCOPED_TRACE(size.width);
        for (const Joint& joint : SideBySide) {
            for (std::size_t i = 0; i < joint.first.size(); ++i) {
                // Blocks of different kinds have different edges: they join their own kind.
                const bool isBlock = joint.first[0] == U'█' || joint.first[0] == U'⎺';
                for (std::size_t j = 0; j < joint.second.size(); ++j) {
                    if (isBlock && i != j)
                        continue;
                    const auto right = column(drawn(joint.first[i], size), size.width - 1);
                    EXPECT_FALSE(isEmpty(right)) << std::hex << unsigned(joint.first[i]);
                    EXPECT_EQ(right, column(drawn(joint.second[j], size), 0))
                        << std::hex << unsigned(joint.first[i]) << " beside "
                        << unsigned(joint.second[j]);
                }
            }
        }
    }
}

TEST(BoxDrawing, LinesGoOnInTheCellBelowPixelByPixel)
{
    for (const CellSize& size : Sizes) {
        SCOPED_TRACE(size.width);
        for (const Joint& joint : OneAboveTheOther) {
            for (const char32_t above : joint.first) {
                for (const char32_t below : joint.second) {
                    const auto bottom = row(drawn(above, size), size.height - 1);
                    EXPECT_FALSE(isEmpty(bottom)) << std::hex << unsigned(above);
                    EXPECT_EQ(bottom, row(drawn(below, size), 0))
                        << std::hex << unsigned(above) << " above " << unsigned(below);
                }
            }
        }
    }
}

TEST(BoxDrawing, ACornerTouchesNoEdgeThatItDoesNotGoTo)
{
    for (const CellSize& size : Sizes) {
        for (const char32_t corner : std::u32string_view(U"┌┏╔╭╒╓")) {
            const CoverageCanvas canvas = drawn(corner, size);
            EXPECT_TRUE(isEmpty(column(canvas, 0))) << std::hex << unsigned(corner);
            EXPECT_TRUE(isEmpty(row(canvas, 0))) << std::hex << unsigned(corner);
        }
    }
}

TEST(BoxDrawing, TheArmsOfACharacterMeet)
{
    // From each edge that has ink, ink reaches the middle without a gap.
    for (const CellSize& size : Sizes) {
        for (char32_t scalar = 0x250C; scalar <= 0x254B; ++scalar) {
            const CoverageCanvas canvas = drawn(scalar, size);
            const int x = (size.width - size.line) / 2;
            const int y = (size.height - size.line) / 2;
            EXPECT_EQ(canvas.at(x, y), 255) << std::hex << unsigned(scalar);
            const auto reaches = [&](int fromX, int fromY) {
                if (canvas.at(fromX, fromY) == 0)
                    return true;
                while (fromX != x || fromY != y) {
                    fromX += (x > fromX) - (x < fromX);
                    fromY += (y > fromY) - (y < fromY);
                    if (canvas.at(fromX, fromY) == 0)
                        return false;
                }
                return true;
            };
            EXPECT_TRUE(reaches(0, y)) << std::hex << unsigned(scalar);
            EXPECT_TRUE(reaches(size.width - 1, y)) << std::hex << unsigned(scalar);
            EXPECT_TRUE(reaches(x, 0)) << std::hex << unsigned(scalar);
            EXPECT_TRUE(reaches(x, size.height - 1)) << std::hex << unsigned(scalar);
        }
    }
}

TEST(BoxDrawing, TheInnerCornersOfDoubleLinesStayOpen)
{
    for (const CellSize& size : Sizes) {
        const CoverageCanvas cross = drawn(U'╬', size);
        const int x = (size.width - size.line) / 2;
        const int y = (size.height - size.line) / 2;

        EXPECT_EQ(cross.at(x, y), 0);
        EXPECT_EQ(cross.at(x, 0), 0);
        EXPECT_EQ(cross.at(0, y), 0);
        EXPECT_EQ(cross.at(x - 1, y - 1), 255);
        EXPECT_EQ(cross.at(x + size.line, y + size.line), 255);
    }
}

TEST(BoxDrawing, HalvesAndQuadrantsFillACellTogetherWithoutOverlap)
{
    const auto complement = [](std::u32string_view parts) {
        for (const CellSize& size : Sizes) {
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    int inked = 0;
                    for (const char32_t part : parts)
                        inked += drawn(part, size).at(x, y) != 0;
                    ASSERT_EQ(inked, 1) << x << ' ' << y << " of " << size.width;
                }
            }
        }
    };

    complement(U"▀▄");
    complement(U"▌▐");
    complement(U"▘▝▖▗");
    complement(U"▚▞");
    complement(U"▙▝");
    complement(U"\U0001FB00\U0001FB3B"); // The upper left sixth, and all but it.
}

TEST(BoxDrawing, EighthsGrowFromTheirEdge)
{
    const CellSize size{14, 36, 2};
    int before = 0;
    for (char32_t scalar = U'▁'; scalar <= U'█'; ++scalar) {
        const auto inked = std::ranges::count(column(drawn(scalar, size), 3), 255);
        EXPECT_GT(inked, before);
        EXPECT_EQ(drawn(scalar, size).at(3, size.height - 1), 255);
        before = int(inked);
    }
    EXPECT_EQ(before, size.height);
}

TEST(BoxDrawing, ShadesAreEvenSoThatTheyShowNoSeams)
{
    for (const char32_t shade : std::u32string_view(U"░▒▓")) {
        const CoverageCanvas canvas = drawn(shade, {7, 18, 1});
        const int first = canvas.at(0, 0);
        EXPECT_GT(first, 0);
        EXPECT_LT(first, 255);
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(column(canvas, x), std::vector<int>(18, first));
    }
}

TEST(BoxDrawing, EachBrailleDotHasAFieldOfItsOwn)
{
    const CellSize size{14, 36, 2};
    const std::array<std::pair<int, int>, 8> fields{
        {{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {1, 2}, {0, 3}, {1, 3}}};
    for (std::size_t dot = 0; dot < fields.size(); ++dot) {
        const CoverageCanvas canvas = drawn(char32_t(0x2800 + (1U << dot)), size);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool isInField = x / 7 == fields[dot].first && y / 9 == fields[dot].second;
                if (!isInField) {
                    EXPECT_EQ(canvas.at(x, y), 0) << dot << ": " << x << ' ' << y;
                }
            }
        }
        EXPECT_EQ(canvas.at(fields[dot].first * 7 + 3, fields[dot].second * 9 + 4), 255);
    }
    EXPECT_TRUE(isEmpty(column(drawn(U'\u2800', size), 3)));
}

TEST(BoxDrawing, ArrowHeadsOfPromptsFillTheEdgeThatTheyStandOn)
{
    for (const CellSize& size : Sizes) {
        const CoverageCanvas right = drawn(U'\uE0B0', size);
        const CoverageCanvas left = drawn(U'\uE0B2', size);
        for (int y = 1; y < size.height - 1; ++y) {
            EXPECT_GT(right.at(0, y), 100) << y;
            EXPECT_GT(left.at(size.width - 1, y), 100) << y;
        }
        EXPECT_GT(right.at(size.width - 1, size.height / 2), 0);
        EXPECT_EQ(right.at(size.width - 1, 0), 0);
    }
}

TEST(BoxDrawing, EverythingBetweenTheBoundsIsDrawnAndNothingElse)
{
    const CellSize size{9, 20, 1};
    const auto isDrawn = [&](char32_t scalar) {
        CoverageCanvas canvas(size.width, size.height);
        return BoxDrawing::draw(scalar, canvas, size.line);
    };
    for (char32_t scalar = 0x2500; scalar <= 0x259F; ++scalar)
        EXPECT_TRUE(isDrawn(scalar)) << std::hex << unsigned(scalar);
    for (const char32_t rule : std::u32string_view(U"⎺⎻⎼⎽⎾⎿⏋⏌"))
        EXPECT_TRUE(isDrawn(rule)) << std::hex << unsigned(rule);
    for (char32_t scalar = 0x1FB00; scalar <= 0x1FB3B; ++scalar)
        EXPECT_TRUE(isDrawn(scalar)) << std::hex << unsigned(scalar);
    for (const char32_t other : std::u32string_view(U"A\u24FF\u25A0\u27FF\u2900\uE0A0\U0001FB3C"))
        EXPECT_FALSE(isDrawn(other)) << std::hex << unsigned(other);
}
