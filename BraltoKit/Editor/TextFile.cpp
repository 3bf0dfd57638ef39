#include "Editor/TextFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

#include <uchardet.h>

#include <memory>

namespace Bralto::TextFile {

namespace {

struct DetectorDelete {
    void operator()(uchardet_t detector) const { uchardet_delete(detector); }
};

using Detector = std::unique_ptr<std::remove_pointer_t<uchardet_t>, DetectorDelete>;

/// The name of the encoding that `bytes` look like, empty if they look like none.
QByteArray detectedEncoding(const QByteArray& bytes)
{
    const Detector detector(uchardet_new());
    if (uchardet_handle_data(detector.get(), bytes.constData(), size_t(bytes.size())) != 0)
        return {};
    uchardet_data_end(detector.get());
    return uchardet_get_charset(detector.get());
}

/// A reading that takes every byte, or nothing.
std::optional<QString> decoded(const QByteArray& bytes, const char* encoding)
{
    QStringDecoder decoder(encoding);
    if (!decoder.isValid())
        return std::nullopt;
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

Content unreadable()
{
    return {{},
            QStringLiteral("Bralto couldn’t read this file. It may have been moved or you may not "
                           "have permission.")};
}

Content tooLarge()
{
    return {{},
            QStringLiteral("This file is larger than 8 MB, so Bralto won’t open it for editing.")};
}

Content binary()
{
    return {{}, QStringLiteral("This looks like a binary file, so there’s nothing to edit here.")};
}

} // namespace

Content read(const QString& path)
{
    // Opening a pipe would wait for its other end.
    const QFileInfo info(path);
    if (!info.isFile())
        return unreadable();
    if (info.size() > LargestSize)
        return tooLarge();

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return unreadable();
    const QByteArray bytes = file.read(LargestSize + 1);
    if (file.error() != QFileDevice::NoError)
        return unreadable();
    if (bytes.size() > LargestSize)
        return tooLarge();

    if (bytes.left(SearchedForZero).contains('\0'))
        return binary();
    if (auto text = decode(bytes))
        return {std::move(*text), std::nullopt};
    return {{}, QStringLiteral("Bralto couldn’t work out this file’s text encoding.")};
}

std::optional<QString> decode(const QByteArray& bytes)
{
    if (QByteArrayView(bytes).isValidUtf8()) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        return decoder(bytes);
    }
    const QByteArray encoding = detectedEncoding(bytes);
    if (encoding.isEmpty())
        return std::nullopt;
    return decoded(bytes, encoding.constData());
}

std::optional<QString> write(const QString& path, const QString& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    file.write(text.toUtf8());
    if (!file.commit())
        return file.errorString();
    return std::nullopt;
}

} // namespace Bralto::TextFile
