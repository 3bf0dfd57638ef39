#include "Platform/LocalPaneProcess.h"

#include <QDebug>

namespace Bralto {

namespace {

void warn(const std::string& line)
{
    qWarning("A pane's terminal: %s", line.c_str());
}

} // namespace

LocalPaneProcess::LocalPaneProcess(Kovalt::LocalProcessDelegate& delegate, Kovalt::RunLoop& loop)
    : m_process(delegate, loop, Kovalt::Delivery::Sliced, warn)
{
}

} // namespace Bralto
