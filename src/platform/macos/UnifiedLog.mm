#include "platform/macos/UnifiedLog.h"

#import <os/log.h>

namespace quorvane {

UnifiedLog::UnifiedLog() : log_(os_log_create("com.quorvane", "app")) {}

void UnifiedLog::log(const QString& message) {
    os_log(static_cast<os_log_t>(log_), "%{public}s", message.toUtf8().constData());
}

} // namespace quorvane
