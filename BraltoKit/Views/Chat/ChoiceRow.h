#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// One answer that can be picked: a mark, words, and the key that picks it.
class ChoiceRow final : public Control {
    Q_OBJECT

public:
    /// One of several excludes the others, any of several doesn't, a plain one is only words.
    enum class Mark { One, Any, Pencil };

    struct Content {
        Mark mark = Mark::One;
        QString label;
        QString detail;
        QString keyCap; ///< Empty for none.
        bool isPicked = false;
        bool isHighlighted = false;
    };

    ChoiceRow(Theme& theme, Content content, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintMark(QPainter& painter, const QRectF& rect) const;

    Content m_content;
};

} // namespace Bralto
