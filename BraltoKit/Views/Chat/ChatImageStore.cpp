#include "Views/Chat/ChatImageStore.h"

#include "Base/Background.h"
#include "Views/Chat/ImageScene.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace Bralto {

namespace {

constexpr int CacheKiB = 64 * 1024;

/// Thumbnails are sharp up to this device scale.
constexpr double LargestScale = 2;

/// Files beyond this size are no pictures for a conversation.
constexpr qint64 LargestFile = 64 * 1024 * 1024;

/// Pictures with more pixels than this aren't decoded.
constexpr qint64 MostPixels = 100 * 1000 * 1000;

std::optional<QByteArray> bytesOf(const ChatImage& image)
{
    if (image.data)
        return image.data;
    if (!image.url || !image.url->isLocalFile())
        return std::nullopt;
    QFile file(image.url->toLocalFile());
    if (file.size() > LargestFile || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

/// Decodes, scaled down to `bounds` if they are given. Runs on a worker.
ChatPicture decode(const ChatImage& image, const QSizeF& bounds)
{
    ChatPicture picture;
    picture.state = ChatPicture::State::Failed;
    if (image.url)
        picture.name = image.url->fileName().isEmpty() ? image.url->host() : image.url->fileName();
    const std::optional<QByteArray> bytes = bytesOf(image);
    if (!bytes)
        return picture;
    QBuffer buffer;
    buffer.setData(*bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isValid() || qint64(size.width()) * size.height() > MostPixels)
        return picture;
    if (!bounds.isEmpty() &&
        !reader.transformation().testFlag(QImageIOHandler::TransformationRotate90))
        reader.setScaledSize(ImageScene::fitted(QSizeF(size), bounds).toSize().expandedTo({1, 1}));
    picture.image = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (picture.image.isNull())
        return picture;
    picture.size = size;
    if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90))
        picture.size.transpose();
    picture.state = ChatPicture::State::Ready;
    return picture;
}

} // namespace

ChatImageStore::ChatImageStore(QObject* parent)
    : QObject(parent)
    , m_pictures(CacheKiB)
{
}

ChatPicture ChatImageStore::find(const QString& key, const ChatImage& image)
{
    if (const ChatPicture* known = m_pictures.object(key))
        return *known;
    if (!m_loading.contains(key))
        load(key, image);
    return {};
}

void ChatImageStore::load(const QString& key, const ChatImage& image)
{
    m_loading.insert(key);
    m_sources.insert(key, image);
    const QSizeF bounds(ImageScene::WidestThumbnail * LargestScale,
                        ImageScene::HighestThumbnail * LargestScale);
    inBackground(
        this, [image, bounds] { return decode(image, bounds); },
        [this, key](const ChatPicture& picture) {
            m_loading.remove(key);
            const auto cost = 1 + int(picture.image.sizeInBytes() / 1024);
            m_pictures.insert(key, new ChatPicture(picture), std::min(cost, CacheKiB / 2));
            emit ready(key);
        });
}

void ChatImageStore::loadWhole(const QString& key, QObject* context,
                               std::function<void(const QImage&)> done)
{
    const auto source = m_sources.constFind(key);
    if (source == m_sources.constEnd())
        return;
    inBackground(
        context, [image = *source] { return decode(image, {}); },
        [done = std::move(done)](const ChatPicture& picture) { done(picture.image); });
}

} // namespace Bralto
