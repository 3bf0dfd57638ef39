#pragma once

#include "Base/Dialogs.h"
#include "Views/Dialogs/FloatDialog.h"

namespace Bralto {

class TextButton;

/// A question with one or two buttons. Return presses the first, which stands at the right and has
/// the ring; Escape, or closing the card, is the first as well.
class AlertDialog final : public FloatDialog {
    Q_OBJECT

public:
    AlertDialog(Theme& theme, const Alert& alert, QWidget* window);

    /// In the order of the alert.
    [[nodiscard]] const QList<TextButton*>& buttons() const { return m_buttons; }
    [[nodiscard]] int choice() const { return m_choice; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addWords(const Alert& alert);
    void addButtons(const Alert& alert);

    QList<TextButton*> m_buttons;
    int m_choice = 0;
};

} // namespace Bralto
