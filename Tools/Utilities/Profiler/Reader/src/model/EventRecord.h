// One back-end event of the log, owning its strings, bytes and sub-events.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kvt::profiling {

// Codes of EventValue::dataType: the last two hex digits are the width in bits, the digit above
// them the class (0 signed, 1 unsigned, 2 floating point).
enum DataType : uint32_t {
  dataTypeI8 = 0x0008,
  dataTypeI16 = 0x0016,
  dataTypeI32 = 0x0032,
  dataTypeI64 = 0x0064,
  dataTypeU8 = 0x0108,
  dataTypeU16 = 0x0116,
  dataTypeU32 = 0x0132,
  dataTypeU64 = 0x0164,
  dataTypeF32 = 0x0232,
  dataTypeF64 = 0x0264,
  dataTypeBool8 = 0x0508,
  dataTypeBytes = 0x7FFFFFFF, // the value is in EventRecord::bytes
};

// A tagged 8-byte value. Narrower values sit in the low bytes of payload; a 32-bit float is its
// bit pattern in the low 32 bits.
struct EventValue {
  uint32_t dataType = dataTypeBytes;
  uint64_t payload = 0;
};

struct EventRecord {
  uint32_t eventType = 0;
  EventValue value;
  std::vector<uint8_t> bytes; // the value of a byte-vector event
  std::string identifier;     // "null" when the log gave none
  std::string message;
  uint32_t unit = 0; // unit code: 2 bytes, 3 cycles, 4 count, 5 object, else us
  uint64_t timestamp = 0;
  uint64_t count = 1; // executions merged into this record
  std::vector<EventRecord> children;
};

using EventList = std::vector<EventRecord>;

} // namespace kvt::profiling
