#pragma once

#include "Base/Desktop.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace Bralto {

/// The desktop that the user is logged in to. Main thread.
class SystemDesktop final : public Desktop {
public:
    /// `copy` puts a text on the clipboard, which only a program with windows has.
    SystemDesktop(const QDBusConnection& bus, std::function<void(const QString&)> copy);

    void open(const QUrl& url) override;
    /// Without a file viewer that can select, the folder is opened.
    void reveal(const QString& path) override;
    void copyText(const QString& text) override { m_copy(text); }
    Expected<QString, QString> moveToTrash(const QString& path) override;
    Expected<qint64, QString> start(const QString& executable,
                                    const QStringList& arguments) override;

private:
    QDBusConnection m_bus;
    std::function<void(const QString&)> m_copy;
    QObject m_answers; ///< Owns the calls that wait for an answer.
};

} // namespace Bralto
