#include "Views/Chat/ChatAttachments.h"

#include "Base/Background.h"
#include "Base/Paths.h"
#include "Editor/FileKind.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>
#include <QMimeData>
#include <QUrl>
#include <QUuid>

namespace Bralto::ChatAttachments {

namespace {

ChatAttachment make(std::variant<ChatAttachment::Image, ChatAttachment::File> kind)
{
    return {QUuid::createUuid().toString(QUuid::WithoutBraces), std::move(kind)};
}

ChatAttachment picture(const QImage& image, const QString& name)
{
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return make(ChatAttachment::Image{png, QStringLiteral("image/png"), name});
}

QList<ChatAttachment> attachments(const Source& source)
{
    QList<ChatAttachment> all;
    for (const QString& path : source.paths)
        all.append(attachment(path));
    if (!source.image.isNull())
        all.append(picture(source.image, {}));
    return all;
}

} // namespace

bool canRead(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return data.hasImage() ||
           std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

Source read(const QMimeData& data)
{
    Source source;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            source.paths.append(url.toLocalFile());
    }
    if (source.paths.isEmpty() && data.hasImage())
        source.image = qvariant_cast<QImage>(data.imageData());
    return source;
}

ChatAttachment attachment(const QString& path)
{
    const QString standardised = Paths::standardised(path);
    if (FileKinds::of(standardised, false) == FileKind::Image) {
        QImageReader reader(standardised);
        reader.setAutoTransform(true);
        if (const QImage image = reader.read(); !image.isNull())
            return picture(image, Paths::lastComponent(standardised));
    }
    return make(ChatAttachment::File{standardised});
}

void load(Source source, QObject* context, std::function<void(QList<ChatAttachment>)> done)
{
    inBackground(
        context, [source = std::move(source)] { return attachments(source); }, std::move(done));
}

QString name(const ChatAttachment& attachment)
{
    if (const auto* file = std::get_if<ChatAttachment::File>(&attachment.kind))
        return Paths::lastComponent(file->path);
    const QString& name = std::get<ChatAttachment::Image>(attachment.kind).name;
    return name.isEmpty() ? QCoreApplication::translate("ChatAttachments", "Picture") : name;
}

} // namespace Bralto::ChatAttachments
