#include "Chat/LineDiff.h"

#include <QStringView>

namespace Bralto::LineDiff {

namespace {

constexpr qsizetype LargestTable = 250000;
constexpr qsizetype ClosedLines = 40;

/// Lengths of the longest common runs from each pair of lines to the ends.
class Table {
public:
    Table(const QList<QStringView>& before, const QList<QStringView>& after)
        : m_columns(std::size_t(after.size()) + 1)
        , m_cells((std::size_t(before.size()) + 1) * m_columns, 0)
    {
        for (qsizetype i = before.size() - 1; i >= 0; --i) {
            for (qsizetype j = after.size() - 1; j >= 0; --j) {
                cell(i, j) = before[i] == after[j] ? cell(i + 1, j + 1) + 1
                                                   : std::max(cell(i + 1, j), cell(i, j + 1));
            }
        }
    }

    int& cell(qsizetype i, qsizetype j)
    {
        return m_cells[std::size_t(i) * m_columns + std::size_t(j)];
    }

private:
    std::size_t m_columns;
    std::vector<int> m_cells;
};

} // namespace

std::vector<Line> lines(const QString& before, const QString& after)
{
    const QList<QStringView> old = QStringView(before).split(u'\n');
    const QList<QStringView> fresh = QStringView(after).split(u'\n');
    std::vector<Line> result;
    result.reserve(std::size_t(old.size() + fresh.size()));
    const auto add = [&](Kind kind, QStringView text) {
        result.push_back({kind, text.toString()});
    };

    if (old.size() * fresh.size() > LargestTable) {
        for (const QStringView line : old)
            add(Kind::Removed, line);
        for (const QStringView line : fresh)
            add(Kind::Added, line);
        return result;
    }

    Table table(old, fresh);
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < old.size() || j < fresh.size()) {
        if (i < old.size() && j < fresh.size() && old[i] == fresh[j]) {
            add(Kind::Same, old[i++]);
            ++j;
        } else if (i == old.size() ||
                   (j < fresh.size() && table.cell(i, j + 1) >= table.cell(i + 1, j))) {
            add(Kind::Added, fresh[j++]);
        } else {
            add(Kind::Removed, old[i++]);
        }
    }
    return result;
}

std::vector<Line> lines(const QList<ChatEdit>& edits)
{
    std::vector<Line> all;
    for (const ChatEdit& edit : edits) {
        std::vector<Line> some = lines(edit.before, edit.after);
        // A file that is written whole takes nothing away: its empty text before was no line.
        if (edit.before.isEmpty())
            std::erase_if(some, [](const Line& line) { return line.kind == Kind::Removed; });
        all.insert(all.end(), std::make_move_iterator(some.begin()),
                   std::make_move_iterator(some.end()));
    }
    return all;
}

Stats stats(const std::vector<Line>& lines)
{
    Stats stats;
    for (const Line& line : lines) {
        stats.added += line.kind == Kind::Added ? 1 : 0;
        stats.removed += line.kind == Kind::Removed ? 1 : 0;
    }
    return stats;
}

qsizetype shownLines(qsizetype count, bool showsAll)
{
    return showsAll || !canShowAll(count) ? count : ClosedLines;
}

bool canShowAll(qsizetype count)
{
    return count > ClosedLines;
}

} // namespace Bralto::LineDiff
