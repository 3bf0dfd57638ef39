#pragma once

#include "Base/Dialogs.h"
#include "Views/Dialogs/FloatDialog.h"

namespace Bralto {

class Field;
class TextButton;

/// A request for a line of text. Return takes it, Escape cancels. Of an initial name all but its
/// extension is selected, so that a rename keeps the extension.
class PromptDialog final : public FloatDialog {
    Q_OBJECT

public:
    PromptDialog(Theme& theme, const TextPrompt& prompt, QWidget* window);

    [[nodiscard]] Field& field() const { return *m_field; }
    [[nodiscard]] TextButton& confirm() const { return *m_confirm; }
    [[nodiscard]] TextButton& cancel() const { return *m_cancel; }
    /// The text as the asker gets it: trimmed, absent if nothing is left.
    [[nodiscard]] std::optional<QString> text() const;

    /// How many letters of `name` stand before its extension.
    [[nodiscard]] static int lengthWithoutExtension(const QString& name);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Field* m_field;
    TextButton* m_confirm;
    TextButton* m_cancel;
};

} // namespace Bralto
