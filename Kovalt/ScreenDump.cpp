// A screen as plain text, and as text with the sequences that make it again.

#include "Kovalt/ScreenDump.h"

#include "Kovalt/Terminal.h"

#include <algorithm>
#include <string>

namespace Kovalt::ScreenDump {

namespace {

/// Writes cells so that a terminal shows them again, with as few sequences as it takes.
class SgrWriter {
public:
    SgrWriter(const GraphemeTable& graphemes, int cols)
        : m_graphemes(graphemes)
        , m_cols(cols)
    {
    }

    void writeRow(const BufferLine& line)
    {
        int end = m_cols;
        while (end > 0 && isErased(shown(line, end - 1)) &&
               shown(line, end - 1).attribute == Attribute{})
            --end;
        for (int column = 0; column < end;) {
            const CharData cell = shown(line, column);
            if (isErased(cell)) {
                column += writeErased(line, column, end);
                continue;
            }
            setLook(cell.attribute);
            setLink(cell.payload);
            if (cell.code == 0)
                m_text += ' ';
            else
                m_graphemes.appendText(m_text, cell.code);
            column += std::max<int>(1, cell.width);
        }
    }
    /// On to the next row, which `continues` this one because the terminal wraps there.
    void endRow(bool continues)
    {
        if (continues)
            return;
        setLink(0);
        setLook({});
        m_text += "\r\n";
    }
    [[nodiscard]] std::string finish()
    {
        setLink(0);
        setLook({});
        return std::move(m_text);
    }

private:
    /// A cell without what can't be seen of it.
    static CharData shown(const BufferLine& line, int column)
    {
        CharData cell = line[column];
        cell.attribute.guard = CharacterGuard::None;
        return cell;
    }

    /// Where a wide character was cut in two, empty cells keep its looks; no sequence erases so.
    static bool isErased(const CharData& cell)
    {
        Attribute look;
        look.bg = cell.attribute.bg;
        return cell.code == 0 && cell.width != 0 && cell.attribute == look;
    }

    /// Erased cells are passed over; those with a background are erased once more.
    int writeErased(const BufferLine& line, int from, int end)
    {
        const CellColor background = line[from].attribute.bg;
        int to = from;
        while (to < end && isErased(shown(line, to)) && line[to].attribute.bg == background)
            ++to;
        const std::string count = std::to_string(to - from);
        if (background != CellColor{}) {
            Attribute look;
            look.bg = background;
            setLook(look);
            m_text += "\x1B[" + count + "X";
        }
        if (to < m_cols)
            m_text += "\x1B[" + count + "C";
        return to - from;
    }

    static void appendColor(std::string& codes, const CellColor& color, int base)
    {
        const auto add = [&codes](int value) { codes += ";" + std::to_string(value); };
        if (color.kind == CellColor::Kind::Ansi256) {
            add(base + 8);
            add(5);
            add(color.red);
        } else if (color.kind == CellColor::Kind::TrueColor) {
            add(base + 8);
            add(2);
            add(color.red);
            add(color.green);
            add(color.blue);
        }
    }

    void setLook(const Attribute& look)
    {
        if (look == m_look)
            return;
        m_look = look;
        std::string codes = "0";
        constexpr std::pair<std::uint8_t, const char*> Styles[] = {
            {CharacterStyle::Bold, ";1"},      {CharacterStyle::Dim, ";2"},
            {CharacterStyle::Italic, ";3"},    {CharacterStyle::Blink, ";5"},
            {CharacterStyle::Inverse, ";7"},   {CharacterStyle::Invisible, ";8"},
            {CharacterStyle::CrossedOut, ";9"}};
        for (const auto& [bit, code] : Styles) {
            if (look.has(bit))
                codes += code;
        }
        if (look.has(CharacterStyle::Underline))
            codes += ";4:" + std::to_string(static_cast<int>(look.underlineStyle));
        appendColor(codes, look.fg, 30);
        appendColor(codes, look.bg, 40);
        appendColor(codes, look.underlineColor, 50);
        m_text += "\x1B[" + (codes == "0" ? "" : codes) + "m";
    }

    void setLink(std::uint16_t payload)
    {
        if (payload == m_payload)
            return;
        m_payload = payload;
        const auto target = TinyAtom::target(payload);
        m_text += "\x1B]8;" + target.value_or(";") + "\x1B\\";
    }

    const GraphemeTable& m_graphemes;
    int m_cols;
    std::string m_text;
    Attribute m_look;
    std::uint16_t m_payload = 0;
};

/// Whether the row is full to where a terminal wraps, and the next goes on with it.
bool wrapsInto(const BufferLine& line, const BufferLine& next)
{
    const int last = line.size() - 1;
    if (!next.isWrapped() || next[0].code == 0)
        return false;
    const bool isFull = line[last].code != 0 || line[last].width == 0;
    const bool leavesGap = next[0].width == 2 && last > 0 && line[last].isNull() &&
                           (line[last - 1].code != 0 || line[last - 1].width == 0);
    return isFull || leavesGap;
}

} // namespace

std::string text(const Terminal& terminal, Range range)
{
    const Buffer& buffer = terminal.buffer();
    std::string result;
    for (int row = range == Range::Screen ? buffer.yBase : 0; row < buffer.lines().count(); ++row) {
        BufferLine::TextRange whole;
        whole.trimRight = true;
        result += buffer.lines()[row].translateToString(terminal.graphemes(), whole);
        result += '\n';
    }
    return result;
}

std::string sgr(const Terminal& terminal, Range range)
{
    const Buffer& buffer = terminal.buffer();
    SgrWriter writer(terminal.graphemes(), terminal.cols());
    const int count = buffer.lines().count();
    for (int row = range == Range::Screen ? buffer.yBase : 0; row < count; ++row) {
        writer.writeRow(buffer.lines()[row]);
        if (row + 1 < count)
            writer.endRow(wrapsInto(buffer.lines()[row], buffer.lines()[row + 1]));
    }
    return writer.finish();
}

} // namespace Kovalt::ScreenDump
