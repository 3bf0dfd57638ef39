#pragma once

#include "Chat/ChatTranscript.h"

#include <QByteArray>

namespace Bralto {

class JsonWriter;

namespace ChatJson {

/// A transcript as indented JSON text for people and for tests: `messages` with their blocks,
/// `subagents`, and what is known of `status`. What is absent has no key. A picture's bytes are
/// told by their number and their SHA-256.
[[nodiscard]] QByteArray encode(const ChatTranscript& transcript);

/// The parts of it, each one an object.
void write(JsonWriter& writer, const ChatMessage& message);
void write(JsonWriter& writer, const ChatSubagent& agent);
void write(JsonWriter& writer, const ChatSessionInfo& status);

} // namespace ChatJson

} // namespace Bralto
