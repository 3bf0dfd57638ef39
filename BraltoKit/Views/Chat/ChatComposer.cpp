#include "Views/Chat/ChatComposer.h"

#include "Views/Chat/AttachmentChip.h"
#include "Views/Chat/ChatAttachments.h"
#include "Views/Chat/SendButton.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Shape.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace Bralto {

namespace {

constexpr QMargins Padding{14, 6, 7, 6};
constexpr int Gap = 4;
constexpr double FocusWidth = 2;

} // namespace

ChatComposer::ChatComposer(Theme& theme, ChatDraft& draft, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_draft(draft)
    , m_field(new ComposerField(theme, draft, this))
    , m_attachments(new QWidget(this))
    , m_attachmentRow(new QHBoxLayout(m_attachments))
    , m_attach(new IconButton(theme, Ground::Sheet, QStringLiteral("paperclip"), this))
    , m_send(new SendButton(theme, this))
{
    m_attach->setQuiet(true);
    m_attach->setTip(tr("Attach Files…"));
    m_attachmentRow->setContentsMargins(0, 2, 0, 4);
    m_attachmentRow->setSpacing(Measure::Space2);

    auto* row = new QHBoxLayout;
    row->setSpacing(Gap);
    row->addWidget(m_field, 1);
    row->addWidget(m_attach, 0, Qt::AlignBottom);
    row->addWidget(m_send, 0, Qt::AlignBottom);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Padding);
    column->setSpacing(0);
    column->addWidget(m_attachments);
    column->addLayout(row);

    connect(m_field, &ComposerField::focusChanged, this, [this] { update(); });
    connect(m_attach, &IconButton::clicked, this, &ChatComposer::chooseFiles);
    connect(m_send, &SendButton::clicked, this, [this] {
        if (m_send->face() == SendButton::Face::Stop)
            m_draft.interrupt();
        else
            m_draft.send();
    });
    connect(&draft, &ChatDraft::attachmentsChanged, this, &ChatComposer::showAttachments);
    connect(&draft, &ChatDraft::canSendChanged, this, &ChatComposer::showSend);
    showAttachments();
    showSend();
}

void ChatComposer::setBusy(bool busy)
{
    m_isBusy = busy;
    showSend();
}

void ChatComposer::showSend()
{
    if (m_draft.canSend())
        m_send->setFace(SendButton::Face::Send);
    else
        m_send->setFace(m_isBusy ? SendButton::Face::Stop : SendButton::Face::Off);
}

void ChatComposer::showAttachments()
{
    while (QLayoutItem* item = m_attachmentRow->takeAt(0)) {
        if (QWidget* chip = item->widget())
            chip->deleteLater();
        delete item;
    }
    for (const ChatAttachment& each : m_draft.attachments()) {
        auto* chip = new AttachmentChip(theme(), each, m_attachments);
        connect(chip, &AttachmentChip::clicked, this,
                [this, id = each.id] { m_draft.removeAttachment(id); });
        m_attachmentRow->addWidget(chip);
    }
    m_attachmentRow->addStretch();
    m_attachments->setVisible(!m_draft.attachments().isEmpty());
}

void ChatComposer::chooseFiles()
{
    ChatAttachments::Source source;
    source.paths = QFileDialog::getOpenFileNames(window(), tr("Attach Files"));
    ChatAttachments::load(std::move(source), this,
                          [this](const QList<ChatAttachment>& all) { m_draft.attach(all); });
    m_field->setFocus();
}

void ChatComposer::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Shape::fill(painter, rect(), Measure::CardRadius, tokens().field);
    if (m_field->hasFocus())
        Shape::ring(painter, rect(), Measure::CardRadius, FocusWidth, tokens().accentInk);
    else
        Shape::edgeInside(painter, rect(), Measure::CardRadius, tokens().separator);
}

void ChatComposer::mousePressEvent(QMouseEvent* event)
{
    m_field->setFocus();
    event->accept();
}

} // namespace Bralto
