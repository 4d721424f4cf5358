#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"

namespace tavoren::simulator {

/// The firmware's calibration records. A record that is set is stored at once and in use from the
/// next reset on.
class RecordStore {
  public:
    void add(const Luid& luid, const ByteString& record);
    /// What is stored; null for a sensor that is not known.
    const ByteString* find(const Luid& luid) const;
    /// False for an unknown sensor and for a record of another format or kind of length.
    bool set(const Luid& luid, const ByteString& record);

    /// One line for each sensor: its LUID and its record, in hexadecimal digits.
    void save(const std::string& path) const;
    /// Takes over the records of a saved file; a file that is not there changes nothing. Throws
    /// `CalibrationException` for a line that is not a known sensor's record.
    void load(const std::string& path);

  private:
    struct Entry {
        Luid luid;
        ByteString record;
    };
    std::vector<Entry> entries;
};

}  // namespace tavoren::simulator
