#pragma once

#include "Chat/ChatMessage.h"
#include "Views/Chat/ChatCanvas.h"

#include <QCache>
#include <QHash>
#include <QObject>

namespace Bralto {

/// Decodes the pictures of a conversation on workers and keeps thumbnails of them. A picture that
/// is given by a web address isn't fetched: nothing is loaded from outside unasked. Main thread.
class ChatImageStore final : public QObject {
    Q_OBJECT

public:
    explicit ChatImageStore(QObject* parent = nullptr);

    /// The picture as far as it has come. The first demand starts its decoding; `ready` tells when
    /// there is more.
    [[nodiscard]] ChatPicture find(const QString& key, const ChatImage& image);

    /// Decodes a picture that was found before in its full size; `done` gets a null image if it
    /// can't be shown.
    void loadWhole(const QString& key, QObject* context, std::function<void(const QImage&)> done);

signals:
    void ready(const QString& key);

private:
    void load(const QString& key, const ChatImage& image);

    QCache<QString, ChatPicture> m_pictures; ///< Costs are KiB.
    QHash<QString, ChatImage> m_sources;
    QSet<QString> m_loading;
};

} // namespace Bralto
