#pragma once

#include "Base/Expected.h"
#include "Base/Json.h"

#include <QMap>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <variant>

namespace Bralto {

/// What one line of the standard input asks a live conversation to do.
namespace LiveCommands {

struct Send {
    QString text;
};
struct Respond {
    bool allow = false;
};
struct Answer {
    QMap<QString, QString> answers; ///< Question to label or labels.
};
struct Interrupt {};
struct SetModel {
    QString value;
};
struct SetEffort {
    QString level;
};
struct SetMode {
    QString mode;
};
struct SetRemoteControl {
    bool on = false;
};
struct Control {
    QString subtype;
    QVariantMap fields;
};
struct Switch {
    std::optional<QString> sessionId;
};
struct Stop {};
struct Quit {};

} // namespace LiveCommands

using LiveCommand =
    std::variant<LiveCommands::Send, LiveCommands::Respond, LiveCommands::Answer,
                 LiveCommands::Interrupt, LiveCommands::SetModel, LiveCommands::SetEffort,
                 LiveCommands::SetMode, LiveCommands::SetRemoteControl, LiveCommands::Control,
                 LiveCommands::Switch, LiveCommands::Stop, LiveCommands::Quit>;

/// The forms of all commands, for a help text.
[[nodiscard]] const char* liveCommandHelp();

/// The command in `line`, or what is wrong with it.
[[nodiscard]] Expected<LiveCommand, QString> decodeLiveCommand(const JsonObject& line);

} // namespace Bralto
