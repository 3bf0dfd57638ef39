#pragma once

/// @file
/// What stands inside a block of Markdown: pieces of text with their style. Markup that the agent
/// writes is read here and becomes values; HTML in it stays plain text.

#include <QString>

#include <optional>
#include <vector>

namespace Bralto {

/// A stretch of text in one style.
struct InlineRun {
    QString text; ///< Line feeds are line breaks.
    bool bold = false;
    bool italic = false;
    bool code = false;
    bool strike = false;
    QString link; ///< Where an explicit link leads; empty without one.

    bool operator==(const InlineRun&) const = default;
};

namespace ChatInline {

/// The runs of one block's text. Neighbours of one style are one run. Text that the reader can't
/// take, or of more than 100000 characters, is one plain run.
[[nodiscard]] std::vector<InlineRun> runs(const QString& text);

/// The text of `runs` without its styles.
[[nodiscard]] QString plainText(const std::vector<InlineRun>& runs);

/// The existing file that a piece of inline code names, a line and column behind it left out. A
/// relative path is taken in `folder`. Looks at the disk.
[[nodiscard]] std::optional<QString> fileURL(const QString& text, const QString& folder);

} // namespace ChatInline

} // namespace Bralto
