#pragma once

#include <QString>

namespace Bralto {

/// What a file is, by its name alone: one case a language, in the order of `Language`, then the
/// kinds of what is no source text.
enum class FileKind {
    Swift,
    JavaScript,
    TypeScript,
    Python,
    Go,
    Rust,
    CFamily,
    Ruby,
    Shell,
    Json,
    Yaml,
    Config,
    Html,
    Css,
    Markdown,
    Text,
    Plain,
    Folder,
    App,
    Image,
    Video,
    Audio,
    Pdf,
    Archive,
    Font,
    Spreadsheet,
    Presentation,
    DiskImage,
    Document,
    Other
};

namespace FileKinds {

[[nodiscard]] FileKind of(const QString& path, bool isDirectory);

/// Name of the kind's icon.
[[nodiscard]] QString symbol(FileKind kind);

/// Whether the editor shows such a file with a viewer, and neither reads nor writes it as text.
[[nodiscard]] bool isViewed(FileKind kind);

/// Whether a folder of this name is one thing to the user, for example an application.
[[nodiscard]] bool isPackage(const QString& path);

/// What stands behind the last full stop of the file's name, as it is spelled; empty without one,
/// and for a name whose only full stop is its first or its last character.
[[nodiscard]] QString extension(const QString& path);

} // namespace FileKinds

} // namespace Bralto
