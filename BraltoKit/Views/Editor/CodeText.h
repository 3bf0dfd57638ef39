#pragma once

#include "Views/Editor/RowPieces.h"
#include "Views/Editor/TextRows.h"
#include "Views/Kit/Theme.h"

#include <QAbstractScrollArea>

namespace Bralto {

/// A text in the code face that is read, not written: line numbers, the current line, a selection
/// by pointer and keys, and copying. Lines wrap. It lays out what is in view and nothing else, so
/// that a file of many megabytes opens at once.
class CodeText final : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit CodeText(Theme& theme, QWidget* parent = nullptr);

    /// Shows `text`; the cursor stays where it is, as far as the text goes.
    void setText(const QString& text);
    [[nodiscard]] const QString& text() const { return m_rows.text(); }
    [[nodiscard]] TextRows::Place cursor() const { return m_cursor; }
    void setCursor(TextRows::Place place);
    /// A factor for all sizes.
    void setZoom(double zoom);
    [[nodiscard]] QString selectedText() const;
    void selectAll();
    void copy() const;

signals:
    void cursorChanged(Bralto::TextRows::Place place);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    enum class Anchor { Follows, Stays };

    void layOut();
    void updateRange();
    void moveTo(TextRows::Place place, Anchor anchor);
    void moveByRows(int rows, Anchor anchor);
    bool moveByKey(QKeyEvent& event);
    void reveal(TextRows::Place place);
    void paintGutter(QPainter& painter, const TextRows::Row& row, const QRectF& band) const;
    void paintRow(QPainter& painter, const TextRows::Row& row, const QRectF& band) const;
    void paintSelection(QPainter& painter, const TextRows::Row& row,
                        const std::vector<RowPiece>& pieces, const QRectF& band) const;
    [[nodiscard]] TextRows::Place placeAt(const QPoint& point) const;
    [[nodiscard]] int textLeft() const;
    [[nodiscard]] double columnWidth() const;
    [[nodiscard]] int rowHeight() const;

    Theme& m_theme;
    TextRows m_rows;
    TextRows::Place m_cursor;
    TextRows::Place m_anchor;
    double m_zoom = 1;
    int m_wantedColumn = -1; ///< What up and down aim at; negative while there is none.
};

} // namespace Bralto
