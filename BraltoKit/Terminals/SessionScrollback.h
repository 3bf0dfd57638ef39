#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <string_view>

/// What is kept of a shell's text from one run to the next. Functions over values, any thread.
namespace Bralto::SessionScrollback {

/// The end of a screen's text, given as UTF-8 with a line feed behind each line: without empty
/// lines at its end, without the prompt that was showing, and without what `replayed` added. Empty
/// if it isn't UTF-8.
[[nodiscard]] QString kept(std::string_view screen);

/// What is written to a new terminal: the kept text and a line that tells when it was restored.
[[nodiscard]] QString replayed(const QString& kept, const QString& now);

/// A date with the month's short name and a short time, as the locale writes them.
[[nodiscard]] QString stamp(const QLocale& locale, const QDateTime& at);

} // namespace Bralto::SessionScrollback
