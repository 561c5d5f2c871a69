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

std::optional<Fault> faultOf(const std::exception& error) {
    const auto* own = dynamic_cast<const Error*>(&error);
    return own != nullptr ? own->fault() : std::nullopt;
}

bool isMachines(const std::exception& error) {
    const auto fault = faultOf(error);
    return fault && kindOf(fault->code) == FaultKind::machine;
}

bool isSystems(const std::exception& error) {
    const auto fault = faultOf(error);
    return isMachines(error) || (fault && fault->code == FaultCode::fileTrouble);
}

} // namespace quorvane
