#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// The list that floats above the composer: commands, or files to mention.
class ChatList final : public ThemedWidget {
    Q_OBJECT

public:
    struct Row {
        QString symbol;
        QString name;
        QString hint;   ///< Behind the name, quiet.
        QString detail; ///< At the right, or behind the name if `detailFollows`.
        bool detailFollows = false;

        bool operator==(const Row&) const = default;
    };

    static constexpr int MostVisible = 9;

    ChatList(Theme& theme, const QString& name, QWidget* parent);

    /// Rows of `rowHeight` units; `highlight` is brought into view.
    void setRows(QList<Row> rows, qsizetype highlight, int rowHeight);

    [[nodiscard]] QSize sizeHint() const override;

signals:
    void picked(qsizetype row);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] qsizetype visible() const
    {
        return std::min<qsizetype>(m_rows.size(), MostVisible);
    }

    QList<Row> m_rows;
    qsizetype m_highlight = 0;
    qsizetype m_first = 0; ///< The topmost row in view.
    int m_rowHeight = 30;
};

} // namespace Bralto
