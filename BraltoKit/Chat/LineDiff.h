#pragma once

#include "Chat/ChatMessage.h"

#include <QString>

#include <vector>

namespace Bralto::LineDiff {

enum class Kind { Same, Removed, Added };

struct Line {
    Kind kind = Kind::Same;
    QString text;

    bool operator==(const Line&) const = default;
};

/// How many lines came and went.
struct Stats {
    qsizetype added = 0;
    qsizetype removed = 0;

    bool operator==(const Stats&) const = default;
};

/// The lines of both texts, a changed line's new form above its old one. Texts whose line counts
/// multiply to more than 250000 aren't compared: all old lines go, then all new ones come.
[[nodiscard]] std::vector<Line> lines(const QString& before, const QString& after);

/// The lines of all edits, one after the other. A file that is written whole only adds.
[[nodiscard]] std::vector<Line> lines(const QList<ChatEdit>& edits);

[[nodiscard]] Stats stats(const std::vector<Line>& lines);

/// How many of `count` lines a card shows, closed or open.
[[nodiscard]] qsizetype shownLines(qsizetype count, bool showsAll);

/// Whether a card of `count` lines offers to show more or less of them.
[[nodiscard]] bool canShowAll(qsizetype count);

} // namespace Bralto::LineDiff
