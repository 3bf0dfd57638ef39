#pragma once

/// @file
/// The agent's replies as blocks. The parser reads line by line and never fails: any prefix of a
/// reply gives something sensible, so a reply can be parsed again at every piece that arrives.
/// What stands inside a block is `ChatInline`'s business.

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

namespace Bralto {

namespace MarkdownBlocks {

struct Paragraph {
    QString text; ///< Several lines keep their line feeds.
    bool operator==(const Paragraph&) const = default;
};
struct Heading {
    int level = 1; ///< 1 to 6.
    QString text;
    bool operator==(const Heading&) const = default;
};
struct ListItem {
    int depth = 0;                 ///< 0 to 4.
    std::optional<QString> marker; ///< The number and "." of an ordered item; absent for a bullet.
    std::optional<bool> checked;   ///< Absent without a task box.
    QString text;                  ///< May be empty.
    bool operator==(const ListItem&) const = default;
};
struct List {
    std::vector<ListItem> items; ///< Never empty.
    bool operator==(const List&) const = default;
};
struct Quote {
    QString text;
    bool operator==(const Quote&) const = default;
};
struct Code {
    std::optional<QString> language; ///< As it was written; never empty.
    QString text;
    bool operator==(const Code&) const = default;
};
struct Table {
    QStringList header;            ///< Never empty.
    std::vector<QStringList> rows; ///< A row may be shorter or longer than the header.
    bool operator==(const Table&) const = default;
};
struct Rule {
    bool operator==(const Rule&) const = default;
};

} // namespace MarkdownBlocks

using MarkdownBlock =
    std::variant<MarkdownBlocks::Paragraph, MarkdownBlocks::Heading, MarkdownBlocks::List,
                 MarkdownBlocks::Quote, MarkdownBlocks::Code, MarkdownBlocks::Table,
                 MarkdownBlocks::Rule>;

namespace MarkdownParser {

/// The beginning of a text that whatever is added to the text leaves as it is.
struct Settled {
    qsizetype length = 0;   ///< In UTF-16 units.
    std::size_t blocks = 0; ///< How many of the text's blocks stand in it.
};

/// The blocks of `text`, in order. A code fence that nothing closes runs to the end.
[[nodiscard]] std::vector<MarkdownBlock> blocks(const QString& text);

/// The blocks behind `settled`, which was told of `text` or of a beginning of it, or is empty. It
/// becomes what is settled now.
[[nodiscard]] std::vector<MarkdownBlock> blocksBehind(Settled& settled, const QString& text);

/// The three or more backticks or tildes that `line`, trimmed of blanks, begins with.
[[nodiscard]] std::optional<QString> fenceMarker(QStringView line);

/// The heading that `line`, trimmed of blanks, is.
[[nodiscard]] std::optional<MarkdownBlocks::Heading> heading(QStringView line);

/// Whether `line` separates a table's header from its rows.
[[nodiscard]] bool isTableSeparator(QStringView line);

/// The cells of a table's line, each trimmed of blanks.
[[nodiscard]] QStringList cells(QStringView line);

/// The item that `line`, not trimmed, is.
[[nodiscard]] std::optional<MarkdownBlocks::ListItem> listItem(QStringView line);

} // namespace MarkdownParser

} // namespace Bralto
