#include "Launch/BraltoCommandLine.h"

namespace Bralto::BraltoCommandLine {

namespace {

constexpr int Success = 0;
constexpr int Failed = 1;
constexpr int NotAvailable = 2;

constexpr char Help[] =
    "Usage: bralto [FILE, FOLDER or ADDRESS…]\n"
    "       bralto OPTION\n"
    "\n"
    "Without an option Bralto opens its window.\n"
    "\n"
    "  --install-space FOLDER  make or refresh the application of a project and\n"
    "                          print where it is\n"
    "  --deliver IDENTIFIER ADDRESS\n"
    "                          open a link in the running application of that\n"
    "                          bundle identifier; fails if there is none\n"
    "  --mcp                   serve the browser tools to an agent on standard\n"
    "                          input and output\n"
    "  --render-icon FILE      write the program's icon; not available in this\n"
    "                          version\n"
    "  --help                  show this text\n"
    "  --version               show the version\n";

/// Whether `option` stands anywhere behind the program's own path.
bool has(const QStringList& arguments, const QString& option)
{
    return arguments.indexOf(option, 1) > 0;
}

/// The arguments behind the first occurrence of `option`, if there are that many.
std::optional<QStringList> values(const QStringList& arguments, const QString& option,
                                  qsizetype count)
{
    const qsizetype index = arguments.indexOf(option, 1);
    if (index < 0 || index + count >= arguments.size())
        return std::nullopt;
    return arguments.mid(index + 1, count);
}

int refuse(const QString& option, QTextStream& err)
{
    err << "Bralto: " << option << " is not available in this version.\n";
    err.flush();
    return NotAvailable;
}

int serve(const Actions& actions)
{
    actions.serveTools();
    return Success;
}

int install(const QString& folder, const Actions& actions, Streams streams)
{
    const auto bundle = actions.installSpace(folder);
    if (!bundle) {
        streams.err << QStringLiteral("Couldn’t install the folder app: ") << bundle.error()
                    << '\n';
        streams.err.flush();
        return Failed;
    }
    streams.out << *bundle << '\n';
    streams.out.flush();
    return Success;
}

int deliver(const QString& bundleIdentifier, const QString& address, const Actions& actions,
            QTextStream& err)
{
    if (actions.deliver(bundleIdentifier, address))
        return Success;
    err << QStringLiteral("Couldn’t deliver the link: ") << bundleIdentifier
        << QStringLiteral(" isn’t running.\n");
    err.flush();
    return Failed;
}

int print(const QString& text, QTextStream& out)
{
    out << text;
    out.flush();
    return Success;
}

} // namespace

std::optional<int> handle(const QStringList& arguments, const Actions& actions, Streams streams)
{
    const QString renderIcon = QStringLiteral("--render-icon");

    if (has(arguments, QStringLiteral("--mcp")))
        return serve(actions);
    if (const auto found = values(arguments, QStringLiteral("--install-space"), 1))
        return install(found->first(), actions, streams);
    if (values(arguments, renderIcon, 1))
        return refuse(renderIcon, streams.err);
    if (const auto found = values(arguments, QStringLiteral("--deliver"), 2))
        return deliver(found->first(), found->last(), actions, streams.err);
    if (has(arguments, QStringLiteral("--help")))
        return print(QString::fromUtf8(Help), streams.out);
    if (has(arguments, QStringLiteral("--version")))
        return print(QStringLiteral("Bralto ") + actions.version + u'\n', streams.out);
    return std::nullopt;
}

} // namespace Bralto::BraltoCommandLine
