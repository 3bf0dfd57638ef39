#pragma once

#include "Views/Kit/Control.h"

#include <QMenu>

#include <memory>
#include <optional>

namespace Bralto {

/// A field that shows the family of a font, with a menu of those on offer. Its first row is the
/// system's own.
class FontPicker final : public Control {
    Q_OBJECT

public:
    FontPicker(Theme& theme, QWidget* parent);

    /// Absent for the system's own.
    void setFamily(const std::optional<QString>& family);
    [[nodiscard]] const std::optional<QString>& family() const { return m_family; }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();
    /// What a family is called here.
    [[nodiscard]] static QString title(const std::optional<QString>& family);

    [[nodiscard]] QSize sizeHint() const override;

signals:
    void picked(const std::optional<QString>& family);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open();

    std::optional<QString> m_family;
};

} // namespace Bralto
