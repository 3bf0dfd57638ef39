#pragma once

#include <QString>

namespace Bralto::ChatNotice {

/// How many lines of a notice are shown before the rest is folded away.
inline constexpr qsizetype MostLines = 12;

/// A notice as a view shows it.
struct Shown {
    QString text;              ///< At most `MostLines` lines unless all of it was asked for.
    qsizetype foldedLines = 0; ///< How many lines of the whole `text` leaves out.

    bool operator==(const Shown&) const = default;
};

enum class Extent { Folded, Whole };

/// `text`, which the agent wrote, without the tags that it wraps a command and its output in, and
/// without blank lines around it. Everything else between angle brackets stays.
[[nodiscard]] Shown shown(const QString& text, Extent extent = Extent::Folded);

} // namespace Bralto::ChatNotice
