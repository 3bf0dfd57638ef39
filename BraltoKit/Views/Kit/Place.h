#pragma once

#include "Views/Kit/ThemedWidget.h"

class QHBoxLayout;
class QVBoxLayout;

namespace Bralto {

class TextButton;

/// A place with nothing in it yet: a symbol, what the place is for, and the next step as buttons,
/// in the middle of the room that it has.
class Place final : public ThemedWidget {
    Q_OBJECT

public:
    Place(Theme& theme, QWidget* parent = nullptr);

    void setSymbol(const QString& symbol);
    /// Any picture instead of a symbol; belongs to the place from now on.
    void setPicture(QWidget* picture);
    /// `role` is `Heading` for a place that fills a window, `CardTitle` for a smaller one.
    void setTitle(const QString& title, TextRole role = TextRole::Heading);
    void setText(const QString& text);
    void addButton(TextButton* button);
    /// Something below the buttons, for example a list.
    void addBelow(QWidget* widget);

private:
    QVBoxLayout* m_column;
    QWidget* m_picture = nullptr;
    class Label* m_title;
    class Label* m_text;
    QWidget* m_buttons;
    QHBoxLayout* m_buttonRow;
};

} // namespace Bralto
