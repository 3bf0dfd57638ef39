#pragma once

#include "Chat/ChatMessage.h"

#include <QImage>
#include <QList>
#include <QStringList>

#include <functional>

class QMimeData;
class QObject;

/// Files and pictures that go along with a turn.
namespace Bralto::ChatAttachments {

/// What was dropped, pasted or chosen, as it came: files in their order, or a picture.
struct Source {
    QStringList paths;
    QImage image;
};

/// Whether `data` holds files or a picture, which are attached instead of inserted.
[[nodiscard]] bool canRead(const QMimeData& data);
/// What `data` holds: the files, and without any the picture.
[[nodiscard]] Source read(const QMimeData& data);

/// A file as an attachment: the picture that it shows, if it can be read as one, else its path.
/// Reads and decodes; may be called on any thread.
[[nodiscard]] ChatAttachment attachment(const QString& path);

/// Makes attachments of `source` on a worker. `done` gets them in order, on the thread of
/// `context`, unless that goes first.
void load(Source source, QObject* context, std::function<void(QList<ChatAttachment>)> done);

/// What a chip says of an attachment.
[[nodiscard]] QString name(const ChatAttachment& attachment);

} // namespace Bralto::ChatAttachments
