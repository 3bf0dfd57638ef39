#pragma once

#include <QString>

namespace Bralto {

/// An advisory lock on a file of its own, held by one object at a time, in whichever process, and
/// let go when it or its process ends. The file is made if it isn't there, and stays. Any thread.
class FileLock {
public:
    enum class Wait { Yes, No };

    FileLock(const QString& path, Wait wait);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

    /// Whether this object holds the lock: another one may have it, or there may be no place for
    /// the file.
    [[nodiscard]] bool isHeld() const { return m_isHeld; }
    /// Whether the file could be opened at all.
    [[nodiscard]] bool isOpen() const { return m_file >= 0; }

    /// Whether anyone holds the lock. Never in the way of who wants to take it, and makes no file.
    [[nodiscard]] static bool isTaken(const QString& path);

private:
    int m_file = -1;
    bool m_isHeld = false;
};

} // namespace Bralto
