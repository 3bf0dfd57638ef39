#include "Workspace/FileOperations.h"

#include "Base/Paths.h"
#include "Editor/FileKind.h"

#include <QFile>

#include <filesystem>
#include <system_error>

namespace Bralto::FileOperations {

namespace fs = std::filesystem;

namespace {

fs::path native(const QString& path)
{
    return fs::path(QFile::encodeName(path).toStdString());
}

std::optional<QString> failure(const std::error_code& error)
{
    if (!error)
        return std::nullopt;
    return QString::fromLocal8Bit(error.message().c_str());
}

/// Whether the name is taken, also by a link that leads nowhere.
bool isTaken(const fs::path& path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

} // namespace

std::optional<QString> createFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return file.errorString();
    return std::nullopt;
}

std::optional<QString> createFolder(const QString& path)
{
    std::error_code error;
    fs::create_directories(native(path), error);
    return failure(error);
}

std::optional<QString> rename(const QString& from, const QString& to)
{
    if (isTaken(native(to)))
        return failure(std::make_error_code(std::errc::file_exists));
    std::error_code error;
    fs::rename(native(from), native(to), error);
    return failure(error);
}

std::optional<QString> duplicate(const QString& path)
{
    const QString folder = Paths::parent(path) + u'/';
    const QString name = Paths::lastComponent(path);
    int number = 1;
    while (isTaken(native(folder + copyName(name, number))))
        ++number;
    const fs::path source = native(path);
    const fs::path target = native(folder + copyName(name, number));

    std::error_code error;
    const bool isFolder = fs::is_directory(fs::symlink_status(source, error));
    // Made by hand, since copying into a folder that somebody else made would mix the two.
    if (isFolder && !fs::create_directory(target, error))
        return failure(error ? error : std::make_error_code(std::errc::file_exists));
    fs::copy(source, target, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (isFolder ? bool(error) : error && error != std::errc::file_exists) {
        std::error_code ignored;
        fs::remove_all(target, ignored);
    }
    return failure(error);
}

QString copyName(const QString& name, int number)
{
    const QString extension = FileKinds::extension(name);
    const QString base = extension.isEmpty() ? name : name.chopped(extension.size() + 1);
    const QString copy = number == 1 ? base + QStringLiteral(" copy")
                                     : base + QStringLiteral(" copy %1").arg(number);
    return extension.isEmpty() ? copy : copy + u'.' + extension;
}

} // namespace Bralto::FileOperations
