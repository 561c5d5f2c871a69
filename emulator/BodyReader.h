#pragma once

#include "emulator/Call.h"
#include "emulator/Disturbance.h"
#include "emulator/Exchange.h"
#include "emulator/UploadBody.h"

namespace quorvane::emulator {

/// Reads a body into `call`; an upload's bytes go to `sink` instead. False when it is not there
/// as a whole: the client broke off, a fault wants so, or it is too large to be meant.
bool readBody(Exchange& exchange, Call& call, ByteSink* sink, const Behaviour& behaviour,
              const Disturbance& fault);

} // namespace quorvane::emulator
