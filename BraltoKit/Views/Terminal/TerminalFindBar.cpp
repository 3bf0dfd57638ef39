#include "Views/Terminal/TerminalFindBar.h"

#include "Base/Shortcuts.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/Shape.h"

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace Bralto {

namespace {

constexpr int Height = 40;
constexpr int FieldWidth = 320;
constexpr int SmallestField = 150;
constexpr int FieldHeight = 28;
constexpr int SwitchSide = 22;
constexpr int SwitchInset = 3;
constexpr int StatusWidth = 86;
constexpr int RightInset = Measure::Space4; // clear of the scroll bar
constexpr int Edge = 1;
constexpr int SearchedRows = 4096; ///< At most, in one slice; time ends most of them earlier.

/// A sign that is on or off.
class FindSwitch final : public Control {
public:
    FindSwitch(Theme& theme, const QString& sign, QWidget* parent)
        : Control(theme, Ground::Sheet, parent)
        , m_sign(sign)
    {
        setCheckable(true);
        setFixedSize(SwitchSide, SwitchSide);
        setCursor(Qt::ArrowCursor);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor fill = isChecked() ? pressedFill() : hoverFill();
        if (isChecked() || hoverAmount() > 0)
            Shape::fill(painter, rect(), Measure::Space1, fill);
        QFont face = Bralto::font(TextRole::CaptionMedium); // Of the role, not of the widget.
        face.setUnderline(m_sign == QLatin1String("ab"));
        painter.setFont(face);
        painter.setPen(isChecked() ? labelInk() : secondaryInk());
        painter.drawText(rect(), Qt::AlignCenter, m_sign);
    }

private:
    QString m_sign;
};

} // namespace

TerminalFindBar::TerminalFindBar(Theme& theme, TerminalSession& session, QWidget& view)
    : ThemedWidget(theme, &view)
    , m_session(session)
    , m_view(view)
    , m_field(new Field(theme, this))
    , m_caseSensitive(addSwitch(QStringLiteral("Aa"), tr("Match Case")))
    , m_wholeWord(addSwitch(QStringLiteral("ab"), tr("Whole Words")))
    , m_regularExpression(addSwitch(QStringLiteral(".*"), tr("Regular Expression")))
    , m_status(new Label(theme, TextRole::Secondary, &Tokens::ink2, {}, this))
{
    setCursor(Qt::ArrowCursor);
    m_field->setPlaceholderText(tr("Find"));
    m_field->setAccessibleName(tr("Find"));
    m_field->setFixedHeight(FieldHeight);
    m_field->setMinimumWidth(SmallestField);
    m_field->setMaximumWidth(FieldWidth);
    m_field->setTextMargins(Measure::Space2, 0, 3 * SwitchSide + 2 * SwitchInset, 0);
    m_field->installEventFilter(this);
    m_status->setFixedWidth(StatusWidth);

    const auto button = [&](const QString& symbol, const QString& tip, const QString& keys) {
        auto* const made = new IconButton(theme, Ground::Sheet, symbol, this);
        made->setExtent(Measure::IconButton, Measure::TabIcon);
        made->setTip(tip, keys);
        return made;
    };
    auto* const up =
        button(QStringLiteral("arrow.up"), tr("Previous Match"), QStringLiteral("Shift+Return"));
    auto* const down =
        button(QStringLiteral("arrow.down"), tr("Next Match"), QStringLiteral("Return"));
    auto* const shut = button(QStringLiteral("xmark"), tr("Close"), QStringLiteral("Esc"));
    connect(up, &IconButton::clicked, this, &TerminalFindBar::previous);
    connect(down, &IconButton::clicked, this, &TerminalFindBar::next);
    connect(shut, &IconButton::clicked, this, &TerminalFindBar::close);

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(Measure::Space2, 0, Measure::Space2, 0);
    row->setSpacing(2);
    row->addWidget(m_field, 1);
    row->addSpacing(Measure::Space2);
    row->addWidget(m_status);
    row->addWidget(up);
    row->addWidget(down);
    row->addWidget(shut);

    connect(m_field, &Field::textChanged, this, &TerminalFindBar::search);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &TerminalFindBar::step);
    connect(&session, &TerminalSession::changed, this, &TerminalFindBar::followOutput);
    view.installEventFilter(this);
    hide();
}

Control* TerminalFindBar::addSwitch(const QString& sign, const QString& tip)
{
    auto* const made = new FindSwitch(theme(), sign, m_field);
    made->setTip(tip);
    connect(made, &Control::toggled, this, &TerminalFindBar::search);
    return made;
}

// --- what it does

void TerminalFindBar::open(const QString& text)
{
    if (!text.isEmpty() && !text.contains(u'\n'))
        m_field->setText(text);
    const Kovalt::Terminal& terminal = m_session.terminal();
    const Kovalt::Buffer& buffer = terminal.buffer();
    m_origin = {buffer.linesTop + buffer.yDisp + terminal.rows(), 0};
    place();
    show();
    raise();
    m_field->setFocus(Qt::ShortcutFocusReason);
    m_field->selectAll();
    search();
}

void TerminalFindBar::close()
{
    if (isHidden())
        return;
    m_timer.stop();
    m_session.search().clear();
    m_error.reset();
    hide();
    emit hitsChanged();
    emit closed();
}

Kovalt::SearchQuery TerminalFindBar::query() const
{
    return {.text = m_field->text().toStdString(),
            .isRegularExpression = m_regularExpression->isChecked(),
            .isCaseSensitive = m_caseSensitive->isChecked(),
            .isWholeWord = m_wholeWord->isChecked()};
}

void TerminalFindBar::search()
{
    if (isHidden())
        return;
    Kovalt::SearchService& search = m_session.search();
    m_error = search.setQuery(query());
    // Upwards, so that the newest comes first; from where one was, however much is written.
    search.setOrigin(m_origin);
    m_awaitsMatch = true;
    m_shownCount = 0;
    step();
}

void TerminalFindBar::step()
{
    Kovalt::SearchService& search = m_session.search();
    QElapsedTimer spent;
    spent.start();
    const bool isMoreLeft = search.step(SearchedRows, [&spent] {
        return spent.elapsed() >= std::chrono::milliseconds(Slice).count();
    });
    if (!isMoreLeft)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
    if (!isMoreLeft && m_awaitsMatch) {
        m_awaitsMatch = false;
        showCurrent(search.previous());
    }
    if (search.count() != m_shownCount) {
        m_shownCount = search.count();
        emit hitsChanged();
    }
    showStatus();
}

void TerminalFindBar::followOutput()
{
    if (isVisible() && !m_session.search().query().text.empty() && !m_timer.isActive())
        m_timer.start();
}

void TerminalFindBar::next()
{
    goTo(m_session.search().next());
}

void TerminalFindBar::previous()
{
    goTo(m_session.search().previous());
}

void TerminalFindBar::goTo(const std::optional<Kovalt::TextRange>& match)
{
    m_awaitsMatch = false;
    if (match)
        m_origin = {match->begin.row + 1, 0};
    showCurrent(match);
    showStatus();
}

int TerminalFindBar::topRowShowing(int row, int topRow, int rows)
{
    return row >= topRow && row < topRow + rows ? topRow : row - rows / 2;
}

void TerminalFindBar::showCurrent(const std::optional<Kovalt::TextRange>& match)
{
    if (match) {
        const Kovalt::Terminal& terminal = m_session.terminal();
        const Kovalt::Buffer& buffer = terminal.buffer();
        const int row = int(match->begin.row - buffer.linesTop);
        m_session.scrollTo(topRowShowing(row, buffer.yDisp, terminal.rows()));
    }
    emit hitsChanged();
}

QString TerminalFindBar::status(const Kovalt::SearchService& search,
                                const std::optional<Kovalt::SearchError>& error)
{
    if (error)
        return QString::fromStdString(error->message);
    if (search.query().text.empty())
        return {};
    if (search.count() == 0)
        return search.isComplete() ? tr("No results") : QString();
    const QString count = search.isCapped() ? QStringLiteral("%1+").arg(search.count())
                                            : QString::number(search.count());
    const auto current = search.currentIndex();
    return current ? tr("%1 of %2").arg(*current + 1).arg(count) : count;
}

void TerminalFindBar::showStatus()
{
    const QString status = this->status(m_session.search(), m_error);
    m_status->setText(m_error ? tr("Not valid") : status);
    m_status->setToolTip(m_error ? status : QString());
}

// --- how it looks

void TerminalFindBar::place()
{
    const int widest = layout()->contentsMargins().left() * 2 + FieldWidth + StatusWidth +
                       3 * Measure::IconButton + Measure::Space2 * 2;
    const int width = std::min(widest, m_view.width() - Measure::Space2 - RightInset);
    setGeometry(m_view.width() - width - RightInset, Measure::Space2, width, Height);
}

void TerminalFindBar::placeSwitches()
{
    int right = m_field->width() - SwitchInset;
    for (Control* const each : {m_regularExpression, m_wholeWord, m_caseSensitive}) {
        each->move(right - SwitchSide, (m_field->height() - SwitchSide) / 2);
        right -= SwitchSide;
    }
}

bool TerminalFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == &m_view)
            place();
        else
            placeSwitches();
    }
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (isReturn && key.modifiers().testFlag(Qt::ShiftModifier))
            previous();
        else if (isReturn)
            next();
        else if (key.key() == Qt::Key_Escape)
            close();
        else
            return ThemedWidget::eventFilter(watched, event);
        return true;
    }
    return ThemedWidget::eventFilter(watched, event);
}

void TerminalFindBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Float::drawPanel(painter, QRectF(rect()).adjusted(Edge, Edge, -Edge, -Edge),
                     Measure::ControlRadius, tokens());
}

} // namespace Bralto
