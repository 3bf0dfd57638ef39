#include "Views/Chat/ChatMissingAgentCard.h"

#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace Bralto {

ChatMissingAgentCard::ChatMissingAgentCard(Theme& theme, QWidget* parent)
    : ChatCard(theme, QStringLiteral("sparkles"), parent)
{
    setTitle(tr("Claude Code isn’t on this computer yet"));
    auto* text =
        new Label(theme, TextRole::Body, &Tokens::ink2,
                  tr("Install it to talk to Claude here, or look around first with the demo agent, "
                     "which needs no account and no network."),
                  this);
    text->setWordWrap(true);
    column().addWidget(text);
    auto* demo = new TextButton(theme, TextButton::Kind::Primary, tr("Use the demo agent"), this);
    auto* help =
        new TextButton(theme, TextButton::Kind::Plain, tr("How to install Claude Code"), this);
    auto* row = new QHBoxLayout;
    row->setSpacing(Measure::Space2);
    row->addWidget(demo);
    row->addWidget(help);
    row->addStretch();
    column().addLayout(row);
    connect(demo, &TextButton::clicked, this, &ChatMissingAgentCard::useDemoAgentRequested);
    connect(help, &TextButton::clicked, this, &ChatMissingAgentCard::installHelpRequested);
}

} // namespace Bralto
