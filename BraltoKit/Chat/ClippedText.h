#pragma once

#include <QString>

namespace Bralto {

/// A long text as a card shows it.
struct ClippedText {
    QString shown;
    QString button; ///< "Show more (N lines)", "Show less", or empty if all is shown anyway.

    /// `text` in a card of `limit` lines. Closed, it has at most 4000 characters; open, 200000.
    [[nodiscard]] static ClippedText of(const QString& text, qsizetype limit, bool showsAll);

    bool operator==(const ClippedText&) const = default;
};

} // namespace Bralto
