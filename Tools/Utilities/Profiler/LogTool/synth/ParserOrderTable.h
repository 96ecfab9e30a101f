// Builds tables with the layout FlatBuffers' schema parser gives JSON written in schema order, so
// that a log built here comes back byte for byte from `dump` and `build`.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

namespace kvt::profiling {

// The fields of one table, stored as the parser stores them: the widest first (offsets count as 4
// bytes) and, among equally wide ones, the later field of the schema first. Every added field is
// stored, even when it holds its default value. The log schema's fields are 8, 4 or 1 bytes wide.
class ParserOrderTable {
public:
  static constexpr size_t maxFields = 12; // the fields of Event, the widest table of the schema

  template <typename T> void addScalar(flatbuffers::voffset_t slot, T value) {
    static_assert(std::is_arithmetic_v<T> && sizeof(T) != 2);
    uint64_t bits = 0;
    if constexpr (sizeof(T) == 8)
      bits = std::bit_cast<uint64_t>(value);
    else if constexpr (sizeof(T) == 4)
      bits = std::bit_cast<uint32_t>(value);
    else
      bits = std::bit_cast<uint8_t>(value);
    add<sizeof(T)>(slot, bits, false);
  }

  // A null offset stands for an absent field and is left out.
  template <typename T> void addOffset(flatbuffers::voffset_t slot, flatbuffers::Offset<T> value) {
    if (!value.IsNull())
      add<sizeof(flatbuffers::uoffset_t)>(slot, value.o, true);
  }

  // Stores the fields as one table in builder, which must not be inside another object.
  flatbuffers::uoffset_t finish(flatbuffers::FlatBufferBuilder& builder) const;

private:
  using FieldSet = uint16_t; // one bit per field number
  static_assert(maxFields <= 16);

  template <size_t widthBytes> void add(flatbuffers::voffset_t slot, uint64_t bits, bool isOffset) {
    constexpr size_t rank = widthBytes == 8 ? 0 : widthBytes == 4 ? 1 : 2;
    const FieldSet bit = fieldBit(slot);
    fieldBits[size_t(std::countr_zero(bit))] = bits;
    fieldsByWidth[rank] |= bit;
    offsetFields = FieldSet(isOffset ? offsetFields | bit : offsetFields & ~bit);
  }

  static FieldSet fieldBit(flatbuffers::voffset_t slot) {
    const size_t field = size_t(slot / 2) - 2;
    if (slot < 4 || field >= maxFields)
      throwSlotOutOfRange();
    return FieldSet(1u << field);
  }

  // A slot beyond maxFields is a programming error: throws std::out_of_range.
  [[noreturn]] static void throwSlotOutOfRange();

  std::array<uint64_t, maxFields> fieldBits{};
  std::array<FieldSet, 3> fieldsByWidth{}; // fields of 8, 4 and 1 bytes, in that order
  FieldSet offsetFields = 0;
};

} // namespace kvt::profiling
