#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>

#include <optional>

namespace Bralto {

/// What the desktop asks of every window, read through the settings portal. The answers come
/// after construction; until then, and without a portal, only what the environment says is known.
/// Main thread.
class SystemSettings final : public QObject {
    Q_OBJECT

public:
    explicit SystemSettings(QObject* parent = nullptr);

    /// Whether windows should be dark; absent if the desktop has no wish.
    [[nodiscard]] const std::optional<bool>& dark() const { return m_dark; }
    /// `BRALTO_REDUCE_MOTION=1`, or the desktop's switch for animations.
    [[nodiscard]] bool reducedMotion() const { return m_reducedMotion; }
    /// Which buttons windows have on which side, for example "close:minimize,maximize"; empty if
    /// the desktop doesn't say.
    [[nodiscard]] const QString& buttonLayout() const { return m_buttonLayout; }

signals:
    void changed();

private slots:
    void take(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void read(const QString& group, const QString& key);

    std::optional<bool> m_dark;
    bool m_reducedMotion = false;
    QString m_buttonLayout;
};

} // namespace Bralto
