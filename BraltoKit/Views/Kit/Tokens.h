#pragma once

/// @file
/// Every colour, measure and type size of the program. No view has a number or a colour of its own.

#include "Projects/SpaceTheme.h"

#include <QColor>

#include <array>

namespace Bralto {

/// What the colours follow from: an appearance and a project's look.
struct TokenSource {
    bool dark = true;
    Rgb accent;
    std::array<Rgb, 3> frame; ///< Top, middle, bottom.
    double grain = 0.4;       ///< Opacity of the frame's texture, 0 to 1.

    /// The source for a theme in an appearance that is already decided.
    [[nodiscard]] static TokenSource from(const SpaceTheme& theme, bool dark);

    bool operator==(const TokenSource&) const = default;
};

/// The colours of one window. Inks with an alpha keep their contrast on every surface named for
/// them; a test computes it.
struct Tokens {
    explicit Tokens(const TokenSource& source);

    /// What lies on the frame itself: bar, sidebar, tray.
    struct Frame {
        std::array<QColor, 3> stops; ///< Top, middle, bottom.
        double grain = 0;
        QColor label;
        QColor ink2;
        QColor marks; ///< Arrows and dots that are not words.
        QColor hover;
        QColor selected;
        QColor pressed; ///< A pressed button in the bar, the active chip.
        QColor well;    ///< The console's tray, the usage card.
        QColor separator;
        QColor barTrack;
        QColor barValue;
        QColor waitingText;
        QColor waitingDot;
        QColor added; ///< Added and untracked files.
        QColor conflict;
    };

    /// What the highlighter's classes look like; the rest takes the label ink.
    struct Code {
        QColor keyword;
        QColor string;
        QColor number;
        QColor comment;
        QColor type;
        QColor function;
        QColor property;
        QColor tag;
        QColor marker;
    };

    bool dark = true;

    // Surfaces
    QColor sheet;    ///< Editor, pane, home.
    QColor raised;   ///< Cards on a sheet.
    QColor field;    ///< Text fields, composer.
    QColor floating; ///< Menus, popovers, palettes, alerts, status pill, tool tips.
    QColor terminal;

    // Inks on them
    QColor label;
    QColor ink2; ///< Second text, row symbols.
    QColor ink3; ///< Captions, hints, line numbers, placeholders.
    QColor ink4; ///< Disabled text and disclosure arrows; never text that must be read.

    // Lines and fills
    QColor separator;
    QColor separatorFaint;
    QColor hover;
    QColor pressed; ///< Also the fill of a plain button.
    QColor selection;
    QColor tint; ///< The user's turn.
    QColor sheetEdge;
    QColor floatEdge;
    QColor shadow;
    QColor codeBackground;
    QColor segment; ///< The chosen one of a row of segments.

    // The project's colour
    QColor accent;    ///< A fill, never an ink.
    QColor accentInk; ///< Text, links, focus rings, carets, bars and rings on sheets.
    QColor onAccent;  ///< Ink on the accent.

    // Status
    QColor done;
    QColor waiting;
    QColor failed;
    QColor waitingGround;
    QColor waitingEdge;
    QColor addedLine;
    QColor removedLine;
    QColor pillDot;
    QColor pillHalo;
    QColor pillGround;
    QColor pillText;
    QColor searchHit;
    QColor searchHitRing;
    QColor currentHit;
    QColor onCurrentHit;

    Frame frame;
    Code code;
    /// Black, red, green, yellow, blue, magenta, cyan, white.
    std::array<QColor, 8> ansi;
};

/// What a terminal shows its eight normal colours with, in the order of `Tokens::ansi`.
[[nodiscard]] std::array<QColor, 8> ansiColors(bool dark);

/// Sizes in logical units at zoom 1.
namespace Measure {

inline constexpr int Space1 = 4;
inline constexpr int Space2 = 8;
inline constexpr int Space3 = 12;
inline constexpr int Space4 = 16;
inline constexpr int Space6 = 24;
inline constexpr int Space8 = 32;

inline constexpr int ControlRadius = 6;
inline constexpr int PaneRadius = 8;
inline constexpr int CardRadius = 10;
inline constexpr int SheetRadius = 12;
inline constexpr int TrayRadius = 14;

inline constexpr int CaptionIcon = 12;
inline constexpr int TabIcon = 14;
inline constexpr int RowIcon = 16;
inline constexpr int BarIcon = 18;
inline constexpr int PlaceIcon = 28; ///< The symbol of an empty place.

// Window
inline constexpr int DefaultWidth = 1180;
inline constexpr int DefaultHeight = 780;
inline constexpr int LeastWidth = 640;
inline constexpr int LeastHeight = 420;
inline constexpr int ResizeEdge = 6;
inline constexpr int FrameInset = 8;
inline constexpr int Bar = 38;
inline constexpr int BarButton = 28;
inline constexpr int BarGap = 2;
inline constexpr int ProjectIcon = 20;
inline constexpr int BarLine = 14;
/// Below this width minimise and maximise leave the bar.
inline constexpr int NarrowWindow = 720;
inline constexpr int Seam = 2;

// Sidebar
inline constexpr int SidebarRow = 28;
inline constexpr int TreeRow = 24;
inline constexpr int TitleRow = 32;
inline constexpr int SectionHead = 28;
inline constexpr int RowLeft = 10;
inline constexpr int RowRight = 8;
inline constexpr int TreeIndent = 14;
inline constexpr int TreeArrow = 12;
inline constexpr int UnsavedDot = 7;

// Editor
inline constexpr int TabBar = 38;
inline constexpr int Tab = 28;
inline constexpr int LargestTab = 220;
inline constexpr int SmallestTab = 84;
inline constexpr int TabClose = 18;
inline constexpr int Gutter = 48;
inline constexpr int GutterRight = 14;
inline constexpr int TextTop = 7;
inline constexpr int TextBottom = 44;
inline constexpr int ProseColumn = 620;
inline constexpr int ProseTop = 26;
inline constexpr int ProseSide = 44;
inline constexpr int Pill = 24;
inline constexpr int PillInset = 10;
inline constexpr double Caret = 1.5;

// Console
inline constexpr int TrayHead = 36;
inline constexpr int TrayPadding = 6;
inline constexpr int TraySide = 2;
inline constexpr int PaneGap = 6;
inline constexpr int Chip = 26;
inline constexpr int PaneHead = 32;
/// In a lower console a group of one pane drops its pane head.
inline constexpr int LowConsole = 480;

// Home
inline constexpr int HomeSide = 40;
inline constexpr int HomeTop = 22;
inline constexpr int HomeHead = 44;
inline constexpr int HomeColumn = 1084;
inline constexpr int SearchWidth = 260;
inline constexpr int ProjectRow = 44;
inline constexpr int ProjectRowIcon = 28;

// Controls
inline constexpr int Button = 28;
inline constexpr int SmallButton = 24;
inline constexpr int LargeButton = 30;
inline constexpr int IconButton = 24;
inline constexpr int KeyCap = 18;
inline constexpr int Field = 30;
inline constexpr int SwitchWidth = 30;
inline constexpr int SwitchHeight = 18;
inline constexpr int SwitchKnob = 14;
inline constexpr int FocusRing = 2;
inline constexpr int ToolTip = 28;

// What floats
inline constexpr int MenuRow = 28;
inline constexpr int MenuPadding = 4;
inline constexpr int AlertWidth = 430;
inline constexpr int AlertIcon = 40;
inline constexpr int PromptField = 260;
inline constexpr int ShadowBlur = 24;
inline constexpr int ShadowDrop = 8;

} // namespace Measure

/// What a text is, which decides its face, size, line height and weight.
enum class TextRole {
    Title,
    Heading,
    Prose,
    ProseHeading1,
    ProseHeading2,
    ProseHeading3,
    Chat,
    ChatStrong,
    ChatUser,
    ChatHeading,
    Body,
    BodyMedium,
    BodyStrong,
    CardTitle,
    Tab,
    Secondary,
    SecondaryMedium,
    SecondaryStrong,
    Caption,
    CaptionMedium,
    CaptionStrong,
    Code,
    GutterNumber,
    Terminal,
    CodeDifference,
    CodeCommand
};

/// How a role is set.
struct TypeStyle {
    enum class Face { Interface, Code };

    Face face = Face::Interface;
    double size = 13;       ///< Logical units.
    double lineHeight = 20; ///< Logical units.
    int weight = 400;       ///< 400, 500 or 600.
    double spacing = 0;     ///< In em.
};

[[nodiscard]] TypeStyle typeStyle(TextRole role);

} // namespace Bralto
