#include "Views/Chat/SceneView.h"

#include "Views/Chat/ChatCanvas.h"
#include "Views/Chat/MarkdownScene.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

constexpr double MostHeight = 260;
constexpr double CommandSide = 10;
constexpr double CommandTop = 7;

} // namespace

SceneView::SceneView(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SceneView::setCommand(const QString& text)
{
    set(text, false);
}

void SceneView::setMarkdown(const QString& text)
{
    set(text, true);
}

void SceneView::set(const QString& text, bool isMarkdown)
{
    if (text == m_text && isMarkdown == m_isMarkdown)
        return;
    m_text = text;
    m_isMarkdown = isMarkdown;
    m_offset = 0;
    setAccessibleName(text);
    rebuild();
}

ChatScene SceneView::build(double width) const
{
    const ChatCanvasStyle style{tokens(),
                                1,
                                m_folder,
                                [](const QString&) { return std::optional<QString>(); },
                                [](const QString&) { return false; },
                                [](const QString&, const ChatImage&) { return ChatPicture(); }};
    ChatCanvas canvas(style);
    if (m_isMarkdown)
        return canvas.take(MarkdownScene::drawAll(canvas, m_text, {}, width, QStringLiteral("card"),
                                                  tokens().label));
    ChatText text;
    text.text = m_text;
    text.role = TextRole::CodeCommand;
    text.ink = tokens().label;
    text.breaksAnywhere = true;
    const double height = canvas.text(text, {CommandSide, CommandTop}, width - 2 * CommandSide);
    return canvas.take(height + 2 * CommandTop);
}

int SceneView::heightForWidth(int width) const
{
    return int(std::ceil(std::min(build(width).height, MostHeight)));
}

QSize SceneView::sizeHint() const
{
    return {320, heightForWidth(std::max(width(), 320))};
}

void SceneView::rebuild()
{
    m_scene = build(width());
    updateGeometry();
    update();
}

void SceneView::applyTheme()
{
    rebuild();
}

void SceneView::resizeEvent(QResizeEvent*)
{
    m_scene = build(width());
}

void SceneView::wheelEvent(QWheelEvent* event)
{
    const double most = std::max(0.0, m_scene.height - height());
    m_offset = std::clamp(m_offset - event->angleDelta().y() / 2.0, 0.0, most);
    event->setAccepted(most > 0);
    update();
}

void SceneView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_isMarkdown) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tokens().hover);
        painter.drawRoundedRect(rect(), Measure::ControlRadius, Measure::ControlRadius);
    }
    const ChatScenes::PaintState state{tokens(), -1, -1, 0, {}, {}};
    ChatScenes::paint(painter, m_scene, {0, -m_offset}, rect(), state);
}

} // namespace Bralto
