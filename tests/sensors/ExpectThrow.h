#pragma once

#include <gtest/gtest.h>

#include <string>

#include "common/CalibrationException.h"

namespace tavoren {

/// The text of the exception of this type that the action throws; a remark if it throws none.
template <typename Exception, typename Action>
std::string textOf(Action action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

}  // namespace tavoren
