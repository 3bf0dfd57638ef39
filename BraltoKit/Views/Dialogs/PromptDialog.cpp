#include "Views/Dialogs/PromptDialog.h"

#include "Editor/FileKind.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace Bralto {
namespace {

constexpr int Width = 340;

} // namespace

PromptDialog::PromptDialog(Theme& theme, const TextPrompt& prompt, QWidget* window)
    : FloatDialog(theme, window)
    , m_field(new Field(theme, this))
    , m_confirm(new TextButton(theme, TextButton::Kind::Primary,
                               prompt.initial.isEmpty() ? tr("Create") : tr("Rename"), this))
    , m_cancel(new TextButton(theme, TextButton::Kind::Plain, tr("Cancel"), this))
{
    setWindowTitle(prompt.title);
    setAccessibleName(prompt.title);
    auto* title = new Label(theme, TextRole::CardTitle, &Tokens::label, prompt.title, this);
    title->setFixedWidth(Width);
    column().addWidget(title);
    auto* message = new Label(theme, TextRole::Body, &Tokens::ink2, prompt.message, this);
    message->setWordWrap(true);
    message->setFixedWidth(Width);
    column().addSpacing(Measure::Space1);
    column().addWidget(message);
    column().addSpacing(Measure::Space3);

    m_field->setAccessibleName(prompt.title);
    m_field->setAccessibleDescription(prompt.message);
    m_field->setPlaceholderText(prompt.placeholder);
    m_field->setText(prompt.initial);
    m_field->setSelection(0, lengthWithoutExtension(prompt.initial));
    m_field->setFixedWidth(Width);
    m_field->setFocus(Qt::OtherFocusReason);
    column().addWidget(m_field);
    column().addSpacing(Measure::Space4);

    auto* row = new QHBoxLayout;
    row->setSpacing(Measure::Space2);
    row->addStretch(1);
    row->addWidget(m_cancel);
    row->addWidget(m_confirm);
    m_confirm->setDefault(true);
    column().addLayout(row);
    connect(m_confirm, &TextButton::clicked, this, &QDialog::accept);
    connect(m_cancel, &TextButton::clicked, this, &QDialog::reject);
}

int PromptDialog::lengthWithoutExtension(const QString& name)
{
    const auto extension = FileKinds::extension(name).size();
    return int(extension == 0 ? name.size() : name.size() - extension - 1);
}

std::optional<QString> PromptDialog::text() const
{
    const QString trimmed = m_field->text().trimmed();
    return trimmed.isEmpty() ? std::nullopt : std::optional(trimmed);
}

void PromptDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        accept();
    else
        QDialog::keyPressEvent(event);
}

} // namespace Bralto
