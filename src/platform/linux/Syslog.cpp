#include "platform/linux/Syslog.h"

#include <syslog.h>

namespace quorvane {

Syslog::Syslog() {
    ::openlog("com.quorvane", LOG_PID, LOG_USER);
}

void Syslog::log(const QString& message) {
    ::syslog(LOG_NOTICE, "%s", message.toUtf8().constData());
}

} // namespace quorvane
