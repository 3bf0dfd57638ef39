#pragma once

#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <variant>

namespace Bralto {

/// An address of the scheme "bralto": how another process asks the program for something.
struct BraltoLink {
    static constexpr char Scheme[] = "bralto";

    struct Open {
        QString path;
        bool operator==(const Open&) const = default;
    };
    struct Reveal {
        QString pane;
        QString path;
        bool operator==(const Reveal&) const = default;
    };
    struct New {
        QString name;
        bool operator==(const New&) const = default;
    };
    struct Resume {
        QString path;
        QUuid session;
        bool operator==(const Resume&) const = default;
    };

    std::variant<Open, Reveal, New, Resume> request;

    /// The link that `url` spells, or nothing. The first value of a name wins.
    [[nodiscard]] static std::optional<BraltoLink> parse(const QUrl& url);

    /// The address of this link: percent-encoded so that any path survives it.
    [[nodiscard]] QUrl url() const;

    /// `raw` trimmed of white space, if it can name a project: not empty, no leading ".", and none
    /// of "/", ":" and NUL.
    [[nodiscard]] static std::optional<QString> projectName(const QString& raw);

    bool operator==(const BraltoLink&) const = default;
};

} // namespace Bralto
