#include "Views/Console/PaneFonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>

namespace Bralto::PaneFonts {
namespace {

constexpr int ProbeSize = 12;

/// What the families call themselves.
QStringList fixedPitchFamilies()
{
    QStringList families;
    const QStringList all = QFontDatabase::families();
    for (const QString& each : all) {
        if (!QFontDatabase::isFixedPitch(each) || QFontDatabase::isPrivateFamily(each))
            continue;
        // Another family may answer to the name, and need not have the pitch.
        const QString own = QFontInfo(QFont(each, ProbeSize)).family();
        families.append(QFontDatabase::isFixedPitch(own) ? own : each);
    }
    return families;
}

} // namespace

QStringList offered(const QStringList& families)
{
    QStringList result;
    for (const QString& each : families) {
        if (!each.isEmpty() && !each.startsWith(u'.') && !result.contains(each))
            result.append(each);
    }
    std::ranges::stable_sort(result, [](const QString& one, const QString& other) {
        return one.compare(other, Qt::CaseInsensitive) < 0;
    });
    return result;
}

const QStringList& installed()
{
    static const QStringList families = offered(fixedPitchFamilies());
    return families;
}

} // namespace Bralto::PaneFonts
