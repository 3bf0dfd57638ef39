#pragma once

#include "Base/Failure.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Bralto {

/// A question with one or two buttons.
struct Alert {
    QString title;
    QString text;
    QStringList buttons = {QStringLiteral("OK")}; ///< One or two, in the order of the rules.
    bool lastIsDestructive = false;

    bool operator==(const Alert&) const = default;
};

/// A request for a line of text.
struct TextPrompt {
    QString title;
    QString message;
    QString placeholder;
    /// With some, the first button reads "Rename" instead of "Create", and the name without its
    /// extension is selected.
    QString initial;

    bool operator==(const TextPrompt&) const = default;
};

/// What a model asks the user. Everything here is modal: it returns when the user has chosen.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// The index of the chosen button; closing the alert any other way is the first one.
    virtual int show(const Alert& alert) = 0;

    /// The text, trimmed of white space; nothing if it was empty or the user cancelled.
    virtual std::optional<QString> text(const TextPrompt& prompt) = 0;

    /// An existing file or folder that the user picked, or nothing.
    virtual std::optional<QString> openFileOrFolder() = 0;

    /// An alert for a failure, with the one button "OK".
    void report(const Failure& failure) { show({failure.title, failure.text}); }
};

} // namespace Bralto
