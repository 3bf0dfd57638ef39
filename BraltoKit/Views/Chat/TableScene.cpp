#include "Views/Chat/TableScene.h"

#include <QRegularExpression>

#include <numeric>

namespace Bralto::TableScene {

namespace {

constexpr double CellSide = 12;
constexpr double CellTop = 5;
constexpr double HeadTop = 6;

/// Where columns are many, their sides shrink so far, and what doesn't fit even then is left out.
constexpr double NarrowestSide = 2;
constexpr double NarrowestText = 16;

/// Rows beyond the widest screen's worth of columns are not shown; no table of words has more.
constexpr qsizetype MostColumns = 40;

QString cell(const QStringList& row, qsizetype column)
{
    return column < row.size() ? row[column] : QString();
}

class TableDrawing {
public:
    TableDrawing(ChatCanvas& canvas, const MarkdownBlocks::Table& table, const QColor& ink)
        : m_canvas(canvas)
        , m_table(table)
        , m_ink(ink)
        , m_columns(std::min(table.header.size(), MostColumns))
    {
    }

    double draw(const QPointF& at, double width)
    {
        share(width);
        measure(width);
        ChatCanvas inner(m_canvas.style());
        const double head = drawRow(inner, m_table.header, at, TextRole::SecondaryStrong,
                                    m_canvas.tokens().ink2, HeadTop);
        double top = head;
        std::vector<double> lines{head};
        for (const QStringList& row : m_table.rows) {
            top += drawRow(inner, row, at + QPointF(0, top), TextRole::Body, m_ink, CellTop);
            lines.push_back(top);
        }
        lines.pop_back();
        drawGround({at, QSizeF(width, top)}, head, lines);
        m_canvas.add(inner.take(top));
        return top;
    }

private:
    void share(double width)
    {
        const double narrowest = m_canvas.u(2 * NarrowestSide + NarrowestText);
        m_columns = std::min(m_columns, std::max<qsizetype>(1, qsizetype(width / narrowest)));
        const double text = width / double(m_columns) - m_canvas.u(NarrowestText);
        m_side = std::clamp(text / 2, m_canvas.u(NarrowestSide), m_canvas.u(CellSide));
    }

    void measure(double width)
    {
        std::vector<double> wanted;
        for (qsizetype column = 0; column < m_columns; ++column) {
            double widest = natural(cell(m_table.header, column), TextRole::SecondaryStrong);
            for (const QStringList& row : m_table.rows)
                widest = std::max(widest, natural(cell(row, column), TextRole::Body));
            wanted.push_back(widest + 2 * m_side);
            m_isNumeric.push_back(isNumeric(m_table, column));
        }
        m_widths = columnWidths(std::move(wanted), width);
    }

    double natural(const QString& text, TextRole role) const
    {
        return m_canvas.naturalWidth(m_canvas.styled(ChatInline::runs(text), role, m_ink));
    }

    double drawRow(ChatCanvas& canvas, const QStringList& row, const QPointF& at, TextRole role,
                   const QColor& ink, double padding)
    {
        double height = canvas.lineHeight(role);
        double left = m_side;
        for (qsizetype column = 0; column < m_columns; ++column) {
            const double space = m_widths[std::size_t(column)] - 2 * m_side;
            ChatText text = canvas.styled(ChatInline::runs(cell(row, column)), role, ink);
            text.separator = column == 0 ? QStringLiteral("\n") : QStringLiteral("\t");
            double indent = 0;
            if (m_isNumeric[std::size_t(column)])
                indent = std::max(0.0, space - canvas.naturalWidth(text));
            height =
                std::max(height, canvas.text(text, at + QPointF(left + indent, canvas.u(padding)),
                                             space - indent + 1));
            left += m_widths[std::size_t(column)];
        }
        return height + 2 * canvas.u(padding);
    }

    void drawGround(const QRectF& frame, double head, const std::vector<double>& lines)
    {
        const Tokens& tokens = m_canvas.tokens();
        const double radius = m_canvas.u(Measure::PaneRadius);
        // The head's fill has the frame's upper corners only.
        m_canvas.fillTop({frame.topLeft(), QSizeF(frame.width(), head)}, radius, tokens.hover);
        for (const double line : lines) {
            m_canvas.fill({frame.left() + 1, frame.top() + line - 1, frame.width() - 2, 1}, 0,
                          tokens.separatorFaint);
        }
        m_canvas.fill(frame, radius, {}, tokens.separator);
    }

    ChatCanvas& m_canvas;
    const MarkdownBlocks::Table& m_table;
    QColor m_ink;
    qsizetype m_columns;
    double m_side = 0; ///< The room at the left and right of a cell's text.
    std::vector<double> m_widths;
    std::vector<bool> m_isNumeric;
};

} // namespace

std::vector<double> columnWidths(std::vector<double> wanted, double available)
{
    if (wanted.empty())
        return wanted;
    const double sum = std::accumulate(wanted.begin(), wanted.end(), 0.0);
    if (sum <= available) {
        for (double& width : wanted)
            width *= available / sum;
        return wanted;
    }
    // Columns below an equal share of what is left keep their width, the others divide the rest.
    double left = available;
    auto open = double(wanted.size());
    std::vector<bool> isSettled(wanted.size(), false);
    for (bool changed = true; changed && open > 0;) {
        changed = false;
        const double share = left / open;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (isSettled[i] || wanted[i] > share)
                continue;
            isSettled[i] = true;
            left -= wanted[i];
            open -= 1;
            changed = true;
        }
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!isSettled[i])
            wanted[i] = left / open;
    }
    return wanted;
}

bool isNumeric(const MarkdownBlocks::Table& table, qsizetype column)
{
    static const QRegularExpression number(
        QStringLiteral("^[-+±−~≈<>≤≥$€£]{0,2}\\d[\\d.,  ]*( ?[%a-zA-Zµ°/]{1,4})?$"));
    bool hasNumber = false;
    for (const QStringList& row : table.rows) {
        const QString text = cell(row, column);
        if (text.isEmpty())
            continue;
        if (!number.match(text).hasMatch())
            return false;
        hasNumber = true;
    }
    return hasNumber;
}

double draw(ChatCanvas& canvas, const MarkdownBlocks::Table& table, const QPointF& at, double width,
            const QColor& ink)
{
    return TableDrawing(canvas, table, ink).draw(at, width);
}

} // namespace Bralto::TableScene
