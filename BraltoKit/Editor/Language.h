#pragma once

#include <QString>

namespace Bralto {

/// The languages that the editor tells apart. `Text` is prose without markup, `Plain` is what
/// nothing is known of.
enum class Language {
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
    Plain
};

/// The language of a file by its name, then by its extension.
[[nodiscard]] Language detectLanguage(const QString& path);

/// The language's name as the status pill shows it, for example "C-family".
[[nodiscard]] QString displayName(Language language);

/// Markdown and plain prose, which are set in the prose face.
[[nodiscard]] bool isProse(Language language);

} // namespace Bralto
