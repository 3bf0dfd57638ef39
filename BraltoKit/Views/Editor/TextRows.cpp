#include "Views/Editor/TextRows.h"

#include <algorithm>
#include <limits>

namespace Bralto {
namespace {

/// Longer lines are made by machines, for machines.
constexpr qsizetype LongestWrapped = 5000;

/// Scripts whose characters fill two columns of a fixed face.
bool isWide(char32_t character)
{
    return (character >= 0x1100 && character <= 0x115F) ||
           (character >= 0x2E80 && character <= 0x303E) ||
           (character >= 0x3041 && character <= 0xA4CF) ||
           (character >= 0xAC00 && character <= 0xD7A3) ||
           (character >= 0xF900 && character <= 0xFAFF) ||
           (character >= 0xFE30 && character <= 0xFE6F) ||
           (character >= 0xFF00 && character <= 0xFF60) ||
           (character >= 0x1F300 && character <= 0x1FAFF) ||
           (character >= 0x20000 && character <= 0x3FFFD);
}

bool isPlain(QStringView line)
{
    return std::ranges::all_of(
        line, [](QChar character) { return character >= u' ' && character < char16_t(0x300); });
}

/// Calls `visit(offset, length, column)` for every character; stops when it returns false.
template <typename Visit>
void walk(QStringView line, Visit visit)
{
    int column = 0;
    for (qsizetype at = 0; at < line.size();) {
        const bool isPair =
            line[at].isHighSurrogate() && at + 1 < line.size() && line[at + 1].isLowSurrogate();
        const qsizetype length = isPair ? 2 : 1;
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(line[at], line[at + 1]) : char32_t(line[at].unicode());
        const int width = TextRows::widthOf(character, column);
        if (!visit(at, length, width))
            return;
        column += width;
        at += length;
    }
}

} // namespace

int TextRows::widthOf(char32_t character, int column)
{
    if (character == U'\t')
        return TabWidth - column % TabWidth;
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    return isWide(character) ? 2 : 1;
}

TextRows::TextRows(const QString& text)
    : m_text(text)
{
    for (qsizetype at = m_text.indexOf(u'\n'); at >= 0; at = m_text.indexOf(u'\n', at + 1))
        m_starts.push_back(at + 1);
    m_isCut.resize(m_starts.size());
    for (int at = 0; at < lineCount(); ++at)
        m_isCut[std::size_t(at)] = line(at).size() > LongestWrapped && isPlain(line(at));
    wrap(m_columns);
}

QStringView TextRows::line(int line) const
{
    const auto at = std::size_t(line);
    const qsizetype start = m_starts[at];
    qsizetype end = at + 1 < m_starts.size() ? m_starts[at + 1] - 1 : m_text.size();
    if (end > start && m_text[end - 1] == u'\r')
        --end;
    return QStringView(m_text).sliced(start, end - start);
}

std::vector<qsizetype> TextRows::breaks(int line, int wanted) const
{
    const QStringView text = this->line(line);
    std::vector<qsizetype> starts = {0};
    qsizetype word = 0; // where the word begins that is being walked
    int used = 0;
    int usedByWord = 0;
    walk(text, [&](qsizetype at, qsizetype, int width) {
        // A blank that doesn't fit hangs over the end, where it can't be seen.
        if (used + width > m_columns && used > 0 && text[at] != u' ') {
            if (int(starts.size()) == wanted)
                return false;
            // A word that fills the row from its start can't be moved to the next.
            const bool movesWord = word > starts.back();
            starts.push_back(movesWord ? word : at);
            used = movesWord ? usedByWord : 0;
        }
        used += width;
        usedByWord += width;
        if (text[at] == u' ' || text[at] == u'\t') {
            word = at + 1;
            usedByWord = 0;
        }
        return true;
    });
    return starts;
}

int TextRows::countRows(int line) const
{
    const qsizetype size = this->line(line).size();
    if (m_isCut[std::size_t(line)])
        return std::max(1, int((size + m_columns - 1) / m_columns));
    // A line of so few characters fits, whatever they are.
    if (size * TabWidth <= m_columns)
        return 1;
    return int(breaks(line, std::numeric_limits<int>::max()).size());
}

void TextRows::wrap(int columns)
{
    m_columns = std::max(1, columns);
    m_firstRows.resize(m_starts.size());
    int row = 0;
    for (int at = 0; at < lineCount(); ++at) {
        m_firstRows[std::size_t(at)] = row;
        row += countRows(at);
    }
    m_rowCount = row;
}

int TextRows::lineOfRow(int row) const
{
    const auto after = std::ranges::upper_bound(m_firstRows, row);
    return std::max(0, int(after - m_firstRows.begin()) - 1);
}

TextRows::Row TextRows::row(int row) const
{
    const int line = lineOfRow(row);
    const int inLine = row - firstRow(line);
    const QStringView text = this->line(line);
    qsizetype start = 0;
    qsizetype end = text.size();
    if (m_isCut[std::size_t(line)]) {
        start = qsizetype(inLine) * m_columns;
        end = std::min(end, start + m_columns);
    } else if (const std::vector<qsizetype> starts = breaks(line, inLine + 2);
               inLine < int(starts.size())) {
        start = starts[std::size_t(inLine)];
        if (inLine + 1 < int(starts.size()))
            end = starts[std::size_t(inLine) + 1];
    }
    return {line, inLine, start, text.sliced(start, end - start)};
}

int TextRows::rowOf(Place place) const
{
    const int first = firstRow(place.line);
    if (m_isCut[std::size_t(place.line)]) {
        const int last = countRows(place.line) - 1;
        return first + std::min(last, int(place.offset / m_columns));
    }
    const std::vector<qsizetype> starts = breaks(place.line, std::numeric_limits<int>::max());
    return first +
           std::max(0, int(std::ranges::upper_bound(starts, place.offset) - starts.begin()) - 1);
}

int TextRows::columnOf(Place place) const
{
    const Row row = this->row(rowOf(place));
    int column = 0;
    walk(row.text, [&](qsizetype at, qsizetype, int width) {
        if (row.offset + at >= place.offset)
            return false;
        column += width;
        return true;
    });
    return column;
}

TextRows::Place TextRows::placeAt(int row, int column) const
{
    const Row found = this->row(std::clamp(row, 0, m_rowCount - 1));
    qsizetype offset = found.offset + found.text.size();
    int used = 0;
    walk(found.text, [&](qsizetype at, qsizetype, int width) {
        if (used + (width + 1) / 2 > column) {
            offset = found.offset + at;
            return false;
        }
        used += width;
        return true;
    });
    return {found.line, offset};
}

QString TextRows::between(Place from, Place to) const
{
    if (to < from)
        std::swap(from, to);
    const qsizetype start = m_starts[std::size_t(from.line)] + from.offset;
    const qsizetype end = m_starts[std::size_t(to.line)] + to.offset;
    return m_text.mid(start, end - start);
}

TextRows::Place TextRows::end() const
{
    const int last = lineCount() - 1;
    return {last, line(last).size()};
}

} // namespace Bralto
