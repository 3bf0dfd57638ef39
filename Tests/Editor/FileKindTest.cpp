#include "Editor/FileKind.h"
#include "Editor/Language.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Bralto;

// --- languages

TEST(Language, IsToldByTheWholeNameFirst)
{
    EXPECT_EQ(detectLanguage("/p/Makefile"), Language::Shell);
    EXPECT_EQ(detectLanguage("/p/Dockerfile"), Language::Shell);
    EXPECT_EQ(detectLanguage("/p/.zshrc"), Language::Shell);
    EXPECT_EQ(detectLanguage("/p/.profile"), Language::Shell);
    EXPECT_EQ(detectLanguage("/p/.gitignore"), Language::Config);
    EXPECT_EQ(detectLanguage("/p/.env"), Language::Config);
    EXPECT_EQ(detectLanguage("/p/.npmrc"), Language::Config);
}

TEST(Language, IsToldByTheExtensionThen)
{
    struct Case {
        const char* extensions;
        Language language;
    };
    const Case cases[] = {
        {"swift", Language::Swift},
        {"js mjs cjs jsx", Language::JavaScript},
        {"ts tsx mts cts", Language::TypeScript},
        {"py pyi", Language::Python},
        {"go", Language::Go},
        {"rs", Language::Rust},
        {"c h m mm cpp cc hpp java kt kts cs php dart scala", Language::CFamily},
        {"rb rake gemspec", Language::Ruby},
        {"sh zsh bash fish command", Language::Shell},
        {"json jsonc json5 webmanifest", Language::Json},
        {"yml yaml", Language::Yaml},
        {"toml ini conf cfg env properties", Language::Config},
        {"html htm xml svg plist vue svelte astro xib storyboard", Language::Html},
        {"css scss sass less", Language::Css},
        {"md markdown mdx mdown", Language::Markdown},
        {"txt rtf", Language::Text},
        {"unheardof", Language::Plain},
    };
    for (const Case& each : cases) {
        for (const QString& extension : QString(each.extensions).split(' ')) {
            SCOPED_TRACE(extension.toStdString());
            EXPECT_EQ(detectLanguage("/p/file." + extension), each.language);
            EXPECT_EQ(detectLanguage("/p/FILE." + extension.toUpper()), each.language);
        }
    }
}

TEST(Language, WithoutAnExtensionADottedNameIsConfigurationAndAnyOtherIsText)
{
    EXPECT_EQ(detectLanguage("/p/.hidden"), Language::Config);
    EXPECT_EQ(detectLanguage("/p/LICENSE"), Language::Text);
    EXPECT_EQ(detectLanguage("/p.swift/LICENSE"), Language::Text);
    EXPECT_EQ(detectLanguage("/p/ends."), Language::Text);
}

TEST(Language, HasTheNameThatTheStatusPillShows)
{
    const QStringList names = {"Swift", "JavaScript", "TypeScript", "Python", "Go",
                               "Rust",  "C-family",   "Ruby",       "Shell",  "JSON",
                               "YAML",  "Config",     "Markup",     "CSS",    "Markdown",
                               "Text",  "Plain Text"};
    for (int index = 0; index < names.size(); ++index)
        EXPECT_EQ(displayName(Language(index)), names[index]);
}

TEST(Language, OnlyMarkdownAndTextAreProse)
{
    for (int index = 0; index <= int(Language::Plain); ++index) {
        const auto language = Language(index);
        EXPECT_EQ(isProse(language), language == Language::Markdown || language == Language::Text);
    }
}

// --- kinds

TEST(FileKind, AFolderIsAFolderWhateverItsName)
{
    EXPECT_EQ(FileKinds::of("/p/src.swift", true), FileKind::Folder);
}

TEST(FileKind, ACodeExtensionWinsOverTheSystemsType)
{
    EXPECT_EQ(FileKinds::of("/p/a.ts", false), FileKind::TypeScript);
    EXPECT_EQ(FileKinds::of("/p/a.svg", false), FileKind::Html);
    EXPECT_EQ(FileKinds::of("/p/a.rtf", false), FileKind::Text);
    EXPECT_EQ(FileKinds::of("/p/.mp4", false), FileKind::Config);
}

TEST(FileKind, IsToldByTheExtension)
{
    struct Case {
        const char* extensions;
        FileKind kind;
    };
    const Case cases[] = {
        {"app APP", FileKind::App},
        {"png jpg JPEG gif webp heic ico", FileKind::Image},
        {"mov mp4 mkv webm", FileKind::Video},
        {"mp3 wav flac ogg opus", FileKind::Audio},
        {"pdf", FileKind::Pdf},
        {"zip gz tar 7z jar", FileKind::Archive},
        {"ttf otf woff2", FileKind::Font},
        {"xlsx ods numbers", FileKind::Spreadsheet},
        {"pptx odp key", FileKind::Presentation},
        {"dmg iso", FileKind::DiskImage},
        {"docx odt csv log", FileKind::Document},
        {"unheardof", FileKind::Other},
    };
    for (const Case& each : cases) {
        for (const QString& extension : QString(each.extensions).split(' ')) {
            SCOPED_TRACE(extension.toStdString());
            EXPECT_EQ(FileKinds::of("/p/file." + extension, false), each.kind);
        }
    }
}

TEST(FileKind, WhatNoTableHasIsLookedUpInTheSystemsTypes)
{
    EXPECT_EQ(FileKinds::of("/p/a.xcf", false), FileKind::Image);
    EXPECT_EQ(FileKinds::of("/p/a.hs", false), FileKind::Document);
    EXPECT_EQ(FileKinds::of("/p/a.apk", false), FileKind::Archive);
    EXPECT_EQ(FileKinds::of("/p/a.fods", false), FileKind::Spreadsheet);
}

TEST(FileKind, OnlyWhatAViewerShowsIsNotReadAsText)
{
    const QList<FileKind> viewed = {FileKind::Image, FileKind::Video, FileKind::Audio,
                                    FileKind::Pdf, FileKind::Font};
    for (int index = 0; index <= int(FileKind::Other); ++index) {
        const auto kind = FileKind(index);
        EXPECT_EQ(FileKinds::isViewed(kind), viewed.contains(kind)) << index;
    }
}

TEST(FileKind, HasAnIcon)
{
    EXPECT_EQ(FileKinds::symbol(FileKind::Swift), "swift");
    EXPECT_EQ(FileKinds::symbol(FileKind::Rust), "doc.text");
    EXPECT_EQ(FileKinds::symbol(FileKind::Config), "slider.horizontal.3");
    EXPECT_EQ(FileKinds::symbol(FileKind::Plain), "doc");
    EXPECT_EQ(FileKinds::symbol(FileKind::Other), "doc");
    EXPECT_EQ(FileKinds::symbol(FileKind::DiskImage), "drive");
    EXPECT_EQ(FileKinds::symbol(FileKind::App), "app.dashed");
}

TEST(FileKind, TheExtensionStandsBehindTheLastFullStop)
{
    EXPECT_EQ(FileKinds::extension("/p/a.tar.gz"), "gz");
    EXPECT_EQ(FileKinds::extension("a.TXT"), "TXT");
    EXPECT_EQ(FileKinds::extension("/p/.gitignore"), "");
    EXPECT_EQ(FileKinds::extension("/p.d/name"), "");
    EXPECT_EQ(FileKinds::extension("/p/name."), "");
    EXPECT_EQ(FileKinds::extension(""), "");
}
