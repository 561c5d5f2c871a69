#pragma once

#include <QString>

namespace quorvane {

/// What the launcher gave this process to come to the front with (XDG_ACTIVATION_TOKEN, or
/// DESKTOP_STARTUP_ID of older ones); empty for nothing. To be asked before the toolkit takes it.
QString givenActivationToken();

/// The next window that wants to be in front may, by this token of the desktop's. Main thread.
void useActivationToken(const QString& token);

} // namespace quorvane
