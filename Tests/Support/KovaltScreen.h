#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/GraphemeTable.h"
#include "Kovalt/UnicodeUtil.h"
#include "Kovalt/Utf8.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt::Testing {

/// A buffer with the least of a terminal around it: it scrolls, and knows line feeds.
class Screen final : public BufferHost {
public:
    Screen(int cols, int rows, std::optional<int> scrollback = std::nullopt)
        : buffer(Buffer::Options{cols, rows, 8, scrollback, {}})
    {
        buffer.setHost(this);
        buffer.fillViewportRows();
    }

    void scroll(bool isWrapped) override
    {
        ++scrolls;
        buffer.scrollUp(attribute, isWrapped, {}, userScrolling);
    }
    std::uint16_t resolvePayload() override
    {
        ++resolved;
        return payload;
    }

    /// Prints character by character; "\n" begins the next row.
    void print(std::string_view text)
    {
        for (std::size_t position = 0; position < text.size();) {
            const char32_t scalar = Utf8::next(text, position);
            if (scalar == U'\n')
                newLine();
            else
                put(scalar);
        }
    }
    /// The same by runs of plain text.
    void printRuns(std::string_view text)
    {
        while (!text.empty()) {
            const auto end = std::min(text.find('\n'), text.size());
            if (end > 0) {
                const std::size_t taken = buffer.insertAsciiRun(text.substr(0, end), attribute);
                print(text.substr(taken, end - taken));
            }
            if (end < text.size())
                newLine();
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }
    void put(char32_t scalar)
    {
        CharData cell;
        cell.code = std::int32_t(scalar);
        cell.width = std::int8_t(UnicodeUtil::computeColumnWidth(scalar));
        cell.attribute = attribute;
        buffer.insertCharacter(cell);
    }
    void newLine()
    {
        buffer.x = 0;
        if (buffer.y == buffer.scrollBottom)
            scroll(false);
        else if (buffer.y < buffer.rows() - 1)
            ++buffer.y;
    }

    /// A row of the ring, or of the screen, without the empty cells at its end.
    [[nodiscard]] std::string ringRow(int row)
    {
        BufferLine::TextRange range;
        range.trimRight = true;
        return buffer.lines()[row].translateToString(graphemes, range);
    }
    [[nodiscard]] std::string row(int row) { return ringRow(buffer.yBase + row); }
    /// Every text of the ring, rows that continue each other joined, empty ones at the end left
    /// out.
    [[nodiscard]] std::vector<std::string> texts()
    {
        std::vector<std::string> result;
        for (int i = 0; i < buffer.lines().count(); ++i) {
            if (!buffer.lines()[i].isWrapped() || result.empty())
                result.emplace_back();
            result.back() += ringRow(i);
        }
        while (!result.empty() && result.back().empty())
            result.pop_back();
        return result;
    }
    /// The character under the cursor.
    [[nodiscard]] std::string underCursor()
    {
        if (buffer.x >= buffer.cols())
            return "";
        return graphemes.textFor(buffer.cursorLine()[buffer.x].code);
    }

    GraphemeTable graphemes;
    Buffer buffer;
    Attribute attribute;
    std::uint16_t payload = 0;
    bool userScrolling = false;
    int scrolls = 0;
    int resolved = 0;
};

} // namespace Kovalt::Testing
