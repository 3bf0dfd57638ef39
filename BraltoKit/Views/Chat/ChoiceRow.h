#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// One answer that can be picked: a mark, words, and the key that picks it. Long words wrap, since
/// nobody can choose what can't be read.
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
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRectF words(int width) const;
    [[nodiscard]] int wrapped(TextRole role, const QString& text, int width) const;
    void paintMark(QPainter& painter, const QRectF& rect) const;

    Content m_content;
};

} // namespace Bralto
