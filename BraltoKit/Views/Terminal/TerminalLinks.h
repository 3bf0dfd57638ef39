#pragma once

#include "Kovalt/Links.h"
#include "Kovalt/Terminal.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

/// Where the links of a terminal lead. Functions over values, any thread.
namespace Bralto::TerminalLinks {

struct FilePlace {
    QString path;   ///< Absolute, cleaned.
    int line = 0;   ///< From 1; 0 if none is given.
    int column = 0; ///< From 1; 0 if none is given.

    bool operator==(const FilePlace&) const = default;
};

/// What paths are relative to.
struct Folders {
    QString home;
    /// Folders for relative paths, the most likely first.
    QStringList current;
};

/// An address that may be opened, or the files that a link may mean, the most likely first.
using Target = std::variant<QString, std::vector<FilePlace>>;

/// Only web and mail addresses and files of this computer are followed: none for anything else.
[[nodiscard]] std::optional<Target> target(const QString& text, const Folders& folders);

/// The first of them that exists. Looks at the disk.
[[nodiscard]] std::optional<FilePlace> existing(const std::vector<FilePlace>& places);

/// The path of a "file:" address or a plain absolute path, as programs tell their folder; empty if
/// it is on another computer.
[[nodiscard]] QString localPath(const QString& address);

/// What the link's cells show.
[[nodiscard]] QString shownText(const Kovalt::Terminal& terminal, const Kovalt::LinkMatch& link);

/// What a tip says of a link that a program made: where it leads if its text doesn't. Empty else.
[[nodiscard]] QString tip(const Kovalt::Terminal& terminal, const Kovalt::LinkMatch& link);

} // namespace Bralto::TerminalLinks
