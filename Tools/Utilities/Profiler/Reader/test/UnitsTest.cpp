// The value text of every data type code, from the payload bits a record keeps.
#include "text/Units.h"
#include "model/EventRecord.h"

#include <gtest/gtest.h>

#include <bit>

namespace kvt::profiling {
namespace {

TEST(Units, FormatValue) {
  struct Case {
    const char* what;
    uint32_t dataType;
    uint64_t payload;
    std::string text;
  };
  const Case cases[] = {
      {"signed 8-bit sign-extends the low byte", dataTypeI8, 0xFF, "-1"},
      {"signed 8-bit ignores the high bytes", dataTypeI8, 0x1234'0000'0000'007F, "127"},
      {"signed 16-bit", dataTypeI16, 0x8000, "-32768"},
      {"signed 32-bit", dataTypeI32, 0xFFFF'FFFF'FFFF'FFFE, "-2"},
      {"unsigned 8-bit of the same byte", dataTypeU8, 0xFF, "255"},
      {"unsigned 16-bit", dataTypeU16, 0x1'FFFF, "65535"},
      {"unsigned 32-bit", dataTypeU32, 0x1'0000'0007, "7"},
      {"32-bit float", dataTypeF32, std::bit_cast<uint32_t>(1.5f), "1.500000"},
      {"32-bit float ignores the high bytes", dataTypeF32,
       0xABCD'0000'0000'0000 | std::bit_cast<uint32_t>(-0.25f), "-0.250000"},
      {"64-bit float", dataTypeF64, std::bit_cast<uint64_t>(2.0 / 3.0), "0.666667"},
      {"boolean of another byte", dataTypeBool8, 0x17, "23"},
      {"byte vector", dataTypeBytes, 0, ""},
      {"unknown code", 0x0364, 42, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(formatValue(c.dataType, c.payload), c.text);
  }
}

} // namespace
} // namespace kvt::profiling
