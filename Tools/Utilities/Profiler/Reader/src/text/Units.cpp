// Unit codes and tagged values as text.
#include "Units.h"

#include "model/EventRecord.h"

#include <bit>
#include <cstdio>

namespace kvt::profiling {

namespace {

// "%f" into a buffer sized by a measuring pass, so that 1e300 prints all of its digits.
std::string formatFixed(double value) {
  const int length = std::snprintf(nullptr, 0, "%f", value);
  if (length <= 0)
    return {};
  std::string text(size_t(length) + 1, '\0');
  std::snprintf(text.data(), text.size(), "%f", value);
  text.resize(size_t(length));
  return text;
}

} // namespace

std::string unitName(uint32_t unit) {
  switch (unit) {
  case unitBytes:
    return "BYTES";
  case unitCycles:
    return "CYCLES";
  case unitCount:
    return "COUNT";
  case unitObject:
    return "OBJECT";
  default:
    return "US";
  }
}

std::string unitSuffix(uint32_t unit) {
  switch (unit) {
  case unitBytes:
    return " bytes";
  case unitCycles:
    return " cycles";
  case unitCount:
    return " count";
  case unitObject:
    return " object";
  default:
    return " us";
  }
}

std::string formatValue(uint32_t dataType, uint64_t payload) {
  switch (dataType) {
  case dataTypeI8:
    return std::to_string(int8_t(payload));
  case dataTypeI16:
    return std::to_string(int16_t(payload));
  case dataTypeI32:
    return std::to_string(int32_t(payload));
  case dataTypeI64:
    return std::to_string(int64_t(payload));
  case dataTypeU8:
  case dataTypeBool8:
    return std::to_string(uint8_t(payload));
  case dataTypeU16:
    return std::to_string(uint16_t(payload));
  case dataTypeU32:
    return std::to_string(uint32_t(payload));
  case dataTypeU64:
    return std::to_string(payload);
  case dataTypeF32:
    return formatFixed(std::bit_cast<float>(uint32_t(payload)));
  case dataTypeF64:
    return formatFixed(std::bit_cast<double>(payload));
  default:
    return {};
  }
}

} // namespace kvt::profiling
