// Printed text: from bytes to cells.

#include "Kovalt/Terminal.h"

#include "Kovalt/Ascii.h"
#include "Kovalt/TextScan.h"
#include "Kovalt/UnicodeUtil.h"
#include "Kovalt/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Kovalt {

namespace {

constexpr char32_t ZeroWidthJoiner = 0x200D;
constexpr char32_t TextSelector = 0xFE0E;
constexpr char32_t EmojiSelector = 0xFE0F;

constexpr bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Bytes of the character that a byte of 0x80 or above begins; 1 if it begins none.
constexpr std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0xC0 || lead > 0xF7)
        return 1;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// What the front of some bytes is.
struct Decoded {
    char32_t scalar = Utf8::Replacement;
    std::size_t length = 1; ///< Bytes of it; 0 if it goes on behind the end.
};

/// A byte of 0x80 or above is in front. A malformed sequence is one replacement character, and ends
/// before the first byte that can't belong to it.
Decoded decodeFront(std::string_view text)
{
    constexpr char32_t LeastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = sequenceLength(lead);
    if (length == 1)
        return {};
    char32_t scalar = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size())
            return {Utf8::Replacement, 0};
        const auto byte = static_cast<unsigned char>(text[i]);
        if (!isContinuation(byte))
            return {Utf8::Replacement, i};
        scalar = scalar << 6 | (byte & 0x3F);
    }
    const bool isSurrogate = scalar >= 0xD800 && scalar <= 0xDFFF;
    if (scalar < LeastOfLength[length] || scalar > 0x10FFFF || isSurrogate)
        scalar = Utf8::Replacement;
    return {scalar, length};
}

} // namespace

void Terminal::print(std::span<const std::uint8_t> bytes, TextKind kind)
{
    const std::string_view text = Ascii::view(bytes);
    Buffer& buffer = *m_buffer;
    updateRange(buffer.y);
    const bool isPlain = kind == TextKind::PrintableAscii && m_print.heldCount == 0 &&
                         m_charsets.active() == CharSetId::Ascii;
    const int row = buffer.y;
    if (isPlain && buffer.insertAsciiRun(text, m_curAttr, resolvePayload()) == text.size()) {
        m_print.lastCode = static_cast<unsigned char>(text.back());
        m_print.lastWidth = 1;
    } else {
        printBetweenStrays(text);
    }
    // A row that scrolled in has been marked.
    if (buffer.y != row)
        updateRange(buffer.y);
}

/// The only control that stands in text is one that means nothing, also between the bytes of a
/// character.
void Terminal::printBetweenStrays(std::string_view text)
{
    constexpr char EndOfMedium = 0x19;
    for (auto end = text.find(EndOfMedium); end != text.npos; end = text.find(EndOfMedium)) {
        printMixed(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    printMixed(text);
}

std::uint16_t Terminal::resolvePayload()
{
    return m_activeHyperlink.kind == HyperlinkState::Kind::Absent ? std::uint16_t(0)
                                                                  : resolveActiveHyperlink();
}

void Terminal::printMixed(std::string_view text)
{
    if (m_print.heldCount > 0)
        text = printHeld(text);
    m_print.payload = resolvePayload();
    while (!text.empty()) {
        if (const std::size_t length = printSimpleRun(text)) {
            text.remove_prefix(length);
            continue;
        }
        if (static_cast<unsigned char>(text[0]) < 0x80) {
            text.remove_prefix(printAscii(text));
            continue;
        }
        const Decoded decoded = decodeFront(text);
        if (decoded.length == 0) {
            std::copy(text.begin(), text.end(), m_print.held.begin());
            m_print.heldCount = text.size();
            return;
        }
        printScalar(decoded.scalar);
        text.remove_prefix(decoded.length);
    }
}

/// Prints from the front what joins nothing before it: most text that is not ASCII. Returns its
/// bytes.
std::size_t Terminal::printSimpleRun(std::string_view text)
{
    // A longer stretch of ASCII has a faster way.
    constexpr std::size_t LongestAscii = 12;
    if (CharSets::mapping(m_charsets.active()) || endsInCluster())
        return 0;
    std::array<Buffer::PrintedScalar, 64> run;
    std::size_t count = 0;
    std::size_t ascii = 0;
    std::size_t at = 0;
    while (at < text.size() && count < run.size() && ascii <= LongestAscii) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x80) {
            if (byte < 0x20 || byte == 0x7F)
                break;
            run[count++] = {byte, 1};
            ++ascii;
            ++at;
            continue;
        }
        const Decoded decoded = decodeFront(text.substr(at));
        const int width = UnicodeUtil::computeColumnWidth(decoded.scalar);
        if (decoded.length == 0 || width < 1 || UnicodeUtil::isRegionalIndicator(decoded.scalar) ||
            UnicodeUtil::isEmojiModifier(decoded.scalar))
            break;
        run[count++] = {decoded.scalar, std::int8_t(width)};
        ascii = 0;
        at += decoded.length;
    }
    if (ascii > LongestAscii) {
        count -= ascii;
        at -= ascii;
    }
    if (count == 0)
        return 0;
    m_buffer->insertScalarRun({run.data(), count}, m_curAttr, m_print.payload);
    m_print.lastCode = std::int32_t(run[count - 1].scalar);
    m_print.lastWidth = UnicodeUtil::computeColumnWidth(run[count - 1].scalar);
    return at;
}

/// Whether the character before the cursor is one of several scalars, which others may join.
bool Terminal::endsInCluster() const
{
    const BufferLine& line = m_buffer->cursorLine();
    const int column = precedingColumn(line);
    const auto cells = line.live();
    return column >= 0 && std::size_t(column) < cells.size() &&
           cells[std::size_t(column)].code >= CharData::FirstGrapheme;
}

/// Goes on with the character that the last text ended in. Returns the text behind it.
std::string_view Terminal::printHeld(std::string_view text)
{
    m_print.payload = resolvePayload();
    while (!text.empty()) {
        const std::size_t before = m_print.heldCount;
        m_print.held[m_print.heldCount++] = text[0];
        const Decoded decoded = decodeFront({m_print.held.data(), m_print.heldCount});
        if (decoded.length != 0) {
            m_print.heldCount = 0;
            printScalar(decoded.scalar);
            return text.substr(decoded.length - before);
        }
        text.remove_prefix(1);
    }
    return text;
}

/// Prints bytes below 0x80 from the front. Returns how many.
std::size_t Terminal::printAscii(std::string_view text)
{
    const auto* const mapping = CharSets::mapping(m_charsets.active());
    const auto first = static_cast<unsigned char>(text[0]);
    if (mapping) {
        const char16_t mapped = (*mapping)[first];
        if (mapped != 0)
            printCell(mapped, 1);
        else if (first >= 0x20 && first < 0x7F)
            printCell(first, 1);
        return 1;
    }
    const std::size_t length = printableAsciiLength(Ascii::bytes(text));
    if (length == 0)
        return 1;
    if (m_buffer->insertAsciiRun(text.substr(0, length), m_curAttr, m_print.payload) == length) {
        m_print.lastCode = static_cast<unsigned char>(text[length - 1]);
        m_print.lastWidth = 1;
    } else {
        for (const char code : text.substr(0, length))
            printCell(static_cast<unsigned char>(code), 1);
    }
    return length;
}

void Terminal::printScalar(char32_t scalar)
{
    int width = UnicodeUtil::computeColumnWidth(scalar);
    if (width < 0)
        return;
    if (width == 2 && UnicodeUtil::isRegionalIndicator(scalar) &&
        m_options.regionalIndicatorWidth == RegionalIndicatorWidth::Narrow)
        width = 1;
    if (joinToPreceding(scalar, width) || width == 0)
        return;
    printCell(std::int32_t(scalar), width);
}

void Terminal::printCell(std::int32_t code, int width)
{
    CharData cell;
    cell.code = code;
    cell.width = std::int8_t(width);
    cell.attribute = m_curAttr;
    m_buffer->insertCharacter(cell, m_print.payload);
    m_print.lastCode = code;
    m_print.lastWidth = width;
}

/// The column of the character before the cursor, its left half if it is wide; -1 if there is none.
int Terminal::precedingColumn(const BufferLine& line) const
{
    const int column = std::min(m_buffer->x, m_cols) - 1;
    const auto cells = line.live();
    const bool isRightHalf =
        column > 0 && std::size_t(column) < cells.size() && cells[std::size_t(column)].width == 0;
    return isRightHalf ? column - 1 : column;
}

/// Makes the scalar a part of the character before the cursor if the two belong together.
bool Terminal::joinToPreceding(char32_t scalar, int width)
{
    BufferLine& line = m_buffer->cursorLine();
    const int column = precedingColumn(line);
    if (column < 0)
        return false;
    const auto cells = line.live();
    const std::int32_t code =
        std::size_t(column) < cells.size() ? cells[std::size_t(column)].code : 0;
    const bool isIndicator = UnicodeUtil::isRegionalIndicator(scalar);
    if (width != 0 && code < CharData::FirstGrapheme && !isIndicator &&
        !UnicodeUtil::isEmojiModifier(scalar))
        return false;

    const bool isSelector = scalar == TextSelector || scalar == EmojiSelector;
    if (!isSelector && !isIndicator) {
        if (const auto joined = m_graphemes.recentlyExtended(code, scalar)) {
            line.writable(column + 1)[column].code = *joined;
            m_print.lastCode = *joined;
            return true;
        }
    }
    const char32_t last = m_graphemes.lastScalar(code);
    const bool wants = width == 0 || last == ZeroWidthJoiner ||
                       (isIndicator && UnicodeUtil::isRegionalIndicator(last)) ||
                       (UnicodeUtil::isEmojiModifier(scalar) &&
                        UnicodeUtil::properties(last).extendedPictographic);
    if (!wants || !m_graphemes.joins(code, scalar))
        return false;
    if (isSelector) {
        selectPresentation(line, column, scalar);
        return true;
    }
    if (const auto joined = m_graphemes.extended(code, scalar)) {
        line.writable(column + 1)[column].code = *joined;
        m_print.lastCode = *joined;
    }
    if (isIndicator && line[column].width == 1)
        setPrecedingWidth(line, column, 2);
    return true;
}

/// A character that has a text and an emoji form takes the one that is asked for.
void Terminal::selectPresentation(BufferLine& line, int column, char32_t selector)
{
    const std::int32_t code = line[column].code;
    if (!UnicodeUtil::isEmojiPresentationBase(m_graphemes.lastScalar(code)))
        return;
    if (const auto joined = m_graphemes.extended(code, selector)) {
        line.writable(column + 1)[column].code = *joined;
        m_print.lastCode = *joined;
    }
    setPrecedingWidth(line, column, selector == TextSelector ? 1 : 2);
}

/// Makes the character before the cursor narrow, or wide if there is a column for it.
void Terminal::setPrecedingWidth(BufferLine& line, int column, int width)
{
    CharData cell = line[column];
    if (cell.width == width)
        return;
    const int limit = column <= rightMargin() ? rightMargin() : m_cols - 1;
    if (width == 2 && column + 1 > limit)
        return;
    CharData half = cell;
    half.code = 0;
    half.width = width == 2 ? 0 : 1;
    if (width == 1)
        half.payload = 0;
    cell.width = std::int8_t(width);
    CharData* const cells = line.overwrite(column, 2);
    cells[0] = cell;
    cells[1] = half;
    m_buffer->x = column + width;
    m_buffer->waits = m_buffer->x > limit;
    m_print.lastWidth = width;
}

void Terminal::cmdRepeatPrecedingCharacter(const CsiSequence& sequence)
{
    if (m_print.lastCode == 0)
        return;
    // More than fills the screen can't be told from what fills it.
    const int count = std::min(std::max(1, sequence.parameters[0]), m_cols * m_rows);
    m_print.payload = resolvePayload();
    updateRange(m_buffer->y);
    for (int i = 0; i < count; ++i)
        printCell(m_print.lastCode, m_print.lastWidth);
    updateRange(m_buffer->y);
}

} // namespace Kovalt
