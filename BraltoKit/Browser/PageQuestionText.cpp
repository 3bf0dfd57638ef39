#include "Browser/PageQuestionText.h"

#include "Browser/PageAddress.h"

namespace Bralto::PageQuestionText {

namespace {

/// What a card has room for, whatever a page says.
QString clipped(const QString& text)
{
    const QString shown = text.left(LongestText).section(u'\n', 0, MostLines - 1);
    return shown.size() < text.size() ? shown + QStringLiteral("…") : text;
}

} // namespace

Words words(const PageQuestion& question)
{
    const QString asker = PageAddress::asker(question.origin);
    const QString who = asker.isEmpty() ? QStringLiteral("This page") : asker;
    const QString text = clipped(question.text);
    switch (question.kind) {
    case PageQuestion::Kind::Alert:
        return {who + QStringLiteral(" says"), text, QStringLiteral("OK"), {}};
    case PageQuestion::Kind::Confirm:
    case PageQuestion::Kind::Prompt:
        return {who + QStringLiteral(" asks"), text, QStringLiteral("OK"),
                QStringLiteral("Cancel")};
    case PageQuestion::Kind::LeavePage:
        return {QStringLiteral("Leave this page?"),
                QStringLiteral("Changes that you made may not be saved."), QStringLiteral("Leave"),
                QStringLiteral("Stay")};
    case PageQuestion::Kind::Permission:
        return {who + QStringLiteral(" wants to ") + text,
                {},
                QStringLiteral("Allow"),
                QStringLiteral("Don’t Allow")};
    case PageQuestion::Kind::Login:
        return {QStringLiteral("Sign in to ") + who, text, QStringLiteral("Sign In"),
                QStringLiteral("Cancel")};
    }
    return {};
}

} // namespace Bralto::PageQuestionText
