#include "Base/SpaceIdentity.h"

#include "Base/Paths.h"

#include <QCryptographicHash>

namespace Bralto::SpaceIdentity {

namespace {

constexpr qsizetype DigestBytes = 6;

}

QString digest(const QString& folder)
{
    const QByteArray hash =
        QCryptographicHash::hash(Paths::standardised(folder).toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.first(DigestBytes).toHex());
}

QString bundleIdentifier(const QString& folder)
{
    return QLatin1String(SpacePrefix) + digest(folder);
}

} // namespace Bralto::SpaceIdentity
