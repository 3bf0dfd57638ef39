#include "Base/SpaceIdentity.h"

#include "Base/Paths.h"

#include <QCryptographicHash>

namespace Bralto::SpaceIdentity {

namespace {

constexpr qsizetype DigestBytes = 6;

}

QString bundleIdentifier(const QString& folder)
{
    const QByteArray digest =
        QCryptographicHash::hash(Paths::standardised(folder).toUtf8(), QCryptographicHash::Sha256);
    return QLatin1String(SpacePrefix) + QString::fromLatin1(digest.first(DigestBytes).toHex());
}

} // namespace Bralto::SpaceIdentity
