#include "Editor/FileKind.h"

#include "Editor/Language.h"

#include <QHash>
#include <QMimeDatabase>
#include <QMimeType>
#include <QSet>

#include <algorithm>
#include <array>

namespace Bralto::FileKinds {

namespace {

static_assert(int(FileKind::Swift) == int(Language::Swift));
static_assert(int(FileKind::Markdown) == int(Language::Markdown));
static_assert(int(FileKind::Plain) == int(Language::Plain));

QStringList words(const char* list)
{
    return QString::fromLatin1(list).split(u' ', Qt::SkipEmptyParts);
}

/// The types that the desktop's own database may lack or may file elsewhere.
const QHash<QString, FileKind>& kindsByExtension()
{
    static const QHash<QString, FileKind> table = [] {
        struct Row {
            FileKind kind;
            const char* extensions;
        };
        const Row rows[] = {
            {FileKind::Image, "png jpg jpeg jpe gif bmp tif tiff heic heif webp avif ico icns jp2 "
                              "psd raw dng tga exr hdr"},
            {FileKind::Video, "mov mp4 m4v avi mkv webm mpg mpeg mp2v 3gp 3g2 ogv wmv flv qt"},
            {FileKind::Audio,
             "mp3 m4a aac wav aif aiff aifc flac ogg oga opus mid midi caf amr wma"},
            {FileKind::Pdf, "pdf"},
            {FileKind::Archive, "zip gz tgz tar bz2 tbz tbz2 xz txz zst lz lz4 7z rar jar war cpio "
                                "xar cab ar deb rpm z"},
            {FileKind::Font, "ttf otf ttc otc woff woff2 dfont pfb pfm"},
            {FileKind::Spreadsheet, "xls xlsx xlsm xlsb xlt xltx ods ots numbers"},
            {FileKind::Presentation, "ppt pptx pptm pps ppsx pot potx odp otp key"},
            {FileKind::DiskImage, "dmg iso img sparseimage sparsebundle toast vhd vmdk qcow2"},
            {FileKind::Document, "doc docx docm dot dotx odt ott pages rtfd epub csv tsv log tex"},
        };
        QHash<QString, FileKind> result;
        for (const Row& row : rows) {
            for (const QString& extension : words(row.extensions))
                result.insert(extension, row.kind);
        }
        return result;
    }();
    return table;
}

bool isArchive(const QMimeType& type)
{
    static const QSet<QString> names = [] {
        const QStringList list =
            words("application/zip application/gzip application/x-tar application/x-bzip2 "
                  "application/x-xz application/zstd application/x-7z-compressed "
                  "application/vnd.rar application/x-archive application/x-compress");
        return QSet<QString>(list.begin(), list.end());
    }();
    if (names.contains(type.name()))
        return true;
    const QStringList ancestors = type.allAncestors();
    return std::any_of(ancestors.begin(), ancestors.end(),
                       [](const QString& name) { return names.contains(name); });
}

/// What the desktop's database says of the extension.
FileKind kindByType(const QString& extension)
{
    const QList<QMimeType> types =
        QMimeDatabase().mimeTypesForFileName(QStringLiteral("file.") + extension);
    if (types.isEmpty())
        return FileKind::Other;
    const QMimeType& type = types.first();
    const QString name = type.name();
    if (name.startsWith(QLatin1String("image/")))
        return FileKind::Image;
    if (name.startsWith(QLatin1String("video/")))
        return FileKind::Video;
    if (name.startsWith(QLatin1String("audio/")))
        return FileKind::Audio;
    if (type.inherits(QStringLiteral("application/pdf")))
        return FileKind::Pdf;
    if (name.contains(QLatin1String("spreadsheet")))
        return FileKind::Spreadsheet;
    if (name.contains(QLatin1String("presentation")))
        return FileKind::Presentation;
    // An office document is a zip archive inside, and yet no archive to anybody.
    if (name.contains(QLatin1String("opendocument")) || name.contains(QLatin1String("wordproc")))
        return FileKind::Document;
    if (isArchive(type))
        return FileKind::Archive;
    if (name.startsWith(QLatin1String("font/")) || name.contains(QLatin1String("x-font")))
        return FileKind::Font;
    if (name.contains(QLatin1String("disk-image")) || name.contains(QLatin1String("cd-image")))
        return FileKind::DiskImage;
    if (type.inherits(QStringLiteral("text/plain")))
        return FileKind::Document;
    return FileKind::Other;
}

} // namespace

FileKind of(const QString& path, bool isDirectory)
{
    if (isDirectory)
        return FileKind::Folder;
    const QString suffix = extension(path).toLower();
    if (suffix == QLatin1String("app"))
        return FileKind::App;
    const Language language = detectLanguage(path);
    if (language != Language::Plain)
        return FileKind(int(language));
    const auto known = kindsByExtension().constFind(suffix);
    return known != kindsByExtension().cend() ? *known : kindByType(suffix);
}

QString symbol(FileKind kind)
{
    switch (kind) {
    case FileKind::Swift:
        return QStringLiteral("swift");
    case FileKind::Shell:
        return QStringLiteral("terminal");
    case FileKind::Json:
        return QStringLiteral("curlybraces");
    case FileKind::Yaml:
    case FileKind::Config:
        return QStringLiteral("slider.horizontal.3");
    case FileKind::Html:
        return QStringLiteral("chevron.left.forwardslash.chevron.right");
    case FileKind::Css:
        return QStringLiteral("paintbrush");
    case FileKind::Markdown:
        return QStringLiteral("text.document");
    case FileKind::JavaScript:
    case FileKind::TypeScript:
    case FileKind::Python:
    case FileKind::Go:
    case FileKind::Rust:
    case FileKind::CFamily:
    case FileKind::Ruby:
    case FileKind::Text:
    case FileKind::Document:
        return QStringLiteral("doc.text");
    case FileKind::Folder:
        return QStringLiteral("folder");
    case FileKind::App:
        return QStringLiteral("app.dashed");
    case FileKind::Image:
        return QStringLiteral("photo");
    case FileKind::Video:
        return QStringLiteral("film");
    case FileKind::Audio:
        return QStringLiteral("waveform");
    case FileKind::Pdf:
        return QStringLiteral("doc.richtext");
    case FileKind::Archive:
        return QStringLiteral("archivebox");
    case FileKind::Font:
        return QStringLiteral("textformat");
    case FileKind::Spreadsheet:
        return QStringLiteral("tablecells");
    case FileKind::Presentation:
        return QStringLiteral("rectangle.on.rectangle.angled");
    case FileKind::DiskImage:
        return QStringLiteral("drive");
    case FileKind::Plain:
    case FileKind::Other:
        break;
    }
    return QStringLiteral("doc");
}

bool isViewed(FileKind kind)
{
    return kind == FileKind::Image || kind == FileKind::Video || kind == FileKind::Audio ||
           kind == FileKind::Pdf || kind == FileKind::Font;
}

bool isPackage(const QString& path)
{
    static const std::array<QLatin1String, 12> suffixes = {
        QLatin1String("app"),        QLatin1String("bundle"),    QLatin1String("framework"),
        QLatin1String("plugin"),     QLatin1String("appex"),     QLatin1String("xpc"),
        QLatin1String("kext"),       QLatin1String("xcodeproj"), QLatin1String("xcworkspace"),
        QLatin1String("playground"), QLatin1String("rtfd"),      QLatin1String("sparsebundle")};
    const QString suffix = extension(path).toLower();
    return std::find(suffixes.begin(), suffixes.end(), suffix) != suffixes.end();
}

QString extension(const QString& path)
{
    const qsizetype name = path.lastIndexOf(u'/') + 1;
    const qsizetype stop = path.lastIndexOf(u'.');
    if (stop <= name || stop == path.size() - 1)
        return {};
    return path.mid(stop + 1);
}

} // namespace Bralto::FileKinds
