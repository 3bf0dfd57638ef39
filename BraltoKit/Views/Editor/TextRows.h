#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace Bralto {

/// A text cut into lines, and the lines into rows of a number of columns. It knows where every
/// line begins and how many rows lie above it, and copies nothing: it is a view of its text.
/// A tab goes to the next multiple of four columns, a wide character takes two.
class TextRows {
public:
    static constexpr int TabWidth = 4;

    /// A place in a text: a line, and a UTF-16 offset into it. Both from 0.
    struct Place {
        int line = 0;
        qsizetype offset = 0;
        auto operator<=>(const Place&) const = default;
    };

    /// A stretch of one line that stands on one row.
    struct Row {
        int line = 0;
        int rowInLine = 0;
        qsizetype offset = 0; ///< Of its first character in the line.
        QStringView text;
    };

    TextRows() = default;
    explicit TextRows(const QString& text);

    /// Cuts the lines into rows of at most `columns` columns, at least one.
    void wrap(int columns);

    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] int lineCount() const { return int(m_starts.size()); }
    [[nodiscard]] int rowCount() const { return m_rowCount; }
    [[nodiscard]] QStringView line(int line) const;
    [[nodiscard]] int firstRow(int line) const { return m_firstRows[std::size_t(line)]; }
    [[nodiscard]] int lineOfRow(int row) const;
    /// A row of the text, from 0 at its top.
    [[nodiscard]] Row row(int row) const;
    /// The row that holds a place, from 0 at the top of the text.
    [[nodiscard]] int rowOf(Place place) const;
    /// The column of a place in its row.
    [[nodiscard]] int columnOf(Place place) const;
    /// The place nearest to a column of a row.
    [[nodiscard]] Place placeAt(int row, int column) const;
    /// The stretch of the text between two places.
    [[nodiscard]] QString between(Place from, Place to) const;
    [[nodiscard]] Place end() const;

    /// How many columns a character takes at `column`.
    [[nodiscard]] static int widthOf(char32_t character, int column);

private:
    [[nodiscard]] int countRows(int line) const;
    /// Where the rows of a line begin, as far as `wanted` of them. Of a line that isn't cut.
    [[nodiscard]] std::vector<qsizetype> breaks(int line, int wanted) const;

    QString m_text;
    std::vector<qsizetype> m_starts = {0};
    /// Lines of absurd length whose characters take one column each.
    std::vector<bool> m_isCut = {false};
    std::vector<int> m_firstRows = {0};
    int m_rowCount = 1;
    int m_columns = 80;
};

} // namespace Bralto
