#include "Workspace/Workspace.h"

#include "Base/Paths.h"
#include "Projects/ProjectUse.h"

#include <QFileInfo>

namespace Bralto {

namespace {

/// The folder that a link names, if there is one.
std::optional<QString> existingFolder(const QString& path)
{
    if (!path.startsWith(u'/') || !QFileInfo(path).isDir())
        return std::nullopt;
    return Paths::standardised(path);
}

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace

void Workspace::perform(const BraltoLink& link)
{
    const auto isOpenHere = [this](const QString& folder) {
        return m_root && m_root->path() == folder;
    };
    std::visit(Overloaded{[&](const BraltoLink::Open& open) {
                              const auto folder = existingFolder(open.path);
                              if (folder && isOpenHere(*folder))
                                  openConsoleIfNew();
                              else if (folder)
                                  openFolder(*folder, {});
                          },
                          [&](const BraltoLink::Reveal& reveal) {
                              if (const auto folder = existingFolder(reveal.path))
                                  openFolder(*folder, {});
                          },
                          [&](const BraltoLink::New& create) {
                              createProject(create.name,
                                            ProjectUse::currentRoot(m_services.defaults.shared,
                                                                    m_services.paths),
                                            StartClaude::Yes);
                          },
                          [&](const BraltoLink::Resume& resume) {
                              const auto folder = existingFolder(resume.path);
                              if (folder && isOpenHere(*folder))
                                  m_terminal->resumeClaude(resume.session);
                              else if (folder)
                                  openFolder(*folder, {link.url().toString(QUrl::FullyEncoded)});
                          }},
               link.request);
}

} // namespace Bralto
