#include "Views/Chat/ChatQuestionCard.h"

#include "Views/Chat/ChoiceRow.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace Bralto {

namespace {

constexpr int QuestionIndent = 24;

using Row = ChatQuestionFlow::Row;

} // namespace

ChatQuestionCard::ChatQuestionCard(Theme& theme, ChatDraft& draft, QWidget* parent)
    : ChatCard(theme, QStringLiteral("questionmark.bubble"), parent)
    , m_draft(draft)
{
    column().setSpacing(0);
    connect(&draft, &ChatDraft::questionChanged, this, &ChatQuestionCard::refresh);
    refresh();
}

void ChatQuestionCard::clear()
{
    m_other = nullptr;
    for (QWidget* widget : std::exchange(m_body, {})) {
        column().removeWidget(widget);
        // A row may be the sender of the click that leads here.
        widget->hide();
        widget->deleteLater();
    }
}

void ChatQuestionCard::refresh()
{
    const auto& flow = m_draft.questionFlow();
    if (m_isRefreshing || !flow || !flow->item())
        return;
    // Typing in the free text changes the flow; the field that is typed in stays.
    if (m_other && flow->showsOther() && m_other->text() == flow->other() &&
        m_highlighted == flow->highlightedRow())
        return;
    m_highlighted = flow->highlightedRow();
    const QScopedValueRollback guard(m_isRefreshing, true);
    clear();
    const ChatQuestion::Item& item = *flow->item();
    const QString header = item.header.value_or(QString());
    setTitle(header.isEmpty() ? tr("Claude is asking") : tr("Claude is asking: ") + header);
    const qsizetype count = flow->question().items.size();
    setHint(count > 1 ? tr("%1 of %2").arg(flow->step() + 1).arg(count) : QString());

    auto* question = new Label(theme(), TextRole::Body, &Tokens::label, item.question, this);
    question->setWordWrap(true);
    question->setContentsMargins(QuestionIndent, 0, 0, Measure::Space2);
    column().addWidget(question);
    m_body.append(question);

    const auto highlighted = flow->highlightedRow();
    for (const Row& row : flow->rows())
        addRow(*flow, row, highlighted == row);

    auto* hint = new Label(theme(), TextRole::Caption, &Tokens::ink3,
                           tr("↑↓ to move, Return to pick"), this);
    hint->setContentsMargins(10, Measure::Space2, 0, 0);
    column().addWidget(hint);
    m_body.append(hint);
}

void ChatQuestionCard::addRow(const ChatQuestionFlow& flow, const Row& row, bool isHighlighted)
{
    if (row.kind == Row::Kind::Other)
        return addOther(flow, row, isHighlighted);
    if (row.kind == Row::Kind::Submit)
        return addSubmit(flow, row, isHighlighted);
    const ChatQuestion::Option& option = flow.item()->options.at(row.option);
    const QString key = row.option < 9 ? QString::number(row.option + 1) : QString();
    auto* choice = new ChoiceRow(
        theme(),
        {flow.item()->multiSelect ? ChoiceRow::Mark::Any : ChoiceRow::Mark::One, option.label,
         option.detail.value_or(QString()), key, flow.isPicked(option.label), isHighlighted},
        this);
    connect(choice, &ChoiceRow::clicked, this, [this, row] { m_draft.choose(row); });
    column().addWidget(choice);
    m_body.append(choice);
}

void ChatQuestionCard::addOther(const ChatQuestionFlow& flow, const Row& row, bool isHighlighted)
{
    if (!flow.showsOther()) {
        auto* choice = new ChoiceRow(
            theme(), {ChoiceRow::Mark::Pencil, tr("Something else…"), {}, {}, false, isHighlighted},
            this);
        connect(choice, &ChoiceRow::clicked, this, [this, row] { m_draft.choose(row); });
        column().addWidget(choice);
        m_body.append(choice);
        return;
    }
    m_other = new Field(theme(), this);
    m_other->setSymbol(QStringLiteral("pencil"));
    m_other->setAccessibleName(tr("Something else…"));
    m_other->setText(flow.other());
    m_other->installEventFilter(this);
    connect(m_other, &Field::textChanged, &m_draft, &ChatDraft::setOtherAnswer);
    column().addWidget(m_other);
    m_body.append(m_other);
    m_other->setFocus();
}

void ChatQuestionCard::addSubmit(const ChatQuestionFlow& flow, const Row& row, bool isHighlighted)
{
    auto* line = new QWidget(this);
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, Measure::Space2, 0, 0);
    auto* button = new TextButton(theme(), TextButton::Kind::Primary, tr("Continue"), line);
    button->setDefault(isHighlighted);
    layout->addWidget(button);
    if (flow.pickedCount() > 0)
        layout->addWidget(new Label(theme(), TextRole::Secondary, &Tokens::ink2,
                                    tr("%1 picked").arg(flow.pickedCount()), line));
    layout->addStretch();
    connect(button, &TextButton::clicked, this, [this, row] { m_draft.choose(row); });
    column().addWidget(line);
    m_body.append(line);
}

bool ChatQuestionCard::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_other || event->type() != QEvent::KeyPress)
        return ChatCard::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    std::optional<ChatKey> pressed;
    switch (key->key()) {
    case Qt::Key_Up:
        pressed = ChatKey{ChatKey::Kind::Up, 0, false};
        break;
    case Qt::Key_Down:
        pressed = ChatKey{ChatKey::Kind::Down, 0, false};
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        pressed = ChatKey{ChatKey::Kind::Return, 0, false};
        break;
    case Qt::Key_Escape:
        pressed = ChatKey{ChatKey::Kind::Escape, 0, false};
        break;
    default:
        return ChatCard::eventFilter(watched, event);
    }
    emit focusReturned();
    m_draft.pressInCard(*pressed);
    return true;
}

} // namespace Bralto
