#include "Platform/FileLock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace Bralto {

namespace {

/// The whole file, for one writer.
struct flock wholeFile()
{
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

} // namespace

FileLock::FileLock(const QString& path, Wait wait)
    : m_file(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_file < 0)
        return;
    // Locks of the open file, not of the process: two objects in one process exclude each other.
    const int command = wait == Wait::Yes ? F_OFD_SETLKW : F_OFD_SETLK;
    struct flock range = wholeFile();
    int result = 0;
    do {
        result = ::fcntl(m_file, command, &range);
    } while (result != 0 && errno == EINTR);
    m_isHeld = result == 0;
}

FileLock::~FileLock()
{
    if (m_file >= 0)
        ::close(m_file);
}

bool FileLock::isTaken(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
    if (file < 0)
        return false;
    struct flock range = wholeFile();
    const bool isTaken = ::fcntl(file, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
    ::close(file);
    return isTaken;
}

} // namespace Bralto
