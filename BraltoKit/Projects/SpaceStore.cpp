#include "Projects/SpaceTheme.h"

#include "Base/Paths.h"

namespace Bralto::SpaceStore {

namespace {

constexpr QLatin1String Key("spaces");

}

SpaceTheme load(const DefaultsStore& shared, const QString& folder)
{
    const QVariantMap spaces = shared.dictionary(Key).value_or(QVariantMap());
    const QVariant stored = spaces.value(Paths::standardised(folder));
    if (stored.typeId() == QMetaType::QByteArray) {
        if (auto theme = SpaceTheme::decode(stored.toByteArray()))
            return *std::move(theme);
    }
    return SpaceTheme::automatic(folder);
}

void save(DefaultsStore& shared, const SpaceTheme& theme, const QString& folder)
{
    QVariantMap spaces = shared.dictionary(Key).value_or(QVariantMap());
    spaces.insert(Paths::standardised(folder), theme.encode());
    shared.set(Key, spaces);
}

} // namespace Bralto::SpaceStore
