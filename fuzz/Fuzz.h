#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "common/CalibrationException.h"
#include "common/CmdLineException.h"
#include "common/MathException.h"
#include "common/SamplingException.h"
#include "common/SmhiException.h"
#include "files/TemporaryFolder.h"
#include "firmware/Wire.h"
#include "frame/Logger.h"

// What the fuzz targets share. A target is one program: it takes bytes, uses one unit of the tool
// as the tool does, and ends the process when a promise of that unit is broken.

namespace tavoren::fuzz {

/// One input: nothing reaches the console, no keyboard answers, the log of the last input is gone.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest(data, size) {
        std::cout.rdbuf(nullptr);
        std::cin.rdbuf(nullptr);
        Logger::clear();
    }

    /// The next byte, 0 behind the last one.
    std::uint8_t takeByte() {
        if (rest.empty())
            return 0;
        const std::uint8_t byte = rest.front();
        rest = rest.subspan(1);
        return byte;
    }
    /// Everything up to the next `separator`, which goes with it.
    std::string takeUntil(char separator) {
        const std::string all = text();
        const std::string front = all.substr(0, all.find(separator));
        rest = rest.subspan(std::min(front.size() + 1, rest.size()));
        return front;
    }
    ByteSpan bytes() const { return rest; }
    ByteString byteString() const { return {rest.begin(), rest.end()}; }
    std::string text() const { return {rest.begin(), rest.end()}; }

  private:
    ByteSpan rest;
};

/// The folder for the files of all inputs, which is the working directory as well.
inline const TemporaryFolder& workingFolder() {
    struct Entered : TemporaryFolder {
        Entered() { std::filesystem::current_path(path); }
    };
    static const Entered folder;
    return folder;
}

/// Ends the process, which makes the input a finding.
inline void require(bool promise, std::string_view broken) {
    if (promise)
        return;
    std::cerr << "Broken promise: " << broken << '\n';
    std::abort();
}

/// Whether the action went through; the tool's own exceptions are answers, any other is a finding.
template <typename Action>
bool accepts(Action action) {
    try {
        action();
        return true;
    } catch (const CalibrationException&) {
    } catch (const CmdLineException&) {
    } catch (const MathException&) {
    } catch (const SamplingException&) {
    } catch (const SmhiException&) {
    }
    return false;
}

}  // namespace tavoren::fuzz
