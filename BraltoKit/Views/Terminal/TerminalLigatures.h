#pragma once

#include "Kovalt/CharData.h"

#include <QFont>
#include <QRawFont>
#include <QString>

#include <span>
#include <string>

/// Signs that a font for programs draws as one: "->", "!=", "...".
namespace Bralto::TerminalLigatures {

/// Longer runs of signs are looked at in parts.
inline constexpr std::size_t Longest = 16;

/// The signs at the beginning of the cells that look alike and could be drawn as one; empty if
/// there are less than two.
[[nodiscard]] std::string signsAt(std::span<const Kovalt::CharData> cells);
/// Whether the font draws them together in another way than one by one.
[[nodiscard]] bool joins(const QFont& font, const QRawFont& raw, const QString& signs);

} // namespace Bralto::TerminalLigatures
