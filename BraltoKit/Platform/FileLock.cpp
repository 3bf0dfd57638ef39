#include "Platform/FileLock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Bralto {

FileLock::FileLock(const QString& path, Wait wait)
    : m_file(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_file < 0)
        return;
    const int operation = wait == Wait::Yes ? LOCK_EX : LOCK_EX | LOCK_NB;
    int result = 0;
    do {
        result = ::flock(m_file, operation);
    } while (result != 0 && errno == EINTR);
    m_isHeld = result == 0;
}

FileLock::~FileLock()
{
    if (m_file >= 0)
        ::close(m_file);
}

} // namespace Bralto
