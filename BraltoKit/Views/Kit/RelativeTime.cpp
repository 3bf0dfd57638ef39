#include "Views/Kit/RelativeTime.h"

#include <QObject>

namespace Bralto {
namespace {

QString counted(qint64 count, const QString& one, const QString& many)
{
    return count == 1 ? one : many.arg(count);
}

} // namespace

QString relativeTime(const QDateTime& time, const QDateTime& now)
{
    const qint64 seconds = time.secsTo(now);
    if (seconds < 60)
        return QObject::tr("just now");
    if (seconds < 60 * 60)
        return QObject::tr("%1 min ago").arg(seconds / 60);
    // Days are counted by the calendar: last evening was yesterday, however few hours ago.
    const qint64 days = time.toLocalTime().date().daysTo(now.toLocalTime().date());
    if (days == 0 || seconds < 6 * 60 * 60)
        return counted(seconds / (60 * 60), QObject::tr("1 hour ago"), QObject::tr("%1 hours ago"));
    if (days == 1)
        return QObject::tr("Yesterday");
    if (days < 7)
        return QObject::tr("%1 days ago").arg(days);
    if (days < 30)
        return counted(days / 7, QObject::tr("1 week ago"), QObject::tr("%1 weeks ago"));
    if (days < 365)
        return counted(days / 30, QObject::tr("last month"), QObject::tr("%1 months ago"));
    return counted(days / 365, QObject::tr("last year"), QObject::tr("%1 years ago"));
}

} // namespace Bralto
