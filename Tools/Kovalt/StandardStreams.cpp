#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace KovaltTool {

void openStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
}

RawInput::RawInput()
{
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0 || tcgetpgrp(STDIN_FILENO) != getpgrp())
        return;
    m_former = settings;
    cfmakeraw(&settings);
    settings.c_oflag = m_former->c_oflag;
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

RawInput::~RawInput()
{
    if (m_former)
        tcsetattr(STDIN_FILENO, TCSADRAIN, &*m_former);
}

} // namespace KovaltTool
