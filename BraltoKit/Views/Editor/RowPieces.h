#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace Bralto {

/// A stretch of a row that is drawn in one go: plain characters together, any other alone, so that
/// every character stands in its column whatever font it comes from.
struct RowPiece {
    QStringView text;
    int column = 0;        ///< Of its first character in the row.
    int width = 0;         ///< In columns.
    qsizetype offset = 0;  ///< In the row.
    bool isVisible = true; ///< A tab has nothing to draw.
    bool isSimple = false; ///< Every character takes one column.
};

/// The pieces of a row from left to right.
[[nodiscard]] std::vector<RowPiece> rowPieces(QStringView row);

/// The column of a UTF-16 offset into a row that was cut into `pieces`.
[[nodiscard]] int columnAt(const std::vector<RowPiece>& pieces, qsizetype offset);

} // namespace Bralto
