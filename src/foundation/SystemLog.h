#pragma once

#include <QString>

namespace quorvane {

/// The log of the operating system, beside the product's own. Any thread; nothing throws.
class SystemLog {
  public:
    virtual ~SystemLog() = default;
    virtual void log(const QString& message) = 0;
};

} // namespace quorvane
