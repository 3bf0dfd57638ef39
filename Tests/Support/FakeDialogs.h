#pragma once

#include "Base/Dialogs.h"

#include <QList>

namespace Bralto {

/// A user who answers what the test prepared, in order. Without a prepared answer an alert gets
/// its first button, and everything else is cancelled.
class FakeDialogs final : public Dialogs {
public:
    int show(const Alert& alert) override
    {
        alerts.append(alert);
        return choices.isEmpty() ? 0 : choices.takeFirst();
    }

    std::optional<QString> text(const TextPrompt& prompt) override
    {
        prompts.append(prompt);
        return texts.isEmpty() ? std::nullopt : texts.takeFirst();
    }

    std::optional<QString> openFileOrFolder() override
    {
        ++openPanels;
        return paths.isEmpty() ? std::nullopt : paths.takeFirst();
    }

    QList<int> choices; ///< Answers to come: indices of buttons.
    QList<std::optional<QString>> texts;
    QList<std::optional<QString>> paths;

    QList<Alert> alerts; ///< What was asked, oldest first.
    QList<TextPrompt> prompts;
    int openPanels = 0;
};

} // namespace Bralto
