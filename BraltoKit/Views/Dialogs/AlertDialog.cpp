#include "Views/Dialogs/AlertDialog.h"

#include "Views/Kit/Label.h"
#include "Views/Kit/SpaceTile.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace Bralto {
namespace {

constexpr int IconGap = 14;
constexpr int CardPadding = 20;
constexpr qsizetype LongestText = 900;

} // namespace

AlertDialog::AlertDialog(Theme& theme, const Alert& alert, QWidget* window)
    : FloatDialog(theme, window)
{
    setWindowTitle(alert.title);
    setAccessibleName(alert.title);
    setAccessibleDescription(alert.text);
    addWords(alert);
    column().addSpacing(Measure::Space4);
    addButtons(alert);
}

void AlertDialog::addWords(const Alert& alert)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(IconGap);
    auto* icon = new SpaceTile(theme(), theme().space(), QString(), Measure::AlertIcon, this);
    row->addWidget(icon, 0, Qt::AlignTop);
    auto* words = new QVBoxLayout;
    words->setSpacing(Measure::Space1);
    const int width = Measure::AlertWidth - 2 * CardPadding - Measure::AlertIcon - IconGap;
    const auto add = [&](TextRole role, QColor Tokens::*ink, const QString& text) {
        auto* label = new Label(theme(), role, ink, text.left(LongestText), this);
        label->setWordWrap(true);
        label->setFixedWidth(width);
        words->addWidget(label);
    };
    add(TextRole::CardTitle, &Tokens::label, alert.title);
    if (!alert.text.isEmpty())
        add(TextRole::Body, &Tokens::ink2, alert.text);
    row->addLayout(words);
    column().addLayout(row);
}

void AlertDialog::addButtons(const Alert& alert)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(Measure::Space2);
    row->addStretch(1);
    for (int at = 0; at < int(alert.buttons.size()); ++at) {
        const bool isLast = at + 1 == int(alert.buttons.size());
        const bool isHarmful = alert.lastIsDestructive && isLast && at > 0;
        auto kind = at == 0 ? TextButton::Kind::Primary : TextButton::Kind::Plain;
        if (isHarmful)
            kind = TextButton::Kind::Harmful;
        auto* button = new TextButton(theme(), kind, alert.buttons[at], this);
        connect(button, &TextButton::clicked, this, [this, at] {
            m_choice = at;
            accept();
        });
        // The first stands at the right, the others before it.
        row->insertWidget(1, button);
        m_buttons.append(button);
    }
    if (!m_buttons.isEmpty()) {
        m_buttons.first()->setDefault(true);
        m_buttons.first()->setFocus(Qt::OtherFocusReason);
    }
    column().addLayout(row);
}

void AlertDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        m_choice = 0;
        accept();
    } else {
        // Escape rejects, which leaves the first choice.
        QDialog::keyPressEvent(event);
    }
}

} // namespace Bralto
