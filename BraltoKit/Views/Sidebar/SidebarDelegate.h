#pragma once

#include "Views/Kit/Theme.h"

#include <QStyledItemDelegate>

namespace Bralto {

class SidebarModel;

/// Paints the rows of the sidebar.
class SidebarDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    SidebarDelegate(Theme& theme, const SidebarModel& model, QObject* parent);

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    /// A factor for all sizes.
    void setZoom(double zoom) { m_zoom = zoom; }
    /// Whether the row that has the keyboard shows it: only for those who use the keyboard.
    void setFocusShown(bool shown) { m_isFocusShown = shown; }
    /// Where the close button of an open row lies.
    [[nodiscard]] QRect closeButton(const QRect& row) const;

private:
    struct Paint;
    [[nodiscard]] int rowHeight(const QModelIndex& index) const;
    void paintWords(const Paint& paint) const;
    void paintOpenTab(const Paint& paint) const;
    void paintNode(const Paint& paint) const;

    Theme& m_theme;
    const SidebarModel& m_model;
    double m_zoom = 1;
    bool m_isFocusShown = false;
};

} // namespace Bralto
