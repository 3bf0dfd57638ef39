#pragma once

#include <QString>
#include <QStringList>

namespace Bralto::ShellQuote {

/// `value` in single quotes, every `'` in it written as `'\''`: one word for any POSIX shell.
[[nodiscard]] QString quoted(const QString& value);

/// Each value quoted, joined by blanks.
[[nodiscard]] QString joined(const QStringList& values);

} // namespace Bralto::ShellQuote
