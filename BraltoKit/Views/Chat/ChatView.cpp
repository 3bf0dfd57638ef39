#include "Views/Chat/ChatView.h"

#include "Chat/ChatStatusInfo.h"
#include "Chat/ChatWorkingRow.h"
#include "Views/Chat/ChatAttachments.h"
#include "Views/Chat/ChatComposer.h"
#include "Views/Chat/ChatList.h"
#include "Views/Chat/ChatMissingAgentCard.h"
#include "Views/Chat/ChatPermissionCard.h"
#include "Views/Chat/ChatQuestionCard.h"
#include "Views/Chat/ChatStrip.h"
#include "Views/Chat/ChatTranscriptView.h"
#include "Views/Chat/ImageOverlay.h"
#include "Views/Chat/JumpButton.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>

namespace Bralto {

namespace {

constexpr int Side = 10;
constexpr int ColumnWidth = 760;
constexpr int CardGap = 8;
constexpr int JumpGap = 12;
constexpr int PaletteRow = 30;
constexpr int MentionRow = 28;

/// The symbol of a command in the palette.
QString symbolOf(const ChatCommand& command)
{
    const auto* native = std::get_if<ChatNativeCommand>(&command.action);
    if (!native)
        return QStringLiteral("slash");
    switch (*native) {
    case ChatNativeCommand::Model:
        return QStringLiteral("cpu");
    case ChatNativeCommand::Effort:
        return QStringLiteral("brain");
    case ChatNativeCommand::Permissions:
        return QStringLiteral("hand.raised");
    case ChatNativeCommand::Clear:
        return QStringLiteral("square.and.pencil");
    default:
        return QStringLiteral("slash");
    }
}

} // namespace

ChatView::ChatView(ClaudeChat& chat, Theme& theme, const Clock& clock, ChatFileIndex& files,
                   QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_chat(chat)
    , m_draft(ChatDraft::of(chat))
    , m_files(files)
    , m_transcript(new ChatTranscriptView(theme, clock, this))
    , m_foot(new QWidget(this))
    , m_missing(new ChatMissingAgentCard(theme, m_foot))
    , m_permission(new ChatPermissionCard(theme, m_draft, m_foot))
    , m_question(new ChatQuestionCard(theme, m_draft, m_foot))
    , m_palette(new ChatList(theme, tr("Commands"), m_foot))
    , m_mentions(new ChatList(theme, tr("Files"), m_foot))
    , m_composer(new ChatComposer(theme, m_draft, m_foot))
    , m_strip(new ChatStrip(theme, m_foot))
    , m_jump(new JumpButton(theme, this))
    , m_overlay(new ImageOverlay(theme, *this))
{
    build();
    connectChat();
    connectDraft();
    m_transcript->setFolder(chat.folder());
    m_transcript->setTranscript(&chat.transcript());
    showState();
    showCards();
    showLists();
}

ChatView::~ChatView()
{
    m_transcript->setTranscript(nullptr);
}

void ChatView::build()
{
    auto* foot = new QVBoxLayout(m_foot);
    foot->setContentsMargins(0, 0, 0, 0);
    foot->setSpacing(CardGap);
    for (QWidget* widget : std::initializer_list<QWidget*>{m_missing, m_permission, m_question,
                                                           m_palette, m_mentions, m_composer})
        foot->addWidget(widget);
    foot->addSpacing(-CardGap);
    foot->addWidget(m_strip);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_transcript, 1);
    column->addWidget(m_foot, 0);
    setFocusProxy(&m_composer->field());

    m_jump->hide();
    m_foot->installEventFilter(this);
    setAcceptDrops(true);
    connect(m_jump, &JumpButton::clicked, m_transcript, &ChatTranscriptView::scrollToBottom);
    connect(m_transcript, &ChatTranscriptView::showImageRequested, m_overlay,
            &ImageOverlay::present);
    connect(m_overlay, &ImageOverlay::dismissed, &m_composer->field(),
            qOverload<>(&QWidget::setFocus));
    connect(m_transcript, &ChatTranscriptView::followingChanged, this, [this](bool follows) {
        m_jump->setVisible(!follows);
        m_jump->raise();
        placeJump();
    });
}

void ChatView::connectChat()
{
    connect(&m_chat, &ClaudeChat::transcriptChanged, this,
            [this](const ChatTranscriptChange& change) {
                m_transcript->transcriptChanged(change);
                showState();
            });
    connect(&m_chat, &ClaudeChat::transcriptReplaced, this, [this] {
        m_transcript->setTranscript(&m_chat.transcript());
        showState();
    });
    connect(&m_chat, &ClaudeChat::stateChanged, this, &ChatView::showState);
    connect(&m_chat, &ClaudeChat::isLoadingHistoryChanged, this, &ChatView::showState);
    connect(&m_chat, &ClaudeChat::agentMissingChanged, this, &ChatView::showCards);
    connect(m_transcript, &ChatTranscriptView::openFileRequested, this,
            &ChatView::openFileRequested);
    connect(m_transcript, &ChatTranscriptView::openUrlRequested, this, &ChatView::openUrlRequested);
    connect(m_transcript, &ChatTranscriptView::typed, this, [this](QKeyEvent* event) {
        m_composer->field().setFocus();
        QCoreApplication::sendEvent(&m_composer->field(), event);
    });
}

void ChatView::connectDraft()
{
    connect(&m_draft, &ChatDraft::permissionChanged, this, &ChatView::showCards);
    connect(&m_draft, &ChatDraft::questionChanged, this, &ChatView::showCards);
    connect(&m_draft, &ChatDraft::listsChanged, this, &ChatView::showLists);
    connect(m_question, &ChatQuestionCard::focusReturned, &m_composer->field(),
            qOverload<>(&QWidget::setFocus));
    connect(m_missing, &ChatMissingAgentCard::useDemoAgentRequested, this,
            &ChatView::useDemoAgentRequested);
    connect(m_missing, &ChatMissingAgentCard::installHelpRequested, this,
            &ChatView::installHelpRequested);
    connect(m_palette, &ChatList::picked, this, [this](qsizetype row) {
        if (row < m_draft.paletteRows().size())
            m_draft.takeCommand(ChatCommand(m_draft.paletteRows().at(row)));
    });
    connect(m_mentions, &ChatList::picked, this, [this](qsizetype row) {
        if (row < m_draft.mentionRows().size())
            m_draft.insertMention(QString(m_draft.mentionRows().at(row)));
    });
    const auto giveFiles = [this] {
        if (const auto list = m_files.files(m_chat.folder()))
            m_draft.setFiles(list);
    };
    connect(&m_draft, &ChatDraft::filesRequested, this, giveFiles);
    connect(&m_files, &ChatFileIndex::listed, this, [this, giveFiles](const QString& folder) {
        if (folder == m_chat.folder())
            giveFiles();
    });
}

void ChatView::showState()
{
    const ChatState& state = m_chat.state();
    // A missing agent has a card of its own, which says more than the shell's words.
    auto row = ChatWorkingRow::of(state, m_chat.transcript().messages, m_chat.isLoadingHistory());
    if (m_chat.isAgentMissing() && row && row->kind == ChatWorkingRow::Kind::Failed)
        row.reset();
    m_transcript->setWorkingRow(row);
    m_composer->setBusy(state.kind == ChatState::Kind::Working ||
                        state.kind == ChatState::Kind::Starting ||
                        state.kind == ChatState::Kind::Waiting);
    showFacts();
    showCards();
}

void ChatView::showFacts()
{
    const ChatStatusInfo info = ChatStatusInfo::of(m_chat);
    m_strip->setInfo(info);
    m_transcript->setBanner(ChatStatusTexts::banner(info));
}

void ChatView::showCards()
{
    m_missing->setVisible(m_chat.isAgentMissing());
    if (m_draft.permission())
        m_permission->show(m_chat.transcript(), m_chat.folder());
    m_permission->setVisible(m_draft.permission().has_value());
    m_question->setVisible(!m_draft.permission() && m_draft.questionFlow() &&
                           !m_draft.questionFlow()->isAnswered());
}

void ChatView::showLists()
{
    QList<ChatList::Row> rows;
    for (const ChatCommand& command : m_draft.paletteRows())
        rows.append({symbolOf(command), u'/' + command.name, command.argumentHint,
                     command.description, false});
    m_palette->setRows(rows, m_draft.paletteIndex(), PaletteRow);
    m_palette->setVisible(m_draft.isPaletteOpen());

    rows.clear();
    for (const QString& path : m_draft.mentionRows()) {
        const qsizetype slash = path.lastIndexOf(u'/');
        rows.append({QStringLiteral("doc.text"),
                     path.mid(slash + 1),
                     {},
                     slash > 0 ? path.left(slash) : QString(),
                     true});
    }
    m_mentions->setRows(rows, m_draft.mentionIndex(), MentionRow);
    m_mentions->setVisible(m_draft.isMentionOpen());
}

void ChatView::setZoom(double zoom)
{
    m_transcript->setZoom(zoom);
    m_composer->field().setZoom(zoom);
}

void ChatView::placeJump()
{
    m_jump->standOn({width() / 2, m_foot->y() + CardGap - JumpGap});
}

/// The foot grows and shrinks with its cards; what stands on it follows.
bool ChatView::eventFilter(QObject* watched, QEvent* event)
{
    const bool moved = event->type() == QEvent::Resize || event->type() == QEvent::Move;
    if (watched == m_foot && moved)
        placeJump();
    return ThemedWidget::eventFilter(watched, event);
}

void ChatView::dragEnterEvent(QDragEnterEvent* event)
{
    if (ChatAttachments::canRead(*event->mimeData()))
        event->acceptProposedAction();
}

void ChatView::dropEvent(QDropEvent* event)
{
    m_composer->field().attach(*event->mimeData());
    m_composer->field().setFocus();
    event->acceptProposedAction();
}

void ChatView::resizeEvent(QResizeEvent*)
{
    const int side = std::max(Side, (width() - ColumnWidth) / 2);
    m_foot->layout()->setContentsMargins(side, CardGap, side, 0);
    placeJump();
}

void ChatView::showEvent(QShowEvent* event)
{
    ThemedWidget::showEvent(event);
    // The agent's commands and models load before the first turn.
    if (m_chat.state().kind != ChatState::Kind::Failed)
        m_chat.launchIfNeeded(ClaudeChat::Turn::No);
}

void ChatView::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), tokens().sheet);
}

} // namespace Bralto
