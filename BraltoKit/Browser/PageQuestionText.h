#pragma once

#include "Browser/PageEngine.h"

#include <QString>

/// What the card of a question says.
namespace Bralto::PageQuestionText {

struct Words {
    QString title;  ///< Who asks, and for what.
    QString text;   ///< The page's own words, cut; may be empty.
    QString accept; ///< The button that says yes.
    QString refuse; ///< The button that says no; empty if there is nothing to refuse.

    bool operator==(const Words&) const = default;
};

/// Characters and lines of a page's own text that a card shows.
inline constexpr qsizetype LongestText = 600;
inline constexpr qsizetype MostLines = 12;

[[nodiscard]] Words words(const PageQuestion& question);

} // namespace Bralto::PageQuestionText
