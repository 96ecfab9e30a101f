// Unit codes and tagged values as text.
#pragma once

#include <cstdint>
#include <string>

namespace kvt::profiling {

// Unit codes of EventRecord::unit; every other code means microseconds.
enum UnitCode : uint32_t {
  unitBytes = 2,
  unitCycles = 3,
  unitCount = 4,
  unitObject = 5, // the value is raw bytes, dumped to a file rather than printed
};

// The CSV unit column: "BYTES", "CYCLES", "COUNT", "OBJECT"; any other code is "US".
std::string unitName(uint32_t unit);
// The unit after a value in a report, with its leading blank: " bytes", ..., " us".
std::string unitSuffix(uint32_t unit);
// The value as text by its data-type code; empty for codes it does not know.
// formatValue(dataTypeI8, 0xFF) == "-1", formatValue(dataTypeF32, bits of 1.5f) == "1.500000".
std::string formatValue(uint32_t dataType, uint64_t payload);

} // namespace kvt::profiling
