#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// The pill at the lower right of a document: where the cursor is, and what the file is.
class StatusPill final : public ThemedWidget {
    Q_OBJECT

public:
    struct Content {
        QString problem; ///< Why the text is not saved; empty if nothing is wrong.
        int line = 1;
        int column = 1;
        int words = -1; ///< Negative for code.
        QString language;

        bool operator==(const Content&) const = default;
    };

    explicit StatusPill(Theme& theme, QWidget* parent = nullptr);

    void setContent(const Content& content);
    /// The words from left to right.
    [[nodiscard]] static QStringList parts(const Content& content);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Content m_content;
};

} // namespace Bralto
