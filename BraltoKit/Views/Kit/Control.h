#pragma once

#include "Views/Kit/Theme.h"

#include <QAbstractButton>
#include <QPointer>
#include <QVariantAnimation>

namespace Bralto {

class FocusRing;

/// What a control stands on, which decides its inks and fills.
enum class Ground { Sheet, Frame };

/// What the buttons of the program have in common: tokens, a hover that fades, a focus ring, and
/// a tip. Return and Enter press it as the space bar does. A click doesn't take the keyboard.
class Control : public QAbstractButton {
    Q_OBJECT

public:
    Control(Theme& theme, Ground ground, QWidget* parent);
    ~Control() override;

    /// The accessible name, and the tool tip that ends with `shortcut` if there is one.
    void setTip(const QString& text, const QString& shortcut = {});

    [[nodiscard]] Theme& theme() const { return m_theme; }
    [[nodiscard]] const Tokens& tokens() const { return m_theme.tokens(); }
    [[nodiscard]] Ground ground() const { return m_ground; }

protected:
    /// 0 at rest to 1 below the pointer.
    [[nodiscard]] double hoverAmount() const { return m_hover.currentValue().toDouble(); }
    [[nodiscard]] QColor labelInk() const;
    [[nodiscard]] QColor secondaryInk() const;
    [[nodiscard]] QColor disabledInk() const;
    [[nodiscard]] QColor hoverFill() const;
    [[nodiscard]] QColor pressedFill() const;
    [[nodiscard]] virtual double focusRadius() const { return Measure::ControlRadius; }

    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fadeHover(double goal);

    Theme& m_theme;
    Ground m_ground;
    QVariantAnimation m_hover;
    QPointer<FocusRing> m_ring; ///< A child of the same parent, which may go first.
};

} // namespace Bralto
