#pragma once

#include "emulator/Call.h"
#include "emulator/Exchange.h"
#include "emulator/Fault.h"
#include "emulator/UploadBody.h"

namespace quorvane::emulator {

enum class BodyEnd {
    complete,
    brokenOff, ///< by the client
    dropped,   ///< as a fault wanted
    tooLarge,
};

/// Reads a body into `call`: an upload's is only summed up, any other is kept whole.
BodyEnd readBody(Exchange& exchange, Call& call, UploadBody* upload, const Behaviour& behaviour,
                 const Fault& fault);

} // namespace quorvane::emulator
