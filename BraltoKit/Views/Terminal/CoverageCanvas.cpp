#include "Views/Terminal/CoverageCanvas.h"

#include <QImage>
#include <QPainter>
#include <QPainterPathStroker>

#include <algorithm>

namespace Bralto {

CoverageCanvas::CoverageCanvas(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_bytes(std::size_t(width) * std::size_t(height))
{
}

void CoverageCanvas::fill(int left, int top, int right, int bottom, std::uint8_t coverage)
{
    left = std::clamp(left, 0, m_width);
    right = std::clamp(right, left, m_width);
    bottom = std::min(bottom, m_height);
    for (int y = std::max(top, 0); y < bottom; ++y) {
        const auto row = m_bytes.begin() + std::ptrdiff_t(y) * m_width;
        std::fill(row + left, row + right, coverage);
    }
}

void CoverageCanvas::fill(const QPainterPath& path)
{
    QImage image(m_width, m_height, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::white);
    painter.end();
    for (int y = 0; y < m_height; ++y) {
        const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        std::uint8_t* const row = m_bytes.data() + std::ptrdiff_t(y) * m_width;
        for (int x = 0; x < m_width; ++x)
            row[x] = std::max(row[x], std::uint8_t(qGreen(pixels[x])));
    }
}

void CoverageCanvas::stroke(const QPainterPath& path, double thickness)
{
    QPainterPathStroker stroker;
    stroker.setWidth(thickness);
    stroker.setCapStyle(Qt::FlatCap);
    stroker.setJoinStyle(Qt::MiterJoin);
    fill(stroker.createStroke(path));
}

std::vector<std::uint8_t> CoverageCanvas::rows(int top, int count) const
{
    const auto first = m_bytes.begin() + std::ptrdiff_t(std::clamp(top, 0, m_height)) * m_width;
    const int taken = std::min(count, m_height - std::clamp(top, 0, m_height));
    return {first, first + std::ptrdiff_t(taken) * m_width};
}

} // namespace Bralto
