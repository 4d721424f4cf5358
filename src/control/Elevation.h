#pragma once

namespace tavoren {

/// Whether the process has the rights that the bus driver demands; false if the system cannot tell.
bool processIsElevated();

}  // namespace tavoren
