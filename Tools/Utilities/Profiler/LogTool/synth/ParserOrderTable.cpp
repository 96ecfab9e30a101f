// The parser sorts a table's fields by size to save padding and walks them backwards because the
// buffer grows downwards; both are mirrored here. Only present fields are visited: this loop
// runs for every table of a multi-gigabyte log.
#include "ParserOrderTable.h"

#include <stdexcept>

namespace kvt::profiling {

void ParserOrderTable::throwSlotOutOfRange() {
  throw std::out_of_range("field slot beyond the widest table");
}

flatbuffers::uoffset_t ParserOrderTable::finish(flatbuffers::FlatBufferBuilder& builder) const {
  const flatbuffers::uoffset_t start = builder.StartTable();
  for (size_t rank = 0; rank < fieldsByWidth.size(); ++rank) {
    for (FieldSet pending = fieldsByWidth[rank]; pending != 0;) {
      const int field = std::bit_width(pending) - 1; // the later field first
      pending = FieldSet(pending & ~(1u << field));
      const auto slot = flatbuffers::voffset_t(4 + 2 * field);
      const uint64_t bits = fieldBits[size_t(field)];
      if (offsetFields & (1u << field))
        builder.AddOffset(slot, flatbuffers::Offset<void>(flatbuffers::uoffset_t(bits)));
      else if (rank == 0)
        builder.AddElement<uint64_t>(slot, bits);
      else if (rank == 1)
        builder.AddElement<uint32_t>(slot, uint32_t(bits));
      else
        builder.AddElement<uint8_t>(slot, uint8_t(bits));
    }
  }
  return builder.EndTable(start);
}

} // namespace kvt::profiling
