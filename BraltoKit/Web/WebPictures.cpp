#include "Web/WebPictures.h"

#include "Base/Background.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImageReader>

#include <algorithm>

namespace Bralto {

namespace {

/// A page that was hidden takes about 200 ms to its first frame. One that takes longer is busy, and
/// what it showed last will do.
constexpr std::chrono::milliseconds FrameLimit{1500};
constexpr std::chrono::milliseconds FramePause{30};
constexpr std::chrono::milliseconds LeastWay{25};
constexpr std::chrono::milliseconds LongestWay{400};
/// Attaching takes up to a second on a busy machine, and so does a long page.
constexpr std::chrono::seconds WholeLimit{12};
/// Takes a third of the time of the default, for a tenth more of bytes.
constexpr int PngQuality = 70;

/// Whether there is nothing but `paper` to be seen.
bool isEmpty(const QImage& picture, const QColor& paper)
{
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    const QRgb wanted = paper.rgb();
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(line, line + image.width(), [wanted](QRgb each) { return each != wanted; }))
            return false;
    }
    return true;
}

PagePictureResult encoded(const QImage& image, QSize size)
{
    if (image.isNull())
        return Unexpected{PagePictureError::NothingDrawn};
    const QImage scaled = image.size() == size
                              ? image
                              : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    // Nothing of a page is see-through, and without alpha it takes less.
    if (!scaled.convertToFormat(QImage::Format_RGB888).save(&buffer, "PNG", PngQuality))
        return Unexpected{PagePictureError::Unencodable};
    return png;
}

/// The engine's own PNG, made smaller where it is too large.
PagePictureResult checked(const QByteArray& base64)
{
    QByteArray png = QByteArray::fromBase64(base64);
    QBuffer buffer(&png);
    QImageReader reader(&buffer, "PNG");
    const QSize size = reader.size();
    if (size.isEmpty())
        return Unexpected{PagePictureError::Unreadable};
    const QSize fitted = PagePicture::fitted(size);
    if (size == fitted)
        return png;
    const QImage image = reader.read();
    return image.isNull() ? PagePictureResult(Unexpected{PagePictureError::Unreadable})
                          : encoded(image, fitted);
}

} // namespace

WebPictures::WebPictures(QWebEnginePage& page, WebPlace& place, WebCalls& calls, WebTurns& turns,
                         QObject* parent)
    : QObject(parent)
    , m_page(page)
    , m_place(place)
    , m_calls(calls)
    , m_turns(turns)
{
}

WebPictures::~WebPictures()
{
    m_turns.forget(this);
    m_whole.reset();
    for (const auto& [id, done] : std::exchange(m_pictures, {}))
        done(Unexpected{PagePictureError::NothingDrawn});
}

void WebPictures::take(PageExtent extent, bool isAsking, Done done)
{
    const quint64 id = ++m_lastId;
    m_pictures[id] = std::move(done);
    m_place.hold();
    if (isAsking)
        QMetaObject::invokeMethod(
            this, [this, id] { grab(id); }, Qt::QueuedConnection);
    else if (extent == PageExtent::Visible)
        takeVisible(id);
    else
        takeWhole(id);
}

void WebPictures::end(quint64 id, const PagePictureResult& result)
{
    const auto found = m_pictures.find(id);
    if (found == m_pictures.end())
        return;
    const Done done = std::move(found->second);
    m_pictures.erase(found);
    m_place.release();
    done(result);
}

// --- what is on the screen

void WebPictures::takeVisible(quint64 id)
{
    const QPointer<WebPictures> self(this);
    const quint64 frames = m_place.view().frames();
    QElapsedTimer clock;
    clock.start();
    // Whether or not the page could say so: what there is, is drawn.
    m_calls.awaitFrame(FrameLimit, [self, id, frames, clock](const PageScriptResult&) {
        if (!self)
            return;
        // The page has drawn, and what it drew may still be on its way here: on a busy machine for
        // as long as the page itself took. Where nothing changed, nothing comes.
        const auto limit =
            std::clamp(std::chrono::milliseconds(clock.elapsed()), LeastWay, LongestWay);
        if (self->m_place.view().frames() != frames)
            self->grab(id);
        else
            self->awaitDrawing(id, limit);
    });
}

void WebPictures::awaitDrawing(quint64 id, std::chrono::milliseconds limit)
{
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, id, timer] {
        timer->deleteLater();
        timer->disconnect();
        m_place.view().disconnect(timer);
        grab(id);
    });
    // In a later turn: the view is in the middle of its drawing.
    connect(&m_place.view(), &WebView::frameDrawn, timer, [timer] { timer->start(0); });
    timer->start(limit);
}

void WebPictures::grab(quint64 id)
{
    const QSize size = PagePicture::fitted(m_place.view().size());
    if (size.isEmpty()) {
        end(id, Unexpected{PagePictureError::NothingDrawn});
        return;
    }
    const QImage image = m_place.view().grab().toImage();
    // The first frame of a page that was hidden comes some time after the page has drawn it.
    if (m_place.isWaking() && isEmpty(image, m_page.backgroundColor()))
        QTimer::singleShot(FramePause, this, [this, id] { grab(id); });
    else
        encode(id, image, size);
}

void WebPictures::encode(quint64 id, const QImage& image, QSize size)
{
    inBackground(
        this, [image, size] { return encoded(image, size); },
        [this, id](const PagePictureResult& result) { end(id, result); });
}

// --- the whole page

void WebPictures::takeWhole(quint64 id)
{
    m_turns.await(this, [this, id](const WebTurns::Turn& turn) {
        m_whole = std::make_unique<Whole>();
        m_whole->id = id;
        m_whole->turn = turn;
        m_whole->limit.setSingleShot(true);
        connect(&m_whole->limit, &QTimer::timeout, this, &WebPictures::fallBack);
        m_whole->limit.start(WholeLimit);
        // The user has the developer tools open, and there is room for one.
        if (m_page.devToolsPage()) {
            m_whole->limit.start(0);
            return;
        }
        m_whole->link = std::make_unique<DevToolsLink>(m_page);
        measure();
    });
}

void WebPictures::measure()
{
    m_whole->link->send(
        QStringLiteral("Page.getLayoutMetrics"), {},
        [this](const std::optional<QJsonObject>& metrics) {
            const QJsonObject content =
                metrics.value_or(QJsonObject()).value(QStringLiteral("cssContentSize")).toObject();
            const QSizeF size(content.value(QStringLiteral("width")).toDouble(),
                              content.value(QStringLiteral("height")).toDouble());
            size.isEmpty() ? fallBack() : capture(size);
        });
}

void WebPictures::capture(const QSizeF& size)
{
    const double scale = std::min({1.0, PagePicture::LargestWidth / size.width(),
                                   PagePicture::LargestHeight / size.height()}) /
                         m_place.view().devicePixelRatioF();
    const QJsonObject clip{{QStringLiteral("x"), 0},
                           {QStringLiteral("y"), 0},
                           {QStringLiteral("width"), size.width()},
                           {QStringLiteral("height"), size.height()},
                           {QStringLiteral("scale"), scale}};
    m_whole->link->send(
        QStringLiteral("Page.captureScreenshot"),
        {{QStringLiteral("format"), QStringLiteral("png")},
         {QStringLiteral("captureBeyondViewport"), true},
         {QStringLiteral("clip"), clip}},
        [this](const std::optional<QJsonObject>& picture) {
            const QByteArray data =
                picture.value_or(QJsonObject()).value(QStringLiteral("data")).toString().toLatin1();
            data.isEmpty() ? fallBack() : finishWhole(data);
        });
}

void WebPictures::finishWhole(const QByteArray& base64)
{
    const quint64 id = m_whole->id;
    m_whole.reset();
    inBackground(
        this, [base64] { return checked(base64); },
        [this, id](const PagePictureResult& result) { end(id, result); });
}

void WebPictures::fallBack()
{
    if (!m_whole)
        return;
    const quint64 id = m_whole->id;
    m_whole.reset();
    takeVisible(id);
}

void WebPictures::giveUpLink()
{
    fallBack();
}

} // namespace Bralto
