#pragma once

#include <string>

#include "firmware/Wire.h"

namespace tavoren::simulator {

/// A request of the tool in words, such as "set-property 0073000000000002 reporting start".
std::string describeRequest(ByteSpan message);
/// A message of the hub in words, such as "answer to command 4, status 0, 42 bytes".
std::string describeReply(ByteSpan message);

}  // namespace tavoren::simulator
