#include "Views/Window/MissingFolder.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextButton.h"
#include "Views/Kit/TextLine.h"

#include <QHBoxLayout>
#include <QPainter>

namespace Bralto {
namespace {

constexpr int Height = 40;
constexpr int Left = 12;

} // namespace

MissingFolder::MissingFolder(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_workspace(services.workspace)
{
    setFixedHeight(Height);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Left, 0, Measure::Space2, 0);
    row->setSpacing(Measure::Space2);
    row->addStretch(1);
    auto* again = new TextButton(services.theme, TextButton::Kind::Plain, tr("Look Again"), this);
    again->setExtent(Measure::SmallButton);
    connect(again, &TextButton::clicked, &m_workspace, &Workspace::syncWithDisk);
    row->addWidget(again);
    auto* close = new TextButton(services.theme, TextButton::Kind::Quiet, tr("Close Folder"), this);
    close->setExtent(Measure::SmallButton);
    connect(close, &TextButton::clicked, &m_workspace, &Workspace::closeFolder,
            Qt::QueuedConnection);
    row->addWidget(close);
    connect(&m_workspace, &Workspace::rootChanged, this, &MissingFolder::refresh);
    refresh();
}

void MissingFolder::refresh()
{
    const FileNode* root = m_workspace.root();
    m_words = root ? tr("“%1” isn’t where it was. Everything that is open here stays until "
                        "it is back.")
                         .arg(root->name())
                   : QString();
    setAccessibleName(m_words);
    setToolTip(root ? root->path() : QString());
    update();
}

void MissingFolder::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::CardRadius, tokens().sheet);
    Shape::fill(painter, rect(), Measure::CardRadius, tokens().waitingGround);
    Shape::edgeInside(painter, rect(), Measure::CardRadius, tokens().waitingEdge);
    Icon::draw(
        painter,
        QRectF(Left, (height() - Measure::RowIcon) / 2.0, Measure::RowIcon, Measure::RowIcon),
        QStringLiteral("exclamationmark.triangle.fill"), tokens().waiting);
    const double x = Left + Measure::RowIcon + Measure::Space2;
    const QWidget* first = layout()->itemAt(1)->widget();
    TextLine::draw(painter, QRectF(x, 0, first->x() - Measure::Space3 - x, height()),
                   TextRole::Body, tokens().label, m_words);
}

} // namespace Bralto
