#pragma once

#include "DemoAgent/Turn.h"

namespace DemoAgent::Behaviours {

/// Answers one prompt within a turn, by its first word. A text that means nothing to the agent is
/// answered with a description of the folder.
[[nodiscard]] Task<> answer(Turn& turn, Prompt prompt);

// One function a behaviour. `words` is what stands behind the prompt's first word, trimmed.
[[nodiscard]] Task<> greet(Turn& turn, Prompt prompt);
[[nodiscard]] Task<> readFile(Turn& turn, QString words);
[[nodiscard]] Task<> writeFile(Turn& turn, QString words);
[[nodiscard]] Task<> editFile(Turn& turn, QString words);
[[nodiscard]] Task<> runCommand(Turn& turn, QString words);
[[nodiscard]] Task<> askQuestions(Turn& turn, QString words);
[[nodiscard]] Task<> think(Turn& turn, QString words);
[[nodiscard]] Task<> plan(Turn& turn, QString words);
[[nodiscard]] Task<> count(Turn& turn, QString words);
[[nodiscard]] Task<> runForegroundAgent(Turn& turn, QString words);
[[nodiscard]] Task<> runBackgroundAgent(Turn& turn, QString words);
[[nodiscard]] Task<> search(Turn& turn, QString words);
[[nodiscard]] Task<> keepTodos(Turn& turn, QString words);
[[nodiscard]] Task<> showImage(Turn& turn, QString words);
[[nodiscard]] Task<> tellLimits(Turn& turn, QString words);
[[nodiscard]] Task<> remember(Turn& turn, QString words);
[[nodiscard]] Task<> slashCommand(Turn& turn, QString name);

} // namespace DemoAgent::Behaviours
