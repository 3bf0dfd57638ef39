#include "Views/Console/PaneStyleEditor.h"

#include "Terminals/TerminalPanel.h"
#include "Views/Console/FontPicker.h"
#include "Views/Console/StylePreview.h"
#include "Views/Console/ThemeSwatch.h"
#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/FloatWindow.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextButton.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Bralto {
namespace {

constexpr int Width = 300;
constexpr int Padding = 14;
constexpr int Columns = 4;
constexpr int TitleWidth = 56;
constexpr int Margin = Float::ShadowMargin;

/// A hairline across the popover.
class Line final : public ThemedWidget {
public:
    Line(Theme& theme, QWidget* parent)
        : ThemedWidget(theme, parent)
    {
        setFixedHeight(1);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(QRectF(0, 0, width(), Shape::hairline(painter)), tokens().separator);
    }
};

} // namespace

PaneStyleEditor::PaneStyleEditor(Theme& theme, DefaultsStore& shared, ConsolePane& pane,
                                 QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_shared(shared)
    , m_pane(pane)
    , m_font(new FontPicker(theme, this))
    , m_smaller(new IconButton(theme, Ground::Sheet, QStringLiteral("minus"), this))
    , m_larger(new IconButton(theme, Ground::Sheet, QStringLiteral("plus"), this))
    , m_size(new Label(theme, TextRole::BodyMedium, &Tokens::label, {}, this))
    , m_preview(new StylePreview(theme, this))
    , m_useAsDefault(new TextButton(theme, TextButton::Kind::Plain, {}, this))
{
    setWindowFlags(Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(tr("Style"));
    Float::makeWindow(*this, theme, Margin, Measure::SheetRadius);
    for (const PaneTheme& look : PaneTheme::all())
        m_swatches.push_back(new ThemeSwatch(theme, look, this));
    build();

    for (ThemeSwatch* swatch : m_swatches) {
        connect(swatch, &ThemeSwatch::toggled, this, [this, swatch](bool checked) {
            PaneStyle style = m_pane.style();
            // An id that isn't in the catalogue stays until another theme is picked.
            if (!checked || &PaneTheme::named(style.theme) == &swatch->look())
                return;
            style.theme = QLatin1String(swatch->look().id);
            change(style);
        });
    }
    connect(m_font, &FontPicker::picked, this, [this](const std::optional<QString>& family) {
        PaneStyle style = m_pane.style();
        style.fontFamily = family;
        change(style);
    });
    connect(m_smaller, &IconButton::clicked, this, [this] { step(-1); });
    connect(m_larger, &IconButton::clicked, this, [this] { step(1); });
    connect(m_useAsDefault, &TextButton::clicked, this, &PaneStyleEditor::saveAsDefault);
    connect(&pane, &ConsolePane::styleChanged, this, &PaneStyleEditor::refresh);
    refresh();
}

QWidget* PaneStyleEditor::row(const QString& title, QWidget* control)
{
    auto* row = new QWidget(this);
    auto* across = new QHBoxLayout(row);
    across->setContentsMargins(0, 0, 0, 0);
    across->setSpacing(0);
    auto* words = new Label(theme(), TextRole::Body, &Tokens::ink2, title, row);
    words->setFixedWidth(TitleWidth);
    across->addWidget(words);
    across->addWidget(control, 1);
    return row;
}

void PaneStyleEditor::build()
{
    setFixedWidth(Width + 2 * Margin);
    // The rings lie in the space around the swatches.
    constexpr int Ring = ThemeSwatch::Margin;
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(Margin + Padding - Ring, Margin + Padding - Ring,
                              Margin + Padding - Ring, Margin + Padding);
    whole->setSpacing(0);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(0);
    grid->setVerticalSpacing(Measure::Space2);
    for (int at = 0; at < int(m_swatches.size()); ++at) {
        const auto side = at % Columns == 0             ? Qt::AlignLeft
                          : at % Columns == Columns - 1 ? Qt::AlignRight
                                                        : Qt::AlignHCenter;
        grid->addWidget(m_swatches[std::size_t(at)], at / Columns, at % Columns, side);
    }
    whole->addLayout(grid);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(Ring, 0, Ring, 0);
    column->setSpacing(0);
    whole->addLayout(column);
    column->addSpacing(Padding);
    column->addWidget(new Line(theme(), this));
    column->addSpacing(Padding);

    column->addWidget(row(tr("Font"), m_font));
    column->addSpacing(Measure::Space2);
    auto* sizes = new QWidget(this);
    auto* across = new QHBoxLayout(sizes);
    across->setContentsMargins(0, 0, 0, 0);
    for (IconButton* button : {m_smaller, m_larger}) {
        button->setExtent(Measure::Button, Measure::RowIcon);
        button->setFilled(true);
        button->setAutoRepeat(true);
    }
    m_smaller->setTip(tr("Smaller"));
    m_larger->setTip(tr("Larger"));
    m_size->setAlignment(Qt::AlignCenter);
    across->addWidget(m_smaller);
    across->addWidget(m_size, 1);
    across->addWidget(m_larger);
    column->addWidget(row(tr("Size"), sizes));
    column->addSpacing(Measure::Space3);
    column->addWidget(m_preview);
    column->addSpacing(Measure::Space3);
    m_useAsDefault->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    column->addWidget(m_useAsDefault);
}

QString PaneStyleEditor::sizeText(double points)
{
    return QString::asprintf("%.1f pt", points);
}

double PaneStyleEditor::stepped(double points, int direction)
{
    // From between two steps to the next one in that direction.
    const double steps = points / SizeStep;
    const double next = direction > 0 ? std::floor(steps) + 1 : std::ceil(steps) - 1;
    return std::clamp(next * SizeStep, SmallestSize, LargestSize);
}

void PaneStyleEditor::step(int direction)
{
    PaneStyle style = m_pane.style();
    const double standard = typeStyle(TextRole::Terminal).size;
    const double next = stepped(style.fontSize.value_or(standard), direction);
    style.fontSize = next == standard ? std::nullopt : std::optional(next);
    change(style);
}

void PaneStyleEditor::change(const PaneStyle& style)
{
    m_pane.setStyle(style);
}

void PaneStyleEditor::saveAsDefault()
{
    PaneStyle::setNewPaneDefault(m_shared, m_pane.style());
    m_useAsDefault->setText(tr("Saved as Default"));
    m_useAsDefault->setAccessibleName(m_useAsDefault->text());
}

void PaneStyleEditor::refresh()
{
    const PaneStyle& style = m_pane.style();
    const PaneTheme& look = PaneTheme::named(style.theme);
    for (ThemeSwatch* swatch : m_swatches)
        swatch->setChecked(&swatch->look() == &look);
    m_font->setFamily(style.fontFamily);
    const double size = style.fontSize.value_or(typeStyle(TextRole::Terminal).size);
    m_size->setText(sizeText(size));
    m_smaller->setEnabled(size > SmallestSize);
    m_larger->setEnabled(size < LargestSize);
    m_preview->setStyle(style);
    m_useAsDefault->setText(tr("Use as Default for New Panes"));
    m_useAsDefault->setAccessibleName(m_useAsDefault->text());
}

void PaneStyleEditor::open(const QPoint& globalTopRight)
{
    adjustSize();
    QPoint place = globalTopRight - QPoint(width() - Margin, Margin);
    if (const QScreen* at = screen()) {
        const QRect room = at->availableGeometry().adjusted(-Margin, -Margin, Margin, Margin);
        place.setX(
            std::clamp(place.x(), room.left(), std::max(room.left(), room.right() + 1 - width())));
        place.setY(
            std::clamp(place.y(), room.top(), std::max(room.top(), room.bottom() + 1 - height())));
    }
    move(place);
    show();
    const auto chosen =
        std::ranges::find_if(m_swatches, [](const ThemeSwatch* each) { return each->isChecked(); });
    if (chosen != m_swatches.end())
        (*chosen)->setFocus(Qt::MouseFocusReason); // its own ring is enough
}

void PaneStyleEditor::closeEvent(QCloseEvent* event)
{
    ThemedWidget::closeEvent(event);
    m_pane.setEditingStyle(false);
}

void PaneStyleEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        ThemedWidget::keyPressEvent(event);
}

void PaneStyleEditor::mousePressEvent(QMouseEvent* event)
{
    // The room for the shadow is outside for the eye.
    if (!rect().adjusted(Margin, Margin, -Margin, -Margin).contains(event->position().toPoint()))
        close();
}

void PaneStyleEditor::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF card = QRectF(rect()).adjusted(Margin, Margin, -Margin, -Margin);
    Float::drawShadow(painter, card, Measure::SheetRadius, tokens());
    Float::drawPanel(painter, card, Measure::SheetRadius, tokens());
}

} // namespace Bralto
