#include "Views/Terminal/TerminalKeys.h"

#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using Kovalt::KittyFunctionalKey;
using Kovalt::KittyKeyboardEventType;
using Kovalt::KittyKeyboardFlags;

constexpr KittyKeyboardFlags Legacy;
constexpr auto Disambiguate = KittyKeyboardFlags::Disambiguate;
constexpr auto Alternates = KittyKeyboardFlags::Disambiguate | KittyKeyboardFlags::ReportAlternates;
constexpr auto AllKeys = KittyKeyboardFlags::ReportAllKeys | KittyKeyboardFlags::ReportText;

constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Shift = Qt::ShiftModifier;
constexpr auto Alt = Qt::AltModifier;
constexpr auto None = Qt::NoModifier;

/// What a program gets for a press; "(nothing)" for nothing.
std::string sent(const TerminalKeyPress& press, KittyKeyboardFlags flags = Legacy)
{
    const auto event = TerminalKeys::event(press, flags);
    if (!event)
        return "(nothing)";
    return Kovalt::KittyKeyboardEncoder::encode(flags, *event, {}).value_or("(nothing)");
}

TerminalKeyPress press(int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {},
                       const KeyboardLayout::Symbols& symbols = {})
{
    TerminalKeyPress result;
    result.key = key;
    result.modifiers = modifiers;
    result.text = text;
    result.symbols = symbols;
    return result;
}

std::string control(char code)
{
    return std::string(1, code);
}

/// One key of a layout with what a legacy program and one that tells all chords apart get.
struct Row {
    const char* name;
    TerminalKeyPress press;
    std::string legacy;
    std::string told; ///< With disambiguation and alternate keys.
};

void check(const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(sent(row.press), row.legacy);
        EXPECT_EQ(sent(row.press, Alternates), row.told);
    }
}

TEST(TerminalKeys, OfAUsKeyboard)
{
    const KeyboardLayout::Symbols a{'a', 'A', 'a', 'a'};
    const KeyboardLayout::Symbols capitalA{'a', 'A', 'a', 'A'};
    const KeyboardLayout::Symbols two{'2', '@', '2', '@'};
    const KeyboardLayout::Symbols minus{'-', '_', '-', '_'};
    const KeyboardLayout::Symbols slash{'/', '?', '/', '/'};
    const KeyboardLayout::Symbols space{' ', ' ', ' ', ' '};
    check({
        {"a", press(Qt::Key_A, None, "a", a), "a", "a"},
        {"Shift+A", press(Qt::Key_A, Shift, "A", capitalA), "A", "A"},
        {"Ctrl+A", press(Qt::Key_A, Ctrl, "\x01", a), control(1), "\x1b[97;5u"},
        {"Ctrl+Shift+A", press(Qt::Key_A, Ctrl | Shift, "\x01", capitalA), "\x1b[97;6u",
         "\x1b[97:65;6u"},
        {"Alt+a", press(Qt::Key_A, Alt, "a", a),
         "\x1b"
         "a",
         "\x1b[97;3u"},
        {"Alt+Shift+A", press(Qt::Key_A, Alt | Shift, "A", capitalA),
         "\x1b"
         "A",
         "\x1b[97:65;4u"},
        {"Ctrl+Alt+A", press(Qt::Key_A, Ctrl | Alt, "\x01", a), std::string("\x1b\x01"),
         "\x1b[97;7u"},
        {"Ctrl+Space", press(Qt::Key_Space, Ctrl, QString(QChar(0)), space), control(0),
         "\x1b[32;5u"},
        {"Ctrl+@", press(Qt::Key_At, Ctrl | Shift, QString(QChar(0)), two), control(0),
         "\x1b[50:64;6u"},
        {"Ctrl+_", press(Qt::Key_Underscore, Ctrl | Shift, "\x1f", minus), control(0x1F),
         "\x1b[45:95;6u"},
        {"Ctrl+/", press(Qt::Key_Slash, Ctrl, "\x1f", slash), control(0x1F), "\x1b[47;5u"},
        {"Ctrl+-", press(Qt::Key_Minus, Ctrl, "-", {'-', '_', '-', '-'}), "-", "\x1b[45;5u"},
        {"Super+a", press(Qt::Key_A, Qt::MetaModifier, "a", a), "\x1b[97;9u", "\x1b[97;9u"},
    });
}

TEST(TerminalKeys, AltGrOfAGermanKeyboardTypesText)
{
    const KeyboardLayout::Symbols at{'q', 'Q', 'q', '@'};
    const KeyboardLayout::Symbols backslash{U'ß', '?', '-', '\\'};
    const KeyboardLayout::Symbols z{'z', 'Z', 'y', 'z'};
    const KeyboardLayout::Symbols slash{'7', '/', '7', '/'};
    check({
        {"AltGr+Q", press(Qt::Key_At, Qt::GroupSwitchModifier, "@", at), "@", "@"},
        {"ß", press(Qt::Key_ssharp, None, "ß", {U'ß', '?', '-', U'ß'}), "ß", "ß"},
        {"Ctrl+AltGr+ß", press(Qt::Key_Backslash, Ctrl, "\x1c", backslash), control(0x1C),
         "\x1b[223::45;5u"},
        {"Alt+AltGr+Q", press(Qt::Key_At, Alt, "@", at), "\x1b@", "\x1b[113;3u"},
        {"Ctrl+Z", press(Qt::Key_Z, Ctrl, "\x1a", z), control(0x1A), "\x1b[122::121;5u"},
        {"Ctrl+Shift+7", press(Qt::Key_Slash, Ctrl | Shift, "\x1f", slash), control(0x1F),
         "\x1b[55:47;6u"},
    });
}

TEST(TerminalKeys, DigitsOfAFrenchKeyboardAreShifted)
{
    check({
        {"&", press(Qt::Key_Ampersand, None, "&", {'&', '1', '1', '&'}), "&", "&"},
        {"1", press(Qt::Key_1, Shift, "1", {'&', '1', '1', '1'}), "1", "1"},
        {"Ctrl+é", press(Qt::Key_Eacute, Ctrl, "é", {U'é', '2', '2', U'é'}), control(0),
         "\x1b[233::50;5u"},
        {"Ctrl+A", press(Qt::Key_A, Ctrl, "\x01", {'a', 'A', 'q', 'a'}), control(1),
         "\x1b[97::113;5u"},
    });
}

TEST(TerminalKeys, ControlWorksOnACyrillicKeyboard)
{
    const KeyboardLayout::Symbols es{U'с', U'С', 'c', U'с'};
    check({
        {"с", press(Qt::Key_C, None, "с", es), "с", "с"},
        {"Ctrl+с", press(Qt::Key_C, Ctrl, "\x03", es), control(3), "\x1b[1089::99;5u"},
        {"Alt+с", press(Qt::Key_C, Alt, "с", es), "\x1bс", "\x1b[1089::99;3u"},
        {"Ctrl+Alt+с", press(Qt::Key_C, Ctrl | Alt, "\x03", es), std::string("\x1b\x03"),
         "\x1b[1089::99;7u"},
    });
}

TEST(TerminalKeys, WithoutALayoutTheToolkitsKeyIsTheCharacter)
{
    EXPECT_EQ(sent(press(Qt::Key_A, None, "a")), "a");
    EXPECT_EQ(sent(press(Qt::Key_A, Ctrl, "\x01")), control(1));
    EXPECT_EQ(sent(press(Qt::Key_A, Ctrl)), control(1));
    EXPECT_EQ(sent(press(Qt::Key_A, Alt | Shift, "A")), "\x1b"
                                                        "A");
    EXPECT_EQ(sent(press(Qt::Key_A, Alt | Shift)), "\x1b"
                                                   "A");
    EXPECT_EQ(sent(press(Qt::Key_Exclam, Shift, "!")), "!");
    EXPECT_EQ(sent(press(Qt::Key_Space, Ctrl)), control(0));
    EXPECT_EQ(sent(press(0, None, "日本")), "日本");
}

TEST(TerminalKeys, AKeyThatNobodyCanNameSendsNothing)
{
    EXPECT_EQ(sent(press(Qt::Key_unknown)), "(nothing)");
    EXPECT_EQ(sent(press(Qt::Key_MonBrightnessUp)), "(nothing)");
    EXPECT_EQ(sent(press(Qt::Key_MonBrightnessUp, Ctrl), AllKeys), "(nothing)");
    EXPECT_EQ(sent(press(Qt::Key_Dead_Acute)), "(nothing)");
    EXPECT_EQ(sent(press(Qt::Key_Multi_key)), "(nothing)");
}

TEST(TerminalKeys, ChordsThatAnAgentNeedsReachIt)
{
    EXPECT_EQ(sent(press(Qt::Key_Return, None, "\r")), "\r");
    EXPECT_EQ(sent(press(Qt::Key_Return, Shift, "\r"), Disambiguate), "\x1b[13;2u");
    EXPECT_EQ(sent(press(Qt::Key_Return, Ctrl, "\r"), Disambiguate), "\x1b[13;5u");
    EXPECT_EQ(sent(press(Qt::Key_Return, Alt, "\r")), "\x1b\r");
    EXPECT_EQ(sent(press(Qt::Key_V, Ctrl, "\x16")), control(0x16));
    EXPECT_EQ(sent(press(Qt::Key_Escape, None, "\x1b")), "\x1b");
    EXPECT_EQ(sent(press(Qt::Key_Escape, None, "\x1b"), Disambiguate), "\x1b[27u");
    EXPECT_EQ(sent(press(Qt::Key_Tab, None, "\t")), "\t");
    EXPECT_EQ(sent(press(Qt::Key_Backtab, Shift)), "\x1b[Z");
    EXPECT_EQ(sent(press(Qt::Key_Backtab)), "\x1b[Z");
    EXPECT_EQ(sent(press(Qt::Key_Backspace, None, "\b")), "\x7f");
    EXPECT_EQ(sent(press(Qt::Key_Backspace, Ctrl, "\x7f")), "\b");
    EXPECT_EQ(sent(press(Qt::Key_Left, Ctrl)), "\x1b[1;5D");
    EXPECT_EQ(sent(press(Qt::Key_F5, Shift)), "\x1b[15;2~");
}

TEST(TerminalKeys, EveryKeyWithAFunctionCanBePressed)
{
    std::set<KittyFunctionalKey> reached;
    const auto reach = [&](const TerminalKeyPress& key) {
        if (const auto function = TerminalKeys::function(key))
            reached.insert(*function);
    };
    for (int key = Qt::Key_Escape; key < Qt::Key_Escape + 0x200; ++key) {
        reach(press(key));
        reach(press(key, Qt::KeypadModifier));
    }
    for (int key = 0x20; key < 0x7F; ++key)
        reach(press(key, Qt::KeypadModifier));
    for (const quint32 symbol : {0xfe03U, 0xfe11U, 0xffe1U, 0xffe2U, 0xffe3U, 0xffe4U, 0xffe7U,
                                 0xffe8U, 0xffe9U, 0xffeaU, 0xffebU, 0xffecU, 0xffedU, 0xffeeU}) {
        TerminalKeyPress key;
        key.symbol = symbol;
        reach(key);
    }

    // No key symbol stands for playing backwards.
    for (std::size_t i = 0; i < Kovalt::KittyFunctionalKeyCount; ++i) {
        const auto function = KittyFunctionalKey(i);
        EXPECT_EQ(reached.contains(function), function != KittyFunctionalKey::MediaReverse) << i;
    }
}

TEST(TerminalKeys, TheSymbolTellsLeftFromRightAndTheKeypadFromTheRest)
{
    TerminalKeyPress key = press(Qt::Key_Control);
    EXPECT_EQ(TerminalKeys::function(key), KittyFunctionalKey::LeftControl);
    key.symbol = 0xffe4;
    EXPECT_EQ(TerminalKeys::function(key), KittyFunctionalKey::RightControl);

    key = press(Qt::Key_Left, Qt::KeypadModifier);
    key.symbol = 0xff96;
    EXPECT_EQ(TerminalKeys::function(key), KittyFunctionalKey::KeypadLeft);
    EXPECT_EQ(sent(key), "\x1b[D");
}

TEST(TerminalKeys, TheKeypadTypesItsTextAndIsToldApartWhenAsked)
{
    const TerminalKeyPress five = press(Qt::Key_5, Qt::KeypadModifier, "5");

    EXPECT_EQ(sent(five), "5");
    EXPECT_EQ(sent(press(Qt::Key_5, Qt::KeypadModifier | Alt, "5")), "\x1b"
                                                                     "5");
    EXPECT_EQ(sent(five, KittyKeyboardFlags::ReportAllKeys), "\x1b[57404u");
    EXPECT_EQ(sent(press(Qt::Key_Enter, Qt::KeypadModifier, "\r")), "\r");
}

TEST(TerminalKeys, LocksAreToldAsSoonAsAnyFlagIsSet)
{
    TerminalKeyPress up = press(Qt::Key_Up);
    up.locks = {.caps = true, .num = true};

    EXPECT_EQ(sent(up), "\x1b[A");
    EXPECT_EQ(sent(up, Disambiguate), "\x1b[1;193A");
}

TEST(TerminalKeys, ReleasesAndRepeatsAreTold)
{
    constexpr auto Events = KittyKeyboardFlags::Disambiguate | KittyKeyboardFlags::ReportEvents;
    TerminalKeyPress key = press(Qt::Key_A, None, "a", {'a', 'A', 'a', 'a'});

    key.type = KittyKeyboardEventType::RepeatPress;
    EXPECT_EQ(sent(key, Events), "a");
    key.type = KittyKeyboardEventType::Release;
    EXPECT_EQ(sent(key, Events), "\x1b[97;1:3u");
    EXPECT_EQ(sent(key), "(nothing)");
}

TEST(TerminalKeys, AModifierAloneIsToldWithItsOwnBit)
{
    const QKeyEvent down(QEvent::KeyPress, Qt::Key_Control, None, 37, 0xffe3, 0);
    const QKeyEvent up(QEvent::KeyRelease, Qt::Key_Control, Ctrl, 37, 0xffe3, 4);
    constexpr auto Flags = KittyKeyboardFlags::ReportAllKeys | KittyKeyboardFlags::ReportEvents;

    EXPECT_EQ(sent(TerminalKeyPress::from(down, nullptr), Flags), "\x1b[57442;5u");
    EXPECT_EQ(sent(TerminalKeyPress::from(up, nullptr), Flags), "\x1b[57442;1:3u");
    EXPECT_EQ(sent(TerminalKeyPress::from(down, nullptr)), "(nothing)");
}

TEST(TerminalKeys, WhatAnInputMethodComposesIsNotSent)
{
    TerminalKeyPress key = press(Qt::Key_A, None, "a");
    key.composing = true;

    EXPECT_EQ(sent(key), "(nothing)");
}

TEST(TerminalKeys, TheTextOfAKeyIsToldWhenAsked)
{
    EXPECT_EQ(sent(press(Qt::Key_A, Shift, "A", {'a', 'A', 'a', 'A'}), AllKeys), "\x1b[97;2;65u");
    EXPECT_EQ(sent(press(Qt::Key_At, None, "@", {'q', 'Q', 'q', '@'}), AllKeys), "\x1b[113;;64u");
}

TEST(TerminalKeys, AnEventIsReadWithItsLayout)
{
    struct Layout final : KeyboardLayout {
        [[nodiscard]] Symbols symbols(quint32 scanCode, quint32 symbol) const override
        {
            return {'y', 'Y', scanCode == 52 ? U'z' : U'?', char32_t(symbol)};
        }
        [[nodiscard]] Locks locks() const override { return {.caps = false, .num = true}; }
    } const layout;
    const QKeyEvent event(QEvent::KeyPress, Qt::Key_Y, None, 52, 0x79, 0, "y", true);

    const TerminalKeyPress read = TerminalKeyPress::from(event, &layout);

    EXPECT_EQ(read.type, KittyKeyboardEventType::RepeatPress);
    EXPECT_EQ(read.symbols, (KeyboardLayout::Symbols{'y', 'Y', 'z', 'y'}));
    EXPECT_EQ(read.locks, (KeyboardLayout::Locks{false, true}));
    EXPECT_EQ(read.text, "y");
}

} // namespace
} // namespace Bralto
