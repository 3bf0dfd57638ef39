#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QLineEdit>

#include <optional>

namespace Bralto {

/// Where a name is written in the place where it stands. Return and a click elsewhere take it,
/// Escape doesn't. It goes by itself when it is done.
class NameField final : public QLineEdit {
    Q_OBJECT

public:
    /// Shows itself in `place` of `parent` with `name` selected, and takes the keyboard. `ink` is
    /// what the name stands in there.
    NameField(Theme& theme, const QString& name, const QColor& ink, const QRect& place,
              QWidget* parent);

    /// A name as a model keeps it: absent if nothing is left of it.
    [[nodiscard]] static std::optional<QString> nameFrom(const QString& text);

signals:
    /// The user is done; told once. Without a name there shall be none.
    void named(const std::optional<QString>& name);
    void cancelled();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    void finish(bool takes);

    bool m_isDone = false;
};

} // namespace Bralto
