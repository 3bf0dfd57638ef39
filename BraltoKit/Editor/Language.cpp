#include "Editor/Language.h"

#include "Editor/FileKind.h"

#include <QHash>

namespace Bralto {

namespace {

const QHash<QString, Language>& languagesByName()
{
    static const QHash<QString, Language> table = {
        {"makefile", Language::Shell},       {"dockerfile", Language::Shell},
        {".zshrc", Language::Shell},         {".bashrc", Language::Shell},
        {".zprofile", Language::Shell},      {".profile", Language::Shell},
        {".gitignore", Language::Config},    {".env", Language::Config},
        {".editorconfig", Language::Config}, {".npmrc", Language::Config},
    };
    return table;
}

const QHash<QString, Language>& languagesByExtension()
{
    static const QHash<QString, Language> table = [] {
        struct Row {
            Language language;
            const char* extensions;
        };
        const Row rows[] = {
            {Language::Swift, "swift"},
            {Language::JavaScript, "js mjs cjs jsx"},
            {Language::TypeScript, "ts tsx mts cts"},
            {Language::Python, "py pyi"},
            {Language::Go, "go"},
            {Language::Rust, "rs"},
            {Language::CFamily, "c h m mm cpp cc hpp java kt kts cs php dart scala"},
            {Language::Ruby, "rb rake gemspec"},
            {Language::Shell, "sh zsh bash fish command"},
            {Language::Json, "json jsonc json5 webmanifest"},
            {Language::Yaml, "yml yaml"},
            {Language::Config, "toml ini conf cfg env properties"},
            {Language::Html, "html htm xml svg plist vue svelte astro xib storyboard"},
            {Language::Css, "css scss sass less"},
            {Language::Markdown, "md markdown mdx mdown"},
            {Language::Text, "txt rtf"},
        };
        QHash<QString, Language> result;
        for (const Row& row : rows) {
            for (const QString& extension : QString::fromLatin1(row.extensions).split(u' '))
                result.insert(extension, row.language);
        }
        return result;
    }();
    return table;
}

} // namespace

Language detectLanguage(const QString& path)
{
    const QString name = path.mid(path.lastIndexOf(u'/') + 1).toLower();
    const auto named = languagesByName().constFind(name);
    if (named != languagesByName().cend())
        return *named;

    const QString extension = FileKinds::extension(name);
    if (extension.isEmpty())
        return name.startsWith(u'.') ? Language::Config : Language::Text;
    return languagesByExtension().value(extension, Language::Plain);
}

QString displayName(Language language)
{
    switch (language) {
    case Language::Swift:
        return QStringLiteral("Swift");
    case Language::JavaScript:
        return QStringLiteral("JavaScript");
    case Language::TypeScript:
        return QStringLiteral("TypeScript");
    case Language::Python:
        return QStringLiteral("Python");
    case Language::Go:
        return QStringLiteral("Go");
    case Language::Rust:
        return QStringLiteral("Rust");
    case Language::CFamily:
        return QStringLiteral("C-family");
    case Language::Ruby:
        return QStringLiteral("Ruby");
    case Language::Shell:
        return QStringLiteral("Shell");
    case Language::Json:
        return QStringLiteral("JSON");
    case Language::Yaml:
        return QStringLiteral("YAML");
    case Language::Config:
        return QStringLiteral("Config");
    case Language::Html:
        return QStringLiteral("Markup");
    case Language::Css:
        return QStringLiteral("CSS");
    case Language::Markdown:
        return QStringLiteral("Markdown");
    case Language::Text:
        return QStringLiteral("Text");
    case Language::Plain:
        break;
    }
    return QStringLiteral("Plain Text");
}

bool isProse(Language language)
{
    return language == Language::Markdown || language == Language::Text;
}

} // namespace Bralto
