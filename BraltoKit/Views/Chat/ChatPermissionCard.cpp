#include "Views/Chat/ChatPermissionCard.h"

#include "Base/Json.h"
#include "Views/Chat/SceneView.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace Bralto {

namespace {

constexpr auto PlanTool = "ExitPlanMode";

QString textIn(const QByteArray& json, std::string_view key)
{
    JsonReader reader;
    const auto input = reader.object(json);
    return input ? input->string(key).value_or(QString()) : QString();
}

/// The plan of the last call that asks to leave plan mode.
QString planIn(const ChatTranscript& transcript)
{
    for (auto message = transcript.messages.rbegin(); message != transcript.messages.rend();
         ++message) {
        for (const ChatBlock& block : message->blocks) {
            const auto* call = std::get_if<ChatToolCall>(&block);
            if (call && call->name == QLatin1String(PlanTool))
                return textIn(call->inputJSON.toUtf8(), "plan");
        }
    }
    return {};
}

} // namespace

ChatPermissionCard::Body ChatPermissionCard::body(const ChatPermission& permission,
                                                  const ChatTranscript& transcript)
{
    if (permission.tool != QLatin1String(PlanTool)) {
        // A command is answered for whole, not by its first line.
        const QString command = textIn(permission.input, "command");
        const bool isShell = permission.tool == QLatin1String("Bash") ||
                             permission.tool == QLatin1String("PowerShell");
        return {isShell && !command.isEmpty() ? command : permission.summary, false};
    }
    QString plan = textIn(permission.input, "plan");
    if (plan.isEmpty())
        plan = planIn(transcript);
    return {plan, true};
}

ChatPermissionCard::ChatPermissionCard(Theme& theme, ChatDraft& draft, QWidget* parent)
    : ChatCard(theme, QStringLiteral("hand.raised"), parent)
    , m_draft(draft)
    , m_body(new SceneView(theme, this))
    , m_allow(new TextButton(theme, TextButton::Kind::Primary, tr("Allow"), this))
    , m_refuse(new TextButton(theme, TextButton::Kind::Plain, tr("Don’t Allow"), this))
{
    setHint(tr("Esc to refuse"));
    m_allow->setKeyCap(QStringLiteral("1"));
    m_refuse->setKeyCap(QStringLiteral("2"));
    column().addWidget(m_body);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Measure::Space2);
    buttons->addWidget(m_allow);
    buttons->addWidget(m_refuse);
    buttons->addStretch();
    column().addLayout(buttons);

    connect(m_allow, &TextButton::clicked, this, [this] { m_draft.respond(true); });
    connect(m_refuse, &TextButton::clicked, this, [this] { m_draft.respond(false); });
    connect(&draft, &ChatDraft::permissionChanged, this, &ChatPermissionCard::showHighlight);
    showHighlight();
}

void ChatPermissionCard::show(const ChatTranscript& transcript, const QString& folder)
{
    const auto& permission = m_draft.permission();
    if (!permission)
        return;
    const bool isPlan = permission->tool == QLatin1String(PlanTool);
    setSymbol(isPlan ? QStringLiteral("map") : QStringLiteral("hand.raised"));
    setTitle(isPlan ? tr("Claude has a plan and wants to start")
                    : tr("Claude wants to use ") + permission->tool);
    const Body shown = body(*permission, transcript);
    m_body->setFolder(folder);
    if (shown.isMarkdown)
        m_body->setMarkdown(shown.text);
    else
        m_body->setCommand(shown.text);
    m_body->setVisible(!shown.text.isEmpty());
    showHighlight();
}

void ChatPermissionCard::showHighlight()
{
    m_allow->setDefault(m_draft.permissionHighlight() == 0);
    m_refuse->setDefault(m_draft.permissionHighlight() == 1);
}

} // namespace Bralto
