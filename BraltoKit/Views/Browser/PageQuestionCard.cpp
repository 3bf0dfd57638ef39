#include "Views/Browser/PageQuestionCard.h"

#include "Browser/PageQuestionText.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace Bralto {
namespace {

constexpr int CardWidth = 400;
constexpr int Padding = 16;
constexpr int Shadow = Float::ShadowMargin;

} // namespace

PageQuestionCard::PageQuestionCard(Theme& theme, BrowserTab& tab, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_tab(tab)
{
    setCursor(Qt::ArrowCursor);
    connect(&tab, &BrowserTab::questionsChanged, this, &PageQuestionCard::showOldest);
    hide();
    showOldest();
}

void PageQuestionCard::showOldest()
{
    const auto& questions = m_tab.questions();
    const auto oldest = questions.empty() ? std::nullopt : std::optional(questions.front());
    if (oldest == m_shown)
        return;
    m_shown = oldest;
    if (m_body) {
        // Its button may be what was pressed.
        m_body->hide();
        m_body->deleteLater();
        m_body = nullptr;
    }
    if (m_shown)
        build(*m_shown);
    placeIn(m_area);
    setVisible(m_shown.has_value());
    raise();
    emit questionShown();
}

void PageQuestionCard::build(const PageQuestion& question)
{
    const PageQuestionText::Words words = PageQuestionText::words(question);
    m_body = new QWidget(this);
    auto* column = new QVBoxLayout(m_body);
    column->setContentsMargins(Padding, Padding, Padding, Padding);
    column->setSpacing(Measure::Space2);
    auto* title = new Label(theme(), TextRole::BodyStrong, &Tokens::label, words.title, m_body);
    title->setWordWrap(true);
    column->addWidget(title);
    if (!words.text.isEmpty()) {
        auto* text = new Label(theme(), TextRole::Body, &Tokens::ink2, words.text, m_body);
        text->setWordWrap(true);
        column->addWidget(text);
    }
    setAccessibleName(words.title);
    setAccessibleDescription(words.text);
    addFields(question, *column);
    addButtons(question, *column);
    m_body->show();
}

void PageQuestionCard::addFields(const PageQuestion& question, QVBoxLayout& column)
{
    m_text = nullptr;
    m_password = nullptr;
    const bool isLogin = question.kind == PageQuestion::Kind::Login;
    if (!isLogin && question.kind != PageQuestion::Kind::Prompt)
        return;
    m_text = new Field(theme(), m_body);
    m_text->setText(question.suggestion);
    m_text->setPlaceholderText(isLogin ? tr("Name") : QString());
    m_text->setAccessibleName(isLogin ? tr("Name") : tr("Answer"));
    column.addWidget(m_text);
    if (!isLogin)
        return;
    m_password = new Field(theme(), m_body);
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setPlaceholderText(tr("Password"));
    m_password->setAccessibleName(tr("Password"));
    column.addWidget(m_password);
}

void PageQuestionCard::addButtons(const PageQuestion& question, QVBoxLayout& column)
{
    const PageQuestionText::Words words = PageQuestionText::words(question);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, Measure::Space1, 0, 0);
    row->setSpacing(Measure::Space2);
    row->addStretch(1);
    m_refuse = nullptr;
    if (!words.refuse.isEmpty()) {
        m_refuse = new TextButton(theme(), TextButton::Kind::Plain, words.refuse, m_body);
        connect(m_refuse, &TextButton::clicked, this, [this] { answer(false); });
        row->addWidget(m_refuse);
    }
    // What a page would like to be allowed is not what Return allows.
    const bool isPermission = question.kind == PageQuestion::Kind::Permission;
    m_accept =
        new TextButton(theme(), isPermission ? TextButton::Kind::Plain : TextButton::Kind::Primary,
                       words.accept, m_body);
    m_accept->setDefault(!isPermission);
    connect(m_accept, &TextButton::clicked, this, [this] { answer(true); });
    row->addWidget(m_accept);
    column.addLayout(row);
}

void PageQuestionCard::answer(bool accepted)
{
    if (!m_shown)
        return;
    const PageAnswer said{accepted, m_text ? m_text->text() : QString(),
                          m_password ? m_password->text() : QString()};
    m_tab.answer(m_shown->id, said);
    emit answered();
}

QWidget* PageQuestionCard::focusTarget() const
{
    if (!m_shown)
        return nullptr;
    if (m_text)
        return m_text;
    return m_shown->kind == PageQuestion::Kind::Permission ? m_refuse : m_accept;
}

void PageQuestionCard::placeIn(const QRect& area)
{
    m_area = area;
    if (!m_body || area.isEmpty())
        return;
    const int wide = std::min(CardWidth, area.width() - 2 * Measure::Space3);
    m_body->setFixedWidth(std::max(1, wide));
    const int high = m_body->layout()->hasHeightForWidth()
                         ? m_body->layout()->totalHeightForWidth(wide)
                         : m_body->sizeHint().height();
    setGeometry(area.center().x() - wide / 2 - Shadow, area.top() + Measure::Space3 - Shadow,
                wide + 2 * Shadow, high + 2 * Shadow);
    m_body->setGeometry(Shadow, Shadow, wide, high);
}

void PageQuestionCard::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        answer(m_refuse == nullptr);
    else if (isReturn && m_accept && m_accept->isDefault())
        answer(true);
    else
        QWidget::keyPressEvent(event);
}

void PageQuestionCard::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF card = QRectF(rect()).adjusted(Shadow, Shadow, -Shadow, -Shadow);
    Float::drawShadow(painter, card, Measure::CardRadius, tokens());
    Float::drawPanel(painter, card, Measure::CardRadius, tokens());
}

} // namespace Bralto
