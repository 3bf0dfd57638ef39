#include "Views/Chat/CodeScene.h"

#include <QHash>

namespace Bralto::CodeScene {

namespace {

constexpr double Head = 28;
constexpr double Padding = 12;
constexpr double BelowHead = 4;
constexpr double Bottom = 10;
constexpr double SymbolGap = 5;

/// A text of many lines is laid out in pieces, so that painting and a growing end touch one only.
constexpr qsizetype LinesOfAPiece = 64;

void drawCopyButton(ChatCanvas& canvas, const QRectF& head, const QString& key, const QString& code)
{
    const bool isCopied = canvas.style().isOn && canvas.style().isOn(key);
    const QString words = isCopied ? QStringLiteral("Copied") : QStringLiteral("Copy");
    const QColor ink = isCopied ? canvas.tokens().done : canvas.tokens().ink3;
    const double text = canvas.width(TextRole::CaptionMedium, words);
    const double icon = canvas.u(Measure::CaptionIcon);
    const double left = head.right() - canvas.u(Padding) - text;
    canvas.line(TextRole::CaptionMedium, ink, words, {left, head.top(), text, head.height()});
    canvas.symbol({left - canvas.u(SymbolGap) - icon, head.center().y() - icon / 2, icon, icon},
                  isCopied ? QStringLiteral("checkmark") : QStringLiteral("square.on.square"), ink);
    const double reach = canvas.u(6);
    canvas.hot({QRectF(left - canvas.u(SymbolGap) - icon - reach, head.top() + canvas.u(3),
                       icon + canvas.u(SymbolGap) + text + 2 * reach, head.height() - canvas.u(6)),
                {ChatAction::Kind::CopyText, key, code},
                words,
                double(Measure::ControlRadius)});
}

} // namespace

QString label(const std::optional<QString>& language)
{
    static const QHash<QString, QString> names{
        {"js", "JavaScript"},
        {"javascript", "JavaScript"},
        {"jsx", "JavaScript"},
        {"ts", "TypeScript"},
        {"typescript", "TypeScript"},
        {"tsx", "TypeScript"},
        {"py", "Python"},
        {"python", "Python"},
        {"json", "JSON"},
        {"html", "HTML"},
        {"css", "CSS"},
        {"xml", "XML"},
        {"yaml", "YAML"},
        {"yml", "YAML"},
        {"toml", "TOML"},
        {"sql", "SQL"},
        {"cpp", "C++"},
        {"c++", "C++"},
        {"cc", "C++"},
        {"hpp", "C++"},
        {"c", "C"},
        {"h", "C"},
        {"objc", "Objective-C"},
        {"cs", "C#"},
        {"sh", "Shell"},
        {"bash", "Shell"},
        {"zsh", "Shell"},
        {"shell", "Shell"},
        {"md", "Markdown"},
        {"rb", "Ruby"},
        {"rs", "Rust"},
        {"go", "Go"},
        {"cmake", "CMake"},
        {"diff", "Difference"},
        {"php", "PHP"},
        {"svg", "SVG"},
    };
    if (!language)
        return QStringLiteral("Code");
    const QString word = language->section(u' ', 0, 0);
    const auto known = names.constFind(word.toLower());
    if (known != names.constEnd())
        return *known;
    QString name = word;
    name[0] = name[0].toUpper();
    return name;
}

double draw(ChatCanvas& canvas, const MarkdownBlocks::Code& code, const QPointF& at, double width,
            const QString& key)
{
    const Tokens& tokens = canvas.tokens();
    const double padding = canvas.u(Padding);
    const QRectF head(at, QSizeF(width, canvas.u(Head)));
    const double textWidth = width - 2 * padding;

    // The ground lies below all else, so its place is taken before the height is known.
    ChatCanvas inner(canvas.style());
    double top = head.bottom() + canvas.u(BelowHead);
    const QStringList lines = code.text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); i += LinesOfAPiece) {
        ChatText piece;
        piece.text = lines.mid(i, LinesOfAPiece).join(u'\n');
        piece.role = TextRole::CodeDifference;
        piece.ink = tokens.label;
        piece.breaksAnywhere = true;
        piece.separator = i == 0 ? QStringLiteral("\n\n") : QStringLiteral("\n");
        top += inner.text(piece, {at.x() + padding, top}, textWidth);
    }
    const double height = top + canvas.u(Bottom) - at.y();

    canvas.fill({at, QSizeF(width, height)}, canvas.u(Measure::PaneRadius), tokens.raised,
                tokens.separator);
    canvas.line(TextRole::CaptionMedium, tokens.ink3, label(code.language),
                head.adjusted(padding, 0, -canvas.u(90), 0));
    drawCopyButton(canvas, head, key, code.text);
    canvas.add(inner.take(height));
    return height;
}

} // namespace Bralto::CodeScene
