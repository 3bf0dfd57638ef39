#include "Views/Chat/ImageScene.h"

namespace Bralto::ImageScene {

namespace {

constexpr double Foot = 34;
constexpr double FailedHeight = 44;
constexpr double LoadingHeight = 96;
constexpr double Side = 12;
constexpr double LeastWidth = 140;

/// A line with a symbol in a card of its own.
double drawNote(ChatCanvas& canvas, const QString& symbol, const QString& words,
                const QString& name, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const QRectF card(at,
                      QSizeF(std::min(width, canvas.u(WidestThumbnail)), canvas.u(FailedHeight)));
    canvas.fill(card, canvas.u(Measure::CardRadius), tokens.raised, tokens.separator);
    const double icon = canvas.u(Measure::RowIcon);
    const QRectF row = card.adjusted(canvas.u(Side), 0, -canvas.u(Side), 0);
    canvas.symbol({row.left(), row.center().y() - icon / 2, icon, icon}, symbol, tokens.ink2);
    const QRectF text = row.adjusted(icon + canvas.u(9), 0, 0, 0);
    const double used = canvas.line(TextRole::Body, tokens.ink2, words, text);
    canvas.line(TextRole::Secondary, tokens.ink3, name,
                text.adjusted(used + canvas.u(Side), 0, 0, 0), Qt::ElideMiddle, Qt::AlignRight);
    return card.height();
}

} // namespace

QSizeF fitted(const QSizeF& size, const QSizeF& bounds)
{
    if (size.isEmpty())
        return {};
    const double scale =
        std::min({1.0, bounds.width() / size.width(), bounds.height() / size.height()});
    return size * scale;
}

double draw(ChatCanvas& canvas, const ChatImage& image, const QString& key, const QPointF& at,
            double width, double highest)
{
    const Tokens& tokens = canvas.tokens();
    const ChatPicture picture =
        canvas.style().findImage ? canvas.style().findImage(key, image) : ChatPicture{};
    if (picture.state == ChatPicture::State::Failed) {
        return drawNote(canvas, QStringLiteral("photo.badge.exclamationmark"),
                        QStringLiteral("Couldn’t load image"), picture.name, at, width);
    }
    const double radius = canvas.u(Measure::CardRadius);
    const double foot = canvas.u(Foot);
    const QSizeF bounds(std::min(width, canvas.u(WidestThumbnail)), canvas.u(highest));
    QSizeF shown = fitted(QSizeF(picture.size), bounds);
    if (picture.state == ChatPicture::State::Loading)
        shown = {bounds.width(), canvas.u(LoadingHeight)};
    const QSizeF area(std::max(shown.width(), std::min(bounds.width(), canvas.u(LeastWidth))),
                      shown.height());
    const QRectF card(at, QSizeF(area.width(), area.height() + foot));
    canvas.fill(card, radius, tokens.raised, {});
    if (picture.state == ChatPicture::State::Ready) {
        canvas.picture({{at + QPointF((area.width() - shown.width()) / 2, 0), shown},
                        picture.image,
                        shown.width() < area.width() ? 0 : radius,
                        false});
    }
    canvas.frame(card, radius, tokens.separator);

    const double icon = canvas.u(Measure::TabIcon);
    const QRectF row(card.left() + canvas.u(Side), card.bottom() - foot,
                     card.width() - 2 * canvas.u(Side), foot);
    const QString name =
        picture.name.isEmpty()
            ? QStringLiteral("%1 × %2").arg(picture.size.width()).arg(picture.size.height())
            : picture.name;
    canvas.symbol({row.left(), row.center().y() - icon / 2, icon, icon}, QStringLiteral("photo"),
                  tokens.ink2);
    canvas.line(TextRole::Secondary, tokens.ink2,
                picture.state == ChatPicture::State::Loading ? QStringLiteral("Loading…") : name,
                row.adjusted(icon + canvas.u(8), 0, -icon - canvas.u(8), 0), Qt::ElideMiddle);
    if (picture.state == ChatPicture::State::Ready) {
        canvas.symbol({row.right() - icon, row.center().y() - icon / 2, icon, icon},
                      QStringLiteral("arrow.up.left.and.arrow.down.right"), tokens.ink2);
        canvas.hot({card,
                    {ChatAction::Kind::ShowImage, key, {}},
                    QStringLiteral("Image ") + name,
                    radius});
    }
    return card.height();
}

} // namespace Bralto::ImageScene
