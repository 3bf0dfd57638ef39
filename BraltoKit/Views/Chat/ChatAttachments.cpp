#include "Views/Chat/ChatAttachments.h"

#include "Base/Paths.h"
#include "Editor/FileKind.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFileInfo>
#include <QImage>
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

ChatAttachment picture(const QImage& image)
{
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return make(ChatAttachment::Image{png, QStringLiteral("image/png")});
}

} // namespace

ChatAttachment attachment(const QString& path)
{
    const QString standardised = Paths::standardised(path);
    if (FileKinds::of(standardised, false) == FileKind::Image) {
        if (const QImage image = QImageReader(standardised).read(); !image.isNull())
            return picture(image);
    }
    return make(ChatAttachment::File{standardised});
}

bool canRead(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return data.hasImage() ||
           std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

QList<ChatAttachment> read(const QMimeData& data)
{
    QList<ChatAttachment> attachments;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            attachments.append(attachment(url.toLocalFile()));
    }
    if (attachments.isEmpty() && data.hasImage()) {
        if (const QImage image = qvariant_cast<QImage>(data.imageData()); !image.isNull())
            attachments.append(picture(image));
    }
    return attachments;
}

QString name(const ChatAttachment& attachment)
{
    if (const auto* file = std::get_if<ChatAttachment::File>(&attachment.kind))
        return Paths::lastComponent(file->path);
    return QCoreApplication::translate("ChatAttachments", "Picture");
}

} // namespace Bralto::ChatAttachments
