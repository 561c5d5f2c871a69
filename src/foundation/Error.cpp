#include "foundation/Error.h"

namespace quorvane {

Error::Error(QString description, std::optional<Fault> fault)
    : description_(std::move(description)),
      utf8_(description_.toUtf8()),
      fault_(std::move(fault)) {}

QString describe(const std::exception& error) {
    if (const auto* own = dynamic_cast<const Error*>(&error))
        return own->localizedDescription();
    return QString::fromUtf8(error.what());
}

} // namespace quorvane
