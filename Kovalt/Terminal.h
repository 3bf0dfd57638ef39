#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/EscapeSequenceParser.h"
#include "Kovalt/GraphemeTable.h"
#include "Kovalt/Links.h"
#include "Kovalt/Mouse/MouseEncoder.h"
#include "Kovalt/ParserHandlers.h"
#include "Kovalt/Position.h"
#include "Kovalt/PromptClick.h"
#include "Kovalt/TerminalDelegate.h"
#include "Kovalt/TerminalOptions.h"
#include "Kovalt/TerminalState.h"
#include "Kovalt/TinyAtom.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Kovalt {

struct SemanticPromptOptions;

/// A terminal without a window: bytes of a program in, a screen and answers out.
///
/// `feed` cuts the bytes into text and sequences and carries them out on one of two buffers, the
/// normal one with its history or the alternate one without. What a host must know at once it
/// hears through the delegate; what it must paint it reads from `updateRange` and the buffer.
///
/// One thread at a time. Nothing here throws; what can't be understood is dropped, and told on
/// standard output unless `setSilentLog`.
class Terminal final : private ParserHandlers, private BufferHost {
public:
    static constexpr int MinimumCols = 2;
    static constexpr int MinimumRows = 1;
    static constexpr std::chrono::milliseconds SynchronizedOutputTimeout{1000};

    enum class BufferKind : std::uint8_t { Active, Normal, Alt };
    struct RowRange {
        std::int64_t start = 0;
        std::int64_t end = 0; ///< The last row, inclusive.
        bool operator==(const RowRange&) const = default;
    };
    /// Takes the data of an operating-system command in place of the terminal.
    using OscHandler = std::function<void(std::span<const std::uint8_t> data)>;

    /// The delegate may be null, then answers vanish; else it must outlive the terminal.
    explicit Terminal(TerminalDelegate* delegate, TerminalOptions options = {});
    ~Terminal() override;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // Input and size.

    void feed(std::span<const std::uint8_t> bytes) noexcept;
    void feed(std::string_view utf8) noexcept;
    /// At least 2 columns and 1 row. The same size does nothing.
    void resize(int cols, int rows);
    /// As after a power-on, with its history gone. Size and hidden cursor stay.
    void resetToInitialState();
    /// What DECSTR does.
    void softReset();
    void clearScrollback();
    /// None means no history.
    void changeScrollback(std::optional<int> rows);

    // State.

    [[nodiscard]] int cols() const { return m_cols; }
    [[nodiscard]] int rows() const { return m_rows; }
    [[nodiscard]] const TerminalOptions& options() const { return m_options; }
    [[nodiscard]] Buffer& buffer() { return *m_buffer; }
    [[nodiscard]] const Buffer& buffer() const { return *m_buffer; }
    [[nodiscard]] Buffer& buffer(BufferKind kind);
    [[nodiscard]] const Buffer& buffer(BufferKind kind) const;
    [[nodiscard]] bool isAlternateBufferActive() const { return m_buffer == &m_altBuffer; }
    [[nodiscard]] const GraphemeTable& graphemes() const { return m_graphemes; }
    [[nodiscard]] const Attribute& currentAttribute() const { return m_curAttr; }
    [[nodiscard]] const TerminalModes& modes() const { return m_modes; }
    [[nodiscard]] const TitleState& titles() const { return m_titles; }
    [[nodiscard]] const ColorState& colors() const { return m_colors; }
    [[nodiscard]] const CharsetState& charsets() const { return m_charsets; }
    [[nodiscard]] const BidiPresentationState& bidiState() const { return m_currentBidiState; }
    [[nodiscard]] CursorStyle cursorStyle() const { return m_cursorStyle; }
    /// The keyboard flags of the active screen.
    [[nodiscard]] const KeyboardModeState& keyboardMode() const;
    [[nodiscard]] bool isSynchronizedOutputActive() const { return m_synchronizedOutputActive; }
    [[nodiscard]] const std::optional<std::string>& hostCurrentDirectory() const
    {
        return m_hostCurrentDirectory;
    }
    [[nodiscard]] const std::optional<std::string>& hostCurrentDocument() const
    {
        return m_hostCurrentDocument;
    }
    [[nodiscard]] EscapeSequenceParser& parser() { return m_parser; }
    /// While the user looks at the history, output doesn't move the view.
    void setUserScrolling(bool isScrolling) { m_userScrolling = isScrolling; }
    void setSilentLog(bool silent) { m_silentLog = silent; }

    // The screen.

    /// A row of the view; null outside the ring.
    [[nodiscard]] const BufferLine* getLine(int row) const;
    /// A row by its index in the ring plus `Buffer::linesTop`; null if it has gone.
    [[nodiscard]] const BufferLine* getScrollInvariantLine(std::int64_t row) const;
    /// The cell at a column and row of the view; none outside.
    [[nodiscard]] std::optional<CharData> getCharData(int col, int row) const;
    /// What the cell shows, in UTF-8; none outside.
    [[nodiscard]] std::optional<std::string> getCharacter(int col, int row) const;
    [[nodiscard]] Position getCursorLocation() const;
    [[nodiscard]] int getTopVisibleRow() const { return m_buffer->yDisp; }
    /// Columns and rows.
    [[nodiscard]] std::pair<int, int> getDims() const { return {m_cols, m_rows}; }
    /// The text from `start` up to but without `end`, rows of the ring. Blanks at the end of a row
    /// are dropped, rows that continue the one above are joined to it.
    [[nodiscard]] std::string getText(Position start, Position end) const;
    /// The text of a whole buffer, history first, a line feed behind each row that the next does
    /// not continue.
    [[nodiscard]] std::string getBufferAsData(BufferKind kind) const;

    // What changed since the last painting.

    [[nodiscard]] std::optional<RowRange> getUpdateRange() const;
    [[nodiscard]] std::optional<RowRange> getScrollInvariantUpdateRange() const;
    void clearUpdateRange();
    /// Marks a row of the screen. While scrolling, only what is painted where changes.
    void updateRange(int row, bool scrolling = false)
    {
        if (row < 0)
            return;
        m_refresh.start = std::min(m_refresh.start, row);
        m_refresh.end = std::max(m_refresh.end, row);
        if (scrolling)
            return;
        const std::int64_t invariant = m_buffer->linesTop + m_buffer->yBase + row;
        m_refresh.scrollInvariantStart = std::min(m_refresh.scrollInvariantStart, invariant);
        m_refresh.scrollInvariantEnd = std::max(m_refresh.scrollInvariantEnd, invariant);
    }
    void updateFullScreen();
    /// Marks the rows from one to another.
    void refresh(int startRow, int endRow);
    /// The program's screen is complete, or has to do as it is. Does nothing if it never began.
    void endSynchronizedOutput();

    // Keyboard, mouse, focus.

    [[nodiscard]] int encodeButton(int button, bool release, MouseModifiers modifiers) const;
    void sendEvent(const MouseEvent& event);
    void sendMotion(const MouseEvent& event);
    /// Tells the program of a change if it asked for it. When it asks it is told the state.
    void setTerminalFocus(bool hasFocus);

    // Colours and titles.

    void installPalette(const BaseColors& colors);
    void rebuildAnsiPalette(bool notifyDelegate);
    void setForegroundColor(Color color);
    void setBackgroundColor(Color color);
    void setTitle(std::string text);
    void setIconTitle(std::string text);

    /// None for the colour of the text under it.
    void setCursorColor(std::optional<Color> color);

    // Links and prompts.

    /// The link that a cell of the active buffer belongs to. One that the program made wins over
    /// one that only looks like it.
    [[nodiscard]] std::optional<LinkMatch> link(const LinkLookupLocation& location,
                                                LinkLookupMode mode) const;
    /// What a cell of the active buffer is to the shell; the row is one of the ring.
    [[nodiscard]] SemanticCode semanticContent(Position position) const;
    [[nodiscard]] const SemanticPromptClickBehavior& semanticPromptClickBehavior() const
    {
        return m_promptClickBehavior;
    }
    void setSemanticPromptClickBehavior(const SemanticPromptClickBehavior& behavior)
    {
        m_promptClickBehavior = behavior;
    }
    /// A click on a column and row of the view. If it hits the input that a shell is editing, the
    /// shell is told, or sent the keys that move its cursor there. False if the click is for
    /// others.
    bool handleSemanticPromptClick(Position at, MouseModifiers modifiers);

    // Extensions.

    /// In place of the terminal and of an older handler; without one the terminal acts again.
    void registerOscHandler(std::int64_t code, OscHandler handler);
    /// What the terminal does by itself, whoever is registered for the code.
    void performOsc(std::int64_t code, std::span<const std::uint8_t> data);
    /// Must stay alive until it is taken off.
    void registerSelection(TerminalSelection* selection);
    void unregisterSelection(TerminalSelection* selection);
    /// Frees the link texts that no cell uses.
    void garbageCollectPayload();

    // Answers, in the form of introducer that the program chose.

    void sendResponse(std::string_view bytes);
    void sendCsi(std::string_view body);
    void sendDcs(std::string_view body);
    void sendOsc(std::string_view body);

private:
    /// Answers DECRQSS and XTGETTCAP.
    class StatusRequest;

    // ParserHandlers
    void print(std::span<const std::uint8_t> text, TextKind kind) override;
    void printStateReset() override { m_print.heldCount = 0; }
    void execute(std::uint8_t code) override;
    void csi(const CsiSequence& sequence) override;
    void esc(std::span<const std::uint8_t> collect, std::uint8_t code) override;
    void osc(std::int64_t code, std::span<const std::uint8_t> data) override;
    void apc(std::uint8_t command, std::span<const std::uint8_t> data) override;
    DcsHandler* dcsHandler(std::span<const std::uint8_t> collect, std::uint8_t code) override;
    void error(ParsingState& state) override;
    // BufferHost
    void scroll(bool isWrapped) override;
    [[nodiscard]] std::uint16_t resolvePayload() override;

    // Dispatch: Sequences/Dispatch*.cpp
    void dispatchPlainEsc(std::uint8_t code);
    [[nodiscard]] bool setLineLooks(std::uint8_t code);
    void dispatchRareCsi(const CsiSequence& sequence);
    [[nodiscard]] bool dispatchMarkedCsi(const CsiSequence& sequence);
    [[nodiscard]] bool dispatchRequests(const CsiSequence& sequence, unsigned marks);
    [[nodiscard]] bool dispatchSaves(const CsiSequence& sequence, unsigned marks);
    [[nodiscard]] bool dispatchPage(const CsiSequence& sequence, unsigned marks);
    [[nodiscard]] bool dispatchAreas(const CsiSequence& sequence, unsigned marks);
    [[nodiscard]] bool tellUnimplemented(const CsiSequence& sequence, unsigned marks) const;
    void unknownCsi(const CsiSequence& sequence) const;
    void unknownEsc(std::span<const std::uint8_t> collect, std::uint8_t code) const;

    // Life: Terminal.cpp
    enum class SetupKind : std::uint8_t { First, Reset };
    void setup(SetupKind kind);
    void setMarginMode(bool on);
    void setInsertMode(bool on);
    void setWraparound(bool on);
    void setCursorHidden(bool hidden);
    void setCursorStyle(CursorStyle style);
    void setReverseColors(bool on);
    void setMouseMode(MouseMode mode);
    void activateNormalBuffer(bool clearAlt);
    void activateAltBuffer(const Attribute& fill);
    void noteBufferSwitch();
    [[nodiscard]] KeyboardModeState& activeKeyboardMode();

    void updateRows(int first, int last);

    /// Prints "Info: " and the parts unless the log is silent.
    void log(std::initializer_list<std::string_view> parts) const;
    [[nodiscard]] static std::string describe(std::span<const std::int32_t> parameters);
    [[nodiscard]] static std::string describe(std::span<const std::uint8_t> bytes);

    // Text: TerminalText.cpp
    void printBetweenStrays(std::string_view text);
    void printMixed(std::string_view text);
    [[nodiscard]] std::string_view printHeld(std::string_view text);
    [[nodiscard]] std::size_t printAscii(std::string_view text);
    [[nodiscard]] std::size_t printSimpleRun(std::string_view text);
    [[nodiscard]] bool endsInCluster() const;
    void printScalar(char32_t scalar);
    void printCell(std::int32_t code, int width);
    [[nodiscard]] bool joinToPreceding(char32_t scalar, int width);
    void selectPresentation(BufferLine& line, int column, char32_t selector);
    void setPrecedingWidth(BufferLine& line, int column, int width);
    [[nodiscard]] int precedingColumn(const BufferLine& line) const;
    void cmdRepeatPrecedingCharacter(const CsiSequence& sequence);

    // Cursor: Sequences/Cursor.cpp
    [[nodiscard]] int leftMargin() const { return m_modes.marginMode ? m_buffer->marginLeft : 0; }
    [[nodiscard]] int rightMargin() const
    {
        return m_modes.marginMode ? m_buffer->marginRight : m_cols - 1;
    }
    void moveToRow(int row);
    void restrictCursor(bool allowPastEnd = false);
    /// Ends the waiting behind the right edge or margin: the cursor stands where it is shown.
    void endWaiting();
    /// Any column of the screen, whatever the margins.
    void moveToColumn(int col);
    void setCursor(int col, int row);
    void cmdBackspace();
    void cmdCarriageReturn();
    void cmdLineFeedBasic();
    void advanceLine();
    void cmdIndex();
    void cmdNextLine();
    void reverseIndex();
    void cursorUp(int n);
    void cursorDown(int n);
    void cursorForward(int n);
    void cursorBackward(int n);
    /// Into the line above, as far as the modes of reverse wraparound allow. False if they don't.
    [[nodiscard]] bool wrapBackward();
    [[nodiscard]] bool wrapsOverAnyEnd() const
    {
        return m_modes.extendedReverseWraparound && m_modes.wraparound;
    }
    void cmdSaveCursor();
    void cmdRestoreCursor();
    void cmdSetCursorStyle(int style);

    // Erasing and editing: Sequences/EraseAndEdit.cpp
    void cmdInsertCells(int n);
    void cmdDeleteCells(int n);
    void cmdEraseCells(int n);
    void cmdInsertLines(int n);
    void cmdDeleteLines(int n);
    void cmdEraseInDisplay(int what, std::uint8_t guard);
    void cmdEraseInLine(int what, std::uint8_t guard);
    void cmdProtectCharacters(int what);
    /// Whether the text to come has one of the guards.
    void setGuard(std::uint8_t guard, bool on);
    /// Whether a row of the screen has cells with this guard.
    [[nodiscard]] bool isGuarded(int row, std::uint8_t guard) const;
    /// The columns from `start` up to but without `end`, but for those that the guard keeps.
    void eraseColumns(int row, int start, int end, std::uint8_t guard);
    /// Makes the row of the screen an empty one.
    void resetBufferLine(int row, bool clearImages);
    /// An erased cell: nothing but the current background.
    [[nodiscard]] CharData erasedCell() const;
    void cmdScreenAlignmentPattern();

    // Scrolling: Sequences/Scrolling.cpp
    void cmdScrollUp(int n);
    void cmdScrollDown(int n);
    void scrollRegionUp(int top, int n);
    void scrollRegionDown(int top, int n);
    void columnScroll(bool back, int column, int n);
    /// Columns from `column` to the right margin, in every row of the region, wherever the cursor.
    void shiftColumns(bool back, int column, int n);
    void columnIndex(bool back);
    void hardenBidiScrollBoundaries(int top, int bottom);
    /// Whether it stands between the left and the right margin, if there are any.
    [[nodiscard]] bool isCursorInMargins() const;
    [[nodiscard]] bool isCursorInScrollRegion() const;
    [[nodiscard]] bool hasNarrowMargins() const;
    void moveColumns(int top, int bottom, int n);
    void noteInPlaceScroll(int top, int bottom, int lines);

    // Margins: Sequences/Margins.cpp
    void cmdSetScrollRegion(const CsiSequence& sequence);
    void cmdSetMargins(const CsiSequence& sequence);

    // Rectangles: Sequences/Rectangles.cpp
    struct Rectangle {
        int top = 0; ///< Of the screen, from 0; all four inclusive.
        int left = 0;
        int bottom = 0;
        int right = 0;
    };
    /// Top, left, bottom, right from the parameters; relative to the margins in origin mode,
    /// clamped to the screen; none if it is empty.
    [[nodiscard]] std::optional<Rectangle>
    getRectangleFromRequest(std::span<const std::int32_t> parameters) const;
    void csiCopyRectangularArea(const CsiSequence& sequence);
    void fillRectangle(const Rectangle& area, const CharData& cell);
    void cmdFillRectangle(const CsiSequence& sequence);
    void cmdEraseRectangle(const CsiSequence& sequence);
    void cmdSelectiveEraseRectangularArea(const CsiSequence& sequence);

    // Modes: Sequences/Modes.cpp
    void cmdSetMode(const CsiSequence& sequence, bool on);
    void setAnsiMode(int mode, bool on);
    void setPrivateMode(int mode, bool on);
    [[nodiscard]] bool setMouseModes(int mode, bool on);
    [[nodiscard]] bool setScreenMode(int mode, bool on);
    bool setBidiMode(int mode, bool on);
    void unknownPrivateMode(int mode, bool on) const;
    void setColumnMode(bool wide);
    void setSynchronizedOutput(bool on);
    void sendFocusReport();
    void cmdSavePrivateModes(const CsiSequence& sequence);
    void cmdRestorePrivateModes(const CsiSequence& sequence);
    void applyBidiState();
    void cmdSetConformanceLevel(const CsiSequence& sequence);
    void cmdSelectPresentationDirection(const CsiSequence& sequence);
    void cmdSelectCharacterPath(const CsiSequence& sequence);
    void cmdKittyKeyboard(const CsiSequence& sequence);

    // Looks: Sequences/Rendition.cpp
    void cmdSelectGraphicRendition(const CsiSequence& sequence);

    // Character sets: Sequences/CharacterSets.cpp
    void setgLevel(int level);
    void setgCharset(int index, CharSetId set);
    void selectCharset(std::uint8_t intermediate, std::uint8_t code);

    // Tabs: Sequences/Tabs.cpp
    void cmdTab();
    void cmdTabForward(int n);
    void cmdTabBackward(int n);
    void cmdTabClear(int what);

    // Reports: Sequences/Reports*.cpp
    void cmdSendDeviceAttributes(const CsiSequence& sequence);
    void sendPrimaryAttributes();
    void cmdDeviceStatus(const CsiSequence& sequence);
    void cmdRequestAnsiMode(const CsiSequence& sequence);
    void cmdRequestPrivateMode(const CsiSequence& sequence);
    void cmdTerminalVersion(const CsiSequence& sequence);
    void cmdRectangleChecksum(const CsiSequence& sequence);

    // Windows and titles: Sequences/Window.cpp
    void cmdWindowOptions(const CsiSequence& sequence);
    /// Asks the host for another size of the screen, in cells.
    void requestSize(int cols, int rows);
    void cmdSetTitleModes(const CsiSequence& sequence, bool on);
    void reportWindow(WindowManipulationCommand::Kind kind);
    [[nodiscard]] std::string titleReport(const std::string& title) const;
    void pushTitles(bool icon, bool window);
    void popTitles(bool icon, bool window);

    // Operating-system commands: Sequences/OperatingSystemCommands*.cpp
    void unknownOsc(std::int64_t code) const;
    void oscTitle(std::span<const std::uint8_t> data, void (Terminal::*set)(std::string));
    void oscSetCurrentDirectory(std::span<const std::uint8_t> data);
    void oscSetCurrentDocument(std::span<const std::uint8_t> data);
    void oscProgress(std::span<const std::uint8_t> data);
    void oscNotification(std::span<const std::uint8_t> data);
    void oscClipboard(std::span<const std::uint8_t> data);
    void oscContent(std::span<const std::uint8_t> data);

    // Colours: Sequences/OperatingSystemCommandsColor.cpp
    /// The start values of `m_colors`, from the options.
    void setupColors();
    void resetAllColors();
    void oscChangeOrQueryColorIndex(std::span<const std::uint8_t> data);
    void oscSetColors(int startAt, std::span<const std::uint8_t> data);
    void oscResetColor(std::span<const std::uint8_t> data);
    void setPaletteEntry(int index, Color color);
    /// Of text, background and cursor: 0, 1 and 2.
    [[nodiscard]] Color screenColor(int which);
    void setScreenColor(int which, Color color);

    // Links: Sequences/OperatingSystemCommandsLink.cpp
    void oscHyperlink(std::span<const std::uint8_t> data);
    /// The code for the open link, stored if need be; 0 without one.
    [[nodiscard]] std::uint16_t resolveActiveHyperlink();
    void storePendingHyperlink();

    // Prompts: Sequences/SemanticPrompt*.cpp
    void oscSemanticPrompt(std::span<const std::uint8_t> data);
    void freshLine();
    [[nodiscard]] std::int64_t cursorRowInHistory() const;
    [[nodiscard]] bool canReuseSemanticGroup(SemanticPromptKind kind) const;
    void beginSemanticPromptGroup();
    void beginSemanticPrompt(const SemanticPromptOptions& options);
    void continueSemanticPrompt(const SemanticPromptOptions& options);
    void forgetMarksFromCursor();
    void applySemanticOptions(const SemanticPromptOptions& options);
    void setSemanticMark(SemanticMark::Kind kind, SemanticPromptKind prompt = {});
    void markCurrentSemanticPrompt(SemanticPromptKind kind);
    void beginSemanticInput(bool endsWithLine);
    void clearEchoedEnterContinuationBeforeOutput();
    void beginSemanticOutput();
    void endSemanticCommand();
    /// After a line feed: the row that the cursor came to goes on with the prompt.
    void finishSemanticLineAdvance();
    void resetSemanticPromptState(bool clearingScreenMarks = true);
    void semanticNoteAlternateScreenSwitch();
    [[nodiscard]] bool allowsPromptClick(MouseModifiers modifiers) const;
    bool sendPromptClickEvent(Position at);
    bool sendPromptCursorKeys(Position at);

    TerminalDelegate* m_delegate;
    TerminalOptions m_options;
    int m_cols;
    int m_rows;
    Buffer m_normalBuffer;
    Buffer m_altBuffer;
    Buffer* m_buffer; ///< The active one.
    GraphemeTable m_graphemes;
    EscapeSequenceParser m_parser;

    Attribute m_curAttr;
    std::uint8_t m_guardsUsed = CharacterGuard::None; ///< That cells may have.
    TerminalModes m_modes;
    CharsetState m_charsets;
    TitleState m_titles;
    ColorState m_colors;
    RefreshState m_refresh;
    KeyboardModeState m_keyboardModeNormal;
    KeyboardModeState m_keyboardModeAlt;
    CursorStyle m_cursorStyle;
    BidiPresentationState m_currentBidiState;
    std::map<int, bool> m_savedBidiPrivateModes; ///< Of 1243, 2500 and 2501.

    /// The bytes of a character that the last feed ended in, and what REP repeats.
    struct PrintState {
        std::array<char, 4> held{};
        std::size_t heldCount = 0;
        std::int32_t lastCode = 0; ///< 0 if nothing can be repeated.
        int lastWidth = 1;
        std::uint16_t payload = 0; ///< The link of the text that is being printed.
    };
    PrintState m_print;

    bool m_synchronizedOutputActive = false;
    bool m_userScrolling = false;
    bool m_silentLog = false;
    bool m_hasFocus = false;

    HyperlinkState m_activeHyperlink;
    std::set<std::uint16_t> m_payloadCodes; ///< The codes that this terminal holds.
    /// Payloads seen last, and the codes that they got, which may have been released since.
    std::unordered_map<std::string, std::uint16_t> m_payloadCodeOf;
    std::size_t m_payloadCollectionAt = 4096;
    std::optional<std::string> m_hostCurrentDirectory;
    std::optional<std::string> m_hostCurrentDocument;
    SemanticPromptClickBehavior m_promptClickBehavior;
    std::map<std::int64_t, OscHandler> m_oscHandlers;
    std::unique_ptr<DcsHandler> m_dcsRequest; ///< Made by `dcsHandler`.
    std::vector<TerminalSelection*> m_selections;
};

} // namespace Kovalt
