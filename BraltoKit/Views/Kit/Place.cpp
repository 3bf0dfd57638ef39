#include "Views/Kit/Place.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace Bralto {
namespace {

constexpr int WidestText = 420;

/// A symbol in the third ink.
class Symbol final : public ThemedWidget {
public:
    Symbol(Theme& theme, const QString& name, QWidget* parent)
        : ThemedWidget(theme, parent)
        , m_name(name)
    {
        setFixedSize(Measure::PlaceIcon, Measure::PlaceIcon);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        Icon::draw(painter, rect(), m_name, tokens().ink2);
    }

private:
    QString m_name;
};

} // namespace

Place::Place(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_column(new QVBoxLayout(this))
    , m_title(new Label(theme, TextRole::Heading, &Tokens::label, {}, this))
    , m_text(new Label(theme, TextRole::Body, &Tokens::ink2, {}, this))
    , m_buttons(new QWidget(this))
    , m_buttonRow(new QHBoxLayout(m_buttons))
{
    m_column->setContentsMargins(Measure::Space6, Measure::Space6, Measure::Space6,
                                 Measure::Space6);
    m_column->setSpacing(0);
    m_column->addStretch(1);
    m_column->addWidget(m_title, 0, Qt::AlignHCenter);
    m_column->addSpacing(Measure::Space1);
    m_column->addWidget(m_text, 0, Qt::AlignHCenter);
    m_column->addSpacing(Measure::Space4 + 2);
    m_buttonRow->setContentsMargins(0, 0, 0, 0);
    m_buttonRow->setSpacing(Measure::Space2);
    m_column->addWidget(m_buttons, 0, Qt::AlignHCenter);
    m_column->addStretch(1);
    m_title->setAlignment(Qt::AlignCenter);
    m_text->setAlignment(Qt::AlignCenter);
    m_title->setWordWrap(false);
    m_text->setMaximumWidth(WidestText);
    m_title->hide();
    m_text->hide();
    m_buttons->hide();
}

void Place::setSymbol(const QString& symbol)
{
    setPicture(new Symbol(theme(), symbol, this));
}

void Place::setPicture(QWidget* picture)
{
    delete m_picture;
    m_picture = picture;
    m_column->insertWidget(1, picture, 0, Qt::AlignHCenter);
    m_column->insertSpacing(2, Measure::Space4);
}

void Place::setTitle(const QString& title, TextRole role)
{
    m_title->setFont(Bralto::font(role));
    m_title->setText(title);
    m_title->show();
}

void Place::setText(const QString& text)
{
    m_text->setText(text);
    m_text->setWordWrap(m_text->sizeHint().width() > WidestText);
    m_text->setVisible(!text.isEmpty());
}

void Place::addButton(TextButton* button)
{
    m_buttonRow->addWidget(button);
    m_buttons->show();
}

void Place::addBelow(QWidget* widget)
{
    m_column->insertSpacing(m_column->count() - 1, Measure::Space4);
    m_column->insertWidget(m_column->count() - 1, widget, 0, Qt::AlignHCenter);
}

} // namespace Bralto
