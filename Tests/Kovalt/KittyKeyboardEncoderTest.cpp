#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

using namespace Kovalt;
using Key = KittyFunctionalKey;
using Flags = KittyKeyboardFlags;
using Modifiers = KittyKeyboardModifiers;
using Type = KittyKeyboardEventType;
using Sent = std::optional<std::string>;

namespace {

KittyKeyEvent pressOf(KittyKey key, Modifiers modifiers = {}, Sent text = {})
{
    KittyKeyEvent event;
    event.key = key;
    event.modifiers = modifiers;
    event.text = std::move(text);
    return event;
}

KittyKeyEvent pressOf(Key key, Modifiers modifiers = {}, Sent text = {})
{
    return pressOf(KittyKey::functional(key), modifiers, std::move(text));
}

KittyKeyEvent pressOf(char32_t key, Modifiers modifiers = {}, Sent text = {})
{
    return pressOf(KittyKey::unicode(key), modifiers, std::move(text));
}

KittyKeyEvent as(Type type, KittyKeyEvent event)
{
    event.eventType = type;
    return event;
}

Sent sent(Flags flags, const KittyKeyEvent& event, const KeyboardOptions& options = {})
{
    return KittyKeyboardEncoder::encode(flags, event, options);
}

Sent legacy(const KittyKeyEvent& event, const KeyboardOptions& options = {})
{
    return sent({}, event, options);
}

} // namespace

// Edge cases

TEST(KittyKeyboardEncoder, WithoutFlagsHighFunctionKeysAreLowOnesUnderModifiers)
{
    EXPECT_EQ(legacy(pressOf(Key::F13)), "\x1b[1;2P");
    EXPECT_EQ(legacy(pressOf(Key::F13)), legacy(pressOf(Key::F1, Modifiers::Shift)));
    EXPECT_EQ(legacy(pressOf(Key::F35)), "\x1b[23;5~");
    EXPECT_EQ(legacy(pressOf(Key::F35)), legacy(pressOf(Key::F11, Modifiers::Ctrl)));
    EXPECT_EQ(legacy(pressOf(Key::F13, Modifiers::Shift)), std::nullopt);
}

TEST(KittyKeyboardEncoder, DisambiguationLeavesPlainTextAndEscapesChords)
{
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(U'a', {}, "a")), "a");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(U'a', Modifiers::Alt, "a")), "\x1b[97;3u");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(U'a', Modifiers::Ctrl)), "\x1b[97;5u");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(U'a', Modifiers::Shift, "A")), "A");
}

TEST(KittyKeyboardEncoder, ReleasesOfTheEditingKeysAreSilentUnlessAllKeysAreReported)
{
    for (const auto key : {Key::Enter, Key::Tab, Key::Backspace}) {
        const auto release = as(Type::Release, pressOf(key));
        EXPECT_EQ(sent(Flags::ReportEvents, release), std::nullopt);
        EXPECT_EQ(sent(Flags::ReportEvents | Flags::Disambiguate, release), std::nullopt);
        EXPECT_EQ(sent(Flags::ReportAllKeys, release), std::nullopt);
    }
    EXPECT_EQ(
        sent(Flags::ReportEvents | Flags::ReportAllKeys, as(Type::Release, pressOf(Key::Enter))),
        "\x1b[13;1:3u");
}

TEST(KittyKeyboardEncoder, CapsLockIsAModifierAsSoonAsAnyFlagIsSet)
{
    EXPECT_EQ(legacy(pressOf(Key::Up, Modifiers::CapsLock)), "\x1b[A");
    EXPECT_EQ(legacy(pressOf(Key::F5, Modifiers::CapsLock | Modifiers::NumLock)), "\x1b[15~");
    EXPECT_EQ(legacy(pressOf(U'a', Modifiers::CapsLock)), "a");
    for (const auto flags : {Flags::Disambiguate, Flags::ReportEvents, Flags::ReportAlternates,
                             Flags::ReportAllKeys, Flags::ReportText}) {
        EXPECT_EQ(sent(flags, pressOf(Key::Up, Modifiers::CapsLock)), "\x1b[1;65A");
        EXPECT_EQ(sent(flags, pressOf(Key::Menu, Modifiers::CapsLock)), "\x1b[57363;65u");
    }
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::Enter, Modifiers::NumLock)), "\x1b[13;129u");
}

// The protocol as it is published

TEST(KittyKeyboardEncoder, PublishedExamplesComeOutAsTheyArePrinted)
{
    const auto everything = Flags::All;
    auto shiftA = pressOf(U'a', Modifiers::Shift, "A");
    shiftA.shiftedKey = U'A';
    auto controlShiftA = pressOf(U'a', Modifiers::Ctrl | Modifiers::Shift);
    controlShiftA.shiftedKey = U'A';
    auto cyrillic = pressOf(U'с', Modifiers::Ctrl);
    cyrillic.baseLayoutKey = U'c';
    auto shiftedCyrillic = pressOf(U'с', Modifiers::Shift | Modifiers::Ctrl);
    shiftedCyrillic.shiftedKey = U'С';
    shiftedCyrillic.baseLayoutKey = U'c';

    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::Escape)), "\x1b[27u");
    EXPECT_EQ(sent(Flags::Disambiguate, controlShiftA), "\x1b[97;6u");
    EXPECT_EQ(sent(Flags::Disambiguate | Flags::ReportAlternates, controlShiftA), "\x1b[97:65;6u");
    EXPECT_EQ(sent(Flags::Disambiguate | Flags::ReportAlternates, cyrillic), "\x1b[1089::99;5u");
    EXPECT_EQ(sent(Flags::Disambiguate | Flags::ReportAlternates, shiftedCyrillic),
              "\x1b[1089:1057:99;6u");
    EXPECT_EQ(sent(Flags::ReportAllKeys | Flags::ReportText, shiftA), "\x1b[97;2;65u");
    EXPECT_EQ(sent(everything, shiftA), "\x1b[97:65;2;65u");
    EXPECT_EQ(sent(everything, as(Type::RepeatPress, shiftA)), "\x1b[97:65;2:2;65u");
    EXPECT_EQ(sent(everything, as(Type::Release, shiftA)), "\x1b[97:65;2:3u");
    EXPECT_EQ(sent(Flags::ReportAllKeys | Flags::ReportText, pressOf(U'a', {}, "å")),
              "\x1b[97;;229u");
    EXPECT_EQ(sent(Flags::ReportAllKeys | Flags::ReportText, pressOf(KittyKey(), {}, "å🚀")),
              "\x1b[0;;229:128640u");
    EXPECT_EQ(sent(everything, pressOf(Key::LeftShift, Modifiers::Shift)), "\x1b[57441;2u");
    EXPECT_EQ(sent(everything, as(Type::Release, pressOf(Key::LeftShift))), "\x1b[57441;1:3u");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::F3)), "\x1b[13~");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::Tab, Modifiers::Shift)), "\x1b[9;2u");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::Enter)), "\r");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::Up)), "\x1b[A");
    EXPECT_EQ(sent(Flags::Disambiguate, pressOf(Key::KeypadEnter)), "\x1b[57414u");
}

TEST(KittyKeyboardEncoder, AnAbsentShiftedKeyLeavesItsFieldEmpty)
{
    auto event = pressOf(U'a', Modifiers::Shift);
    event.baseLayoutKey = U'q';
    EXPECT_EQ(sent(Flags::Disambiguate | Flags::ReportAlternates, event), "\x1b[97::113;2u");

    event.modifiers = Modifiers::Ctrl;
    event.shiftedKey = U'A';
    EXPECT_EQ(sent(Flags::Disambiguate | Flags::ReportAlternates, event), "\x1b[97::113;5u");
}

TEST(KittyKeyboardEncoder, TextIsToldWithoutControlsAndWithoutChords)
{
    const auto flags = Flags::ReportAllKeys | Flags::ReportText;

    EXPECT_EQ(sent(flags, pressOf(U'a', {}, "\x01x\x7f\xc2\x85y")), "\x1b[97;;120:121u");
    EXPECT_EQ(sent(flags, pressOf(U'a', {}, "\r")), "\x1b[97u");
    EXPECT_EQ(sent(flags, pressOf(U'a', Modifiers::CapsLock, "A")), "\x1b[97;65;65u");
    for (const auto modifier :
         {Modifiers::Alt, Modifiers::Ctrl, Modifiers::Super, Modifiers::Hyper, Modifiers::Meta}) {
        EXPECT_EQ(sent(flags, pressOf(U'a', modifier, "a")),
                  "\x1b[97;" + std::to_string(modifier.bits() + 1) + "u");
    }
    EXPECT_EQ(sent(flags, pressOf(Key::Keypad5, {}, "5")), "\x1b[57404;;53u");
    EXPECT_EQ(sent(flags, pressOf(Key::Escape, {}, "x")), "\x1b[27u");
}

// Text and input methods

TEST(KittyKeyboardEncoder, TextOfAReleaseIsNotSentAgain)
{
    EXPECT_EQ(sent(Flags::ReportEvents, as(Type::Release, pressOf(U'a', {}, "a"))), std::nullopt);
    EXPECT_EQ(sent(Flags::ReportEvents, as(Type::RepeatPress, pressOf(U'a', {}, "a"))), "a");
}

TEST(KittyKeyboardEncoder, AnInputMethodsTextComesThroughTheEnterKey)
{
    for (const auto flags : {Flags(), Flags::Disambiguate, Flags::All}) {
        EXPECT_EQ(sent(flags, pressOf(Key::Enter, {}, "日本")), "日本");
        EXPECT_EQ(sent(flags, pressOf(Key::Backspace, {}, "日本")), std::nullopt);
    }
    EXPECT_EQ(legacy(pressOf(Key::Enter, {}, "\r")), "\r");
}

TEST(KittyKeyboardEncoder, NothingIsSentWhileACharacterIsComposed)
{
    auto event = pressOf(U'a', {}, "a");
    event.composing = true;
    EXPECT_EQ(legacy(event), std::nullopt);
    EXPECT_EQ(sent(Flags::All, event), std::nullopt);

    auto shift = pressOf(Key::LeftShift);
    shift.composing = true;
    EXPECT_EQ(sent(Flags::Disambiguate, shift), std::nullopt);
    EXPECT_EQ(sent(Flags::ReportAllKeys, shift), "\x1b[57441u");
}

// Legacy text

TEST(KittyKeyboardEncoder, ControlMakesTheControlsOfTheTable)
{
    struct Row {
        char32_t key;
        std::string bytes;
    };
    const std::vector<Row> rows = {
        {U'a', "\x01"},
        {U'z', "\x1a"},
        {U'A', "\x01"},
        {U'[', "\x1b"},
        {U'3', "\x1b"},
        {U'\\', "\x1c"},
        {U'4', "\x1c"},
        {U']', "\x1d"},
        {U'5', "\x1d"},
        {U'^', "\x1e"},
        {U'6', "\x1e"},
        {U'~', "\x1e"},
        {U'_', "\x1f"},
        {U'/', "\x1f"},
        {U'7', "\x1f"},
        {U'?', "\x7f"},
        {U'8', "\x7f"},
        {U'0', "0"},
        {U'1', "1"},
        {U'9', "9"},
        {U' ', std::string(1, '\0')},
        {U'@', std::string(1, '\0')},
        {U'2', std::string(1, '\0')},
        {U';', ";"},
        {U'é', "é"},
    };
    for (const auto& [key, bytes] : rows) {
        EXPECT_EQ(legacy(pressOf(key, Modifiers::Ctrl)), bytes) << static_cast<unsigned>(key);
        EXPECT_EQ(legacy(pressOf(key, Modifiers::Ctrl | Modifiers::Alt)), "\x1b" + bytes);
    }
}

TEST(KittyKeyboardEncoder, LegacyTextTakesTheShiftedKeyAndEscapesAlt)
{
    auto event = pressOf(U'1', Modifiers::Shift);
    EXPECT_EQ(legacy(event), "1");
    event.shiftedKey = U'!';
    EXPECT_EQ(legacy(event), "!");
    event.modifiers = Modifiers::Shift | Modifiers::Alt;
    EXPECT_EQ(legacy(event), "\x1b!");
    EXPECT_EQ(legacy(pressOf(U'a', Modifiers::Alt)), "\x1b"
                                                     "a");
}

TEST(KittyKeyboardEncoder, WhatLegacyTextCantTellIsACsiSequence)
{
    EXPECT_EQ(legacy(pressOf(U'a', Modifiers::Super)), "\x1b[97;9u");
    EXPECT_EQ(legacy(pressOf(U'a', Modifiers::Shift | Modifiers::Ctrl)), "\x1b[97;6u");
    EXPECT_EQ(legacy(pressOf(char32_t{0xD800})), "\x1b[55296u");
    EXPECT_EQ(legacy(pressOf(char32_t{0xFFFFFFFF})), "\x1b[4294967295u");
    EXPECT_EQ(legacy(pressOf(KittyKey())), "\x1b[0u");
    EXPECT_EQ(sent(Flags::ReportEvents, as(Type::Release, pressOf(U'a'))), "\x1b[97;1:3u");
}

// Functional keys, all of them

namespace {

/// The wire forms in the order of the keys.
const std::vector<std::string>& wireForms()
{
    static const auto all = [] {
        std::vector<std::string> forms = {"27u", "13u", "9u",  "127u", "2~",  "3~",  "A",
                                          "B",   "D",   "C",   "H",    "F",   "5~",  "6~",
                                          "P",   "Q",   "13~", "S",    "15~", "17~", "18~",
                                          "19~", "20~", "21~", "23~",  "24~"};
        const auto count = [&](int first, int last) {
            for (int number = first; number <= last; ++number)
                forms.push_back(std::to_string(number) + "u");
        };
        count(57376, 57398); // F13 to F35
        count(57363, 57363); // menu
        count(57358, 57362); // the locks, print screen, pause
        count(57399, 57454); // keypad, media, modifiers
        return forms;
    }();
    return all;
}

bool isEditing(int key)
{
    return key >= 1 && key <= 3;
}

Sent legacySpecialBytes(int key, unsigned modifiers, const KeyboardOptions& options)
{
    const std::string alt = (modifiers & 2U) != 0 ? "\x1b" : "";
    if (key == 0)
        return alt + "\x1b";
    if (key == 1)
        return alt + "\r";
    if (key == 2)
        return alt + ((modifiers & 1U) != 0 ? "\x1b[Z" : "\t");
    const auto backspace = options.backspaceSendsBackspace || (modifiers & 4U) != 0;
    return alt + (backspace ? "\b" : "\x7f");
}

/// `CSI 1 ; m A`, `CSI 5 ; m ~`, and shorter without modifiers.
std::string chord(const std::string& form, unsigned modifier, const std::string& introducer)
{
    if (modifier == 1)
        return (form.back() == '~' ? "\x1b[" : introducer) + form;
    const auto number = form.back() == '~' ? form.substr(0, form.size() - 1) : "1";
    return "\x1b[" + number + ";" + std::to_string(modifier) + form.back();
}

Sent legacyKeypadBytes(int key, unsigned modifiers, const KeyboardOptions& options)
{
    static const std::map<Key, char> letters = {
        {Key::Keypad0, 'p'},        {Key::KeypadInsert, 'p'},    {Key::Keypad1, 'q'},
        {Key::KeypadEnd, 'q'},      {Key::Keypad2, 'r'},         {Key::KeypadDown, 'r'},
        {Key::Keypad3, 's'},        {Key::KeypadPageDown, 's'},  {Key::Keypad4, 't'},
        {Key::KeypadLeft, 't'},     {Key::Keypad5, 'u'},         {Key::KeypadBegin, 'u'},
        {Key::Keypad6, 'v'},        {Key::KeypadRight, 'v'},     {Key::Keypad7, 'w'},
        {Key::KeypadHome, 'w'},     {Key::Keypad8, 'x'},         {Key::KeypadUp, 'x'},
        {Key::Keypad9, 'y'},        {Key::KeypadPageUp, 'y'},    {Key::KeypadDecimal, 'n'},
        {Key::KeypadDelete, 'n'},   {Key::KeypadDivide, 'o'},    {Key::KeypadMultiply, 'j'},
        {Key::KeypadSubtract, 'm'}, {Key::KeypadAdd, 'k'},       {Key::KeypadEnter, 'M'},
        {Key::KeypadEqual, 'X'},    {Key::KeypadSeparator, 'l'},
    };
    static const std::vector<std::string> moves = {"D",  "C", "A", "B",  "5~",
                                                   "6~", "H", "F", "2~", "3~"};
    if (options.applicationKeypad && modifiers == 0)
        return std::string("\x1bO") + letters.at(static_cast<Key>(key));
    if (key == static_cast<int>(Key::KeypadEnter))
        return (modifiers & 2U) != 0 ? "\x1b\r" : "\r";
    const int move = key - static_cast<int>(Key::KeypadLeft);
    if (move < 0 || move >= static_cast<int>(moves.size()))
        return std::nullopt;
    return chord(moves[static_cast<std::size_t>(move)], modifiers + 1, "\x1b[");
}

Sent legacyBytes(int key, unsigned modifiers, const KeyboardOptions& options)
{
    static const std::vector<std::string> functions = {"P",   "Q",   "R",   "S",   "15~", "17~",
                                                       "18~", "19~", "20~", "21~", "23~", "24~"};
    if ((modifiers & (8U | 16U | 32U)) != 0)
        return std::nullopt;
    const auto held = modifiers & 7U;
    const int f1 = static_cast<int>(Key::F1);
    if (key <= 3)
        return legacySpecialBytes(key, held, options);
    if (key < f1)
        return chord(wireForms()[static_cast<std::size_t>(key)], held + 1,
                     options.applicationCursor ? "\x1bO" : "\x1b[");
    if (key <= f1 + 34) {
        const int number = key - f1;
        if (number < 12)
            return chord(functions[static_cast<std::size_t>(number)], held + 1, "\x1bO");
        if (held != 0)
            return std::nullopt;
        return chord(functions[static_cast<std::size_t>(number % 12)], number < 24 ? 2 : 5, "");
    }
    if (key >= static_cast<int>(Key::Keypad0) && key <= static_cast<int>(Key::KeypadBegin))
        return legacyKeypadBytes(key, held, options);
    return std::nullopt;
}

/// What a functional key without text sends.
Sent expectedBytes(unsigned flags, int key, unsigned modifiers, int type,
                   const KeyboardOptions& options)
{
    const bool events = (flags & 2U) != 0;
    const bool all = (flags & 8U) != 0;
    const bool disambiguates = (flags & 9U) != 0;
    if (key >= 97 && !all)
        return std::nullopt;
    if (type == 2 && (!events || (isEditing(key) && !all)))
        return std::nullopt;
    if (flags == 0)
        return legacyBytes(key, modifiers, options);

    std::string field;
    const bool tellsType = events && type > 0;
    if (modifiers != 0 || tellsType)
        field =
            ";" + std::to_string(modifiers + 1) + (tellsType ? ":" + std::to_string(type + 1) : "");
    const auto& form = wireForms()[static_cast<std::size_t>(key)];
    const bool isLetter = form.size() == 1;
    if (isEditing(key) && !all && (!disambiguates || field.empty()))
        return legacySpecialBytes(key, modifiers, options);
    if (key == 0 && !disambiguates)
        return type == 2 ? Sent() : legacySpecialBytes(key, modifiers, options);
    if (isLetter && !disambiguates && field.empty())
        return chord(form, 1, options.applicationCursor || form >= "P" ? "\x1bO" : "\x1b[");
    if (isLetter)
        return "\x1b[" + (field.empty() ? "" : "1" + field) + form;
    return "\x1b[" + form.substr(0, form.size() - 1) + field + form.back();
}

/// The legacy modes tell nothing where a flag is set or a modifier is none of the old ones: there
/// it is enough to have all of them or none.
std::vector<unsigned> modesOf(unsigned flags, unsigned modifiers)
{
    if (flags == 0 || modifiers < 8)
        return {0, 1, 2, 3, 4, 5, 6, 7};
    return {0, 7};
}

} // namespace

TEST(KittyKeyboardEncoder, EveryFunctionalKeyUnderAllModifiersFlagsAndEventsMatchesTheTable)
{
    ASSERT_EQ(wireForms().size(), KittyFunctionalKeyCount);
    for (unsigned flags = 0; flags < 32; ++flags) {
        for (int key = 0; key < static_cast<int>(KittyFunctionalKeyCount); ++key) {
            for (unsigned modifiers = 0; modifiers < 256; ++modifiers) {
                for (int type = 0; type < 3; ++type) {
                    for (const auto modes : modesOf(flags, modifiers)) {
                        const KeyboardOptions options{(modes & 1U) != 0, (modes & 2U) != 0,
                                                      (modes & 4U) != 0};
                        const auto event =
                            as(static_cast<Type>(type),
                               pressOf(static_cast<Key>(key), Modifiers::of(modifiers)));
                        ASSERT_EQ(sent(Flags::of(flags), event, options),
                                  expectedBytes(flags, key, modifiers, type, options))
                            << "flags " << flags << " key " << key << " modifiers " << modifiers
                            << " type " << type << " modes " << modes;
                    }
                }
            }
        }
    }
}

TEST(KittyKeyboardEncoder, NoTwoFunctionalKeysShareAForm)
{
    std::set<std::string> forms;
    for (std::size_t key = 0; key < KittyFunctionalKeyCount; ++key)
        forms.insert(sent(Flags::All, pressOf(static_cast<Key>(key))).value_or(""));
    EXPECT_EQ(forms.size(), KittyFunctionalKeyCount);
}

TEST(KittyKeyboardEncoder, TheKeypadTypesItsTextOutsideApplicationMode)
{
    EXPECT_EQ(legacy(pressOf(Key::Keypad5, {}, "5")), "5");
    EXPECT_EQ(legacy(pressOf(Key::Keypad5, Modifiers::NumLock, "5")), "5");
    EXPECT_EQ(legacy(pressOf(Key::Keypad5, Modifiers::Alt, "5")), "\x1b"
                                                                  "5");
    EXPECT_EQ(legacy(pressOf(Key::Keypad5, {}, "5"), {.applicationKeypad = true}), "\x1bOu");
    EXPECT_EQ(legacy(pressOf(Key::Keypad5, Modifiers::NumLock, "5"), {.applicationKeypad = true}),
              "\x1bOu");
    EXPECT_EQ(legacy(pressOf(Key::Keypad5)), std::nullopt);
    EXPECT_EQ(legacy(pressOf(Key::KeypadUp), {.applicationCursor = true}), "\x1b[A");
    EXPECT_EQ(legacy(pressOf(Key::KeypadEnter, Modifiers::Alt)), "\x1b\r");
}

// Keys with a character under all modifiers, flags and events

namespace {

Sent expectedText(unsigned flags, unsigned modifiers, int type, bool withText)
{
    const bool events = (flags & 2U) != 0;
    const bool all = (flags & 8U) != 0;
    const bool chord = (modifiers & 6U) != 0;
    const bool release = type == 2;
    const std::string text = (modifiers & 1U) != 0 ? "A" : "a";
    if (release && !events)
        return std::nullopt;
    if (withText && !all && !((flags & 1U) != 0 && chord))
        return release ? Sent() : text;
    if (!all && (flags & 1U) == 0 && !release && (modifiers & 56U) == 0 && (modifiers & 5U) != 5) {
        const std::string escape = (modifiers & 2U) != 0 ? "\x1b" : "";
        return escape + ((modifiers & 4U) != 0 ? "\x01" : text);
    }
    const auto told = flags == 0 ? modifiers & 63U : modifiers;
    std::string bytes = "\x1b[97";
    if ((flags & 4U) != 0)
        bytes += (modifiers & 1U) != 0 ? ":65:113" : "::113";
    const bool tellsType = events && type > 0;
    const bool hasField = told != 0 || tellsType;
    if (hasField)
        bytes += ";" + std::to_string(told + 1) + (tellsType ? ":" + std::to_string(type + 1) : "");
    if (withText && (flags & 24U) == 24 && !release && (modifiers & 62U) == 0)
        bytes += std::string(hasField ? ";" : ";;") + std::to_string(static_cast<int>(text[0]));
    return bytes + "u";
}

} // namespace

TEST(KittyKeyboardEncoder, ALetterUnderAllModifiersFlagsAndEventsMatchesTheTable)
{
    for (unsigned flags = 0; flags < 32; ++flags) {
        for (unsigned modifiers = 0; modifiers < 256; ++modifiers) {
            for (int type = 0; type < 3; ++type) {
                for (const bool withText : {false, true}) {
                    auto event =
                        as(static_cast<Type>(type), pressOf(U'a', Modifiers::of(modifiers)));
                    event.shiftedKey = U'A';
                    event.baseLayoutKey = U'q';
                    if (withText)
                        event.text = (modifiers & 1U) != 0 ? "A" : "a";
                    ASSERT_EQ(sent(Flags::of(flags), event),
                              expectedText(flags, modifiers, type, withText))
                        << "flags " << flags << " modifiers " << modifiers << " type " << type
                        << " text " << withText;
                }
            }
        }
    }
}
