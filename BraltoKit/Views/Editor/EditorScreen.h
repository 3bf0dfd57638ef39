#pragma once

#include "Views/Editor/StatusPill.h"
#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

class CodeText;
class ProseText;

/// A document that fills a pane: its text with the status pill, or why it can't be shown.
class EditorScreen final : public ThemedWidget {
    Q_OBJECT

public:
    EditorScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent);

    /// Null while the document can't be shown as code, or as prose.
    [[nodiscard]] CodeText* code() const { return m_code; }
    [[nodiscard]] ProseText* prose() const { return m_prose; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void rebuild();
    void buildRefusal(const QString& message);
    void buildCode();
    void buildProse();
    void showText();
    void showCursor();
    void showPill();
    void applyZoom();
    void place();
    [[nodiscard]] EditorDocument& document() const { return *m_tab.document(); }

    ViewServices m_services;
    WorkspaceTab m_tab; ///< Keeps the document while this view shows it.
    QWidget* m_body = nullptr;
    CodeText* m_code = nullptr;
    ProseText* m_prose = nullptr;
    StatusPill* m_pill;
};

} // namespace Bralto
