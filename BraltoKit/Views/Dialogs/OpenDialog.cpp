#include "Views/Dialogs/OpenDialog.h"

#include "Views/Kit/Ink.h"

#include <QFileInfo>

namespace Bralto {
namespace {

QPalette paletteOf(const Tokens& tokens)
{
    QPalette colors(tokens.floating);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        colors.setColor(role, tokens.label);
    colors.setColor(QPalette::Base, tokens.field);
    colors.setColor(QPalette::AlternateBase, tokens.raised);
    colors.setColor(QPalette::PlaceholderText, tokens.ink3);
    colors.setColor(QPalette::Highlight, Ink::over(tokens.selection, tokens.field));
    colors.setColor(QPalette::HighlightedText, tokens.label);
    return colors;
}

} // namespace

OpenDialog::OpenDialog(Theme& theme, const QString& startFolder, QWidget* window)
    : QFileDialog(window, tr("Open"), startFolder)
{
    // The desktop's own dialogs pick either files or folders.
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFile);
    setLabelText(QFileDialog::Accept, tr("Open"));
    setPalette(paletteOf(theme.tokens()));
}

QString OpenDialog::path() const
{
    const QStringList marked = selectedFiles();
    return marked.isEmpty() ? directory().absolutePath() : marked.first();
}

void OpenDialog::accept()
{
    // What is inherited goes into a folder instead of taking it.
    if (QFileInfo(path()).isDir())
        QDialog::accept();
    else
        QFileDialog::accept();
}

} // namespace Bralto
