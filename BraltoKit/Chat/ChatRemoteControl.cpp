#include "Chat/ChatRemoteControl.h"

namespace Bralto {

void ChatRemoteControl::apply(const QString& state, const std::optional<QString>& detail)
{
    if (state == u"ready") {
        phase = On{false};
    } else if (state == u"connected") {
        phase = On{true};
    } else if (state == u"connecting" || state == u"reconnecting") {
        phase = Starting{};
    } else if (state == u"failed") {
        phase = Failed{detail.value_or(QStringLiteral("Remote Control stopped"))};
    } else if (state == u"off" || state == u"disabled" || state == u"closed") {
        phase = Off{};
        sessionUrl.reset();
    }
}

} // namespace Bralto
