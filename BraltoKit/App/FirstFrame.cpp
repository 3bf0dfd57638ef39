#include "App/FirstFrame.h"

#include <QBuffer>
#include <QEvent>
#include <QPixmap>
#include <QSaveFile>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <ctime>

namespace Bralto {

namespace {

constexpr auto PictureDelay = std::chrono::milliseconds{600};

void writeWhole(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(content);
        file.commit();
    }
}

} // namespace

FirstFrame::FirstFrame(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    window->installEventFilter(this);
}

bool FirstFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::Paint) {
        m_window->removeEventFilter(this);
        // The frame is on its way once the event loop turns again.
        QTimer::singleShot(0, this, &FirstFrame::writeMoment);
        QTimer::singleShot(PictureDelay, this, &FirstFrame::takePicture);
    }
    return QObject::eventFilter(watched, event);
}

void FirstFrame::writeMoment() const
{
    const QString path = qEnvironmentVariable("BRALTO_FIRST_FRAME");
    if (path.isEmpty())
        return;
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    writeWhole(path, QByteArray::number(qint64{now.tv_sec} * 1'000'000'000 + now.tv_nsec));
}

void FirstFrame::takePicture()
{
    const QString path = qEnvironmentVariable("BRALTO_SCREENSHOT");
    if (!path.isEmpty()) {
        QByteArray png;
        QBuffer buffer(&png);
        m_window->grab().save(&buffer, "PNG");
        writeWhole(path, png);
    }
    deleteLater();
}

} // namespace Bralto
