#include "Views/Dialogs/DialogsView.h"

#include "Views/Dialogs/AlertDialog.h"
#include "Views/Dialogs/OpenDialog.h"
#include "Views/Dialogs/PromptDialog.h"

#include <QApplication>
#include <QDir>

namespace Bralto {

DialogsView::DialogsView(Theme& theme)
    : m_theme(theme)
{
}

QWidget* DialogsView::window() const
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return m_window ? m_window.data() : QApplication::activeWindow();
}

int DialogsView::show(const Alert& alert)
{
    AlertDialog dialog(m_theme, alert, window());
    dialog.exec();
    return dialog.choice();
}

std::optional<QString> DialogsView::text(const TextPrompt& prompt)
{
    PromptDialog dialog(m_theme, prompt, window());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.text();
}

std::optional<QString> DialogsView::openFileOrFolder()
{
    OpenDialog dialog(m_theme, QDir::homePath(), window());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.path();
}

} // namespace Bralto
