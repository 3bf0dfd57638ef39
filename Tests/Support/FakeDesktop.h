#pragma once

#include "Base/Desktop.h"

#include <QList>

#include <optional>

namespace Bralto {

/// A desktop that writes down what it is asked for, and fails when told to.
class FakeDesktop final : public Desktop {
public:
    struct Start {
        QString executable;
        QStringList arguments;
        bool operator==(const Start&) const = default;
    };

    void open(const QUrl& url) override { opened.append(url); }
    void reveal(const QString& path) override { revealed.append(path); }
    void copyText(const QString& text) override { clipboard = text; }

    Expected<QString, QString> moveToTrash(const QString& path) override
    {
        if (trashFailure)
            return Unexpected{*trashFailure};
        trashed.append(path);
        return QStringLiteral("/trash/") + path.mid(path.lastIndexOf(u'/') + 1);
    }

    Expected<qint64, QString> start(const QString& executable,
                                    const QStringList& arguments) override
    {
        if (startFailure)
            return Unexpected{*startFailure};
        started.append({executable, arguments});
        return qint64(1000 + started.size());
    }

    QList<QUrl> opened;
    QStringList revealed;
    QString clipboard;
    QStringList trashed; ///< The file itself stays where it is.
    QList<Start> started;

    std::optional<QString> trashFailure;
    std::optional<QString> startFailure;
};

} // namespace Bralto
