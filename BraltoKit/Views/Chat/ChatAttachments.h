#pragma once

#include "Chat/ChatMessage.h"

#include <QList>

class QMimeData;

/// Files and pictures that go along with a turn.
namespace Bralto::ChatAttachments {

/// A file that is to go along: as the picture that it shows, if it can be read as one, else by its
/// path.
[[nodiscard]] ChatAttachment attachment(const QString& path);

/// Whether `data` holds files or a picture, which are attached instead of inserted.
[[nodiscard]] bool canRead(const QMimeData& data);

/// What `data` holds, in order: files first, else the picture. Empty if `canRead` denies it.
[[nodiscard]] QList<ChatAttachment> read(const QMimeData& data);

/// What a chip says of an attachment.
[[nodiscard]] QString name(const ChatAttachment& attachment);

} // namespace Bralto::ChatAttachments
