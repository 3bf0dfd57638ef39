// Keys, mouse events and pasted text: whatever they hold, what is sent is well formed.

#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"
#include "Kovalt/Mouse/MouseEncoder.h"
#include "Kovalt/Paste.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

using namespace Kovalt;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void encodeKey(FuzzedDataProvider& input)
{
    KittyKeyEvent event;
    const auto kind = input.ConsumeIntegralInRange(0, 2);
    if (kind == 1)
        event.key = KittyKey::unicode(input.ConsumeIntegral<std::uint32_t>());
    else if (kind == 2)
        event.key = KittyKey::functional(
            static_cast<KittyFunctionalKey>(input.ConsumeIntegralInRange<unsigned>(0, 110)));
    event.modifiers = KittyKeyboardModifiers::of(input.ConsumeIntegral<std::uint8_t>());
    event.eventType =
        static_cast<KittyKeyboardEventType>(input.ConsumeIntegralInRange<unsigned>(0, 2));
    event.composing = input.ConsumeBool();
    if (input.ConsumeBool())
        event.shiftedKey = input.ConsumeIntegral<std::uint32_t>();
    if (input.ConsumeBool())
        event.baseLayoutKey = input.ConsumeIntegral<std::uint32_t>();
    const auto flags = KittyKeyboardFlags::of(input.ConsumeIntegralInRange<unsigned>(0, 31));
    const KeyboardOptions options{input.ConsumeBool(), input.ConsumeBool(), input.ConsumeBool()};
    if (input.ConsumeBool())
        event.text = input.ConsumeRandomLengthString();

    const auto bytes = KittyKeyboardEncoder::encode(flags, event, options);
    require(!bytes || !bytes->empty());
    const auto isText = event.text && bytes && bytes->ends_with(*event.text);
    // Beside text and single keys everything is a sequence: digits, separators and one final byte.
    if (bytes && bytes->starts_with("\x1b[") && !isText) {
        const auto body = std::string_view(*bytes).substr(2);
        const auto end = body.find_first_not_of("0123456789;:");
        require(end == body.size() - 1);
    }
    if (event.eventType == KittyKeyboardEventType::Release)
        require(!bytes || flags.hasAny(KittyKeyboardFlags::ReportEvents));
}

void encodeMouse(FuzzedDataProvider& input)
{
    const auto mode = static_cast<MouseMode>(input.ConsumeIntegralInRange<unsigned>(0, 4));
    const auto encoding =
        static_cast<MouseProtocolEncoding>(input.ConsumeIntegralInRange<unsigned>(0, 4));
    const auto coordinate = [&] { return input.ConsumeIntegralInRange(-100000, 1000000); };
    const auto flags =
        MouseEncoder::encodeButton(mode, input.ConsumeIntegral<int>(), input.ConsumeBool(),
                                   {input.ConsumeBool(), input.ConsumeBool(), input.ConsumeBool()});
    const MouseEvent event{flags, coordinate(), coordinate(), coordinate(), coordinate()};

    const auto bytes = input.ConsumeBool()
                           ? MouseEncoder::encodeEvent(encoding, ControlForm::SevenBit, event)
                           : MouseEncoder::encodeMotion(encoding, ControlForm::EightBit, event);
    require(bytes.starts_with("\x1b[") || bytes.starts_with("\x9b"));
}

void encodePastedText(FuzzedDataProvider& input)
{
    const auto bytes = encodePaste(input.ConsumeRemainingBytesAsString(), BracketedPaste::On);
    // The only end of the paste is the one behind it.
    require(bytes.find("\x1b[201~") == bytes.size() - 6);
    require(bytes.find('\n') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    encodeKey(input);
    encodeMouse(input);
    encodePastedText(input);
    return 0;
}
