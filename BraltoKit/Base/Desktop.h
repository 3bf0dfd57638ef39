#pragma once

#include "Base/Expected.h"

#include <QString>
#include <QStringList>
#include <QUrl>

namespace Bralto {

/// What the desktop around the program does for it. Main thread.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// Opens a file or an address with the user's default application. Failures are the desktop's.
    virtual void open(const QUrl& url) = 0;

    /// Selects `path` in the file viewer.
    virtual void reveal(const QString& path) = 0;

    /// Puts plain text on the clipboard, in place of what is there.
    virtual void copyText(const QString& text) = 0;

    /// Moves `path` to the trash; on failure the system's own words.
    virtual Expected<QString, QString> moveToTrash(const QString& path) = 0;

    /// Starts a program that lives on when this one ends; on failure the system's own words.
    virtual Expected<qint64, QString> start(const QString& executable,
                                            const QStringList& arguments) = 0;
};

} // namespace Bralto
