#pragma once

#include "Views/Chat/ChatScene.h"
#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// A piece of text in a card: a command on its own ground, or Markdown. It is as high as it needs
/// to be up to a limit, and scrolls from there on.
class SceneView final : public ThemedWidget {
    Q_OBJECT

public:
    SceneView(Theme& theme, QWidget* parent);

    void setFolder(const QString& folder) { m_folder = folder; }
    void setCommand(const QString& text);
    void setMarkdown(const QString& text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void applyTheme() override;

private:
    [[nodiscard]] ChatScene build(double width) const;
    void set(const QString& text, bool isMarkdown);
    void rebuild();

    QString m_folder;
    QString m_text;
    bool m_isMarkdown = false;
    ChatScene m_scene;
    double m_offset = 0; ///< How far the text is scrolled.
};

} // namespace Bralto
