#pragma once

#include "Base/Expected.h"
#include "Browser/ControlError.h"

#include <QString>
#include <QUrl>

#include <chrono>

namespace Bralto {

class BrowserTab;

/// How the tools name tabs, addresses and times.
namespace ToolTexts {

/// The first eight digits of the tab's id, in lower case.
[[nodiscard]] QString shortId(const BrowserTab& tab);
/// "about:blank" for a blank tab.
[[nodiscard]] QString address(const BrowserTab& tab);
/// One line: id, title, address, and whether it loads or failed.
[[nodiscard]] QString summary(const BrowserTab& tab);

/// A file's path, an address of any kind that can be shown, or what the address field would make
/// of `text`.
[[nodiscard]] Expected<QUrl, ControlError> url(const QString& text);

/// Whole seconds, rounded down.
[[nodiscard]] QString wholeSeconds(std::chrono::milliseconds time);
/// At most `most` characters, and then `mark` if there were more.
[[nodiscard]] QString cut(const QString& text, qsizetype most, const QString& mark);

} // namespace ToolTexts
} // namespace Bralto
