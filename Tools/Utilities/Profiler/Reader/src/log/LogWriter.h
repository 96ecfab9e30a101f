// Writes profiling logs from plain descriptions, for tests and tools. Every field is optional so
// that a description can leave out what a real writer might drop, required fields included.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kvt::profiling {

struct EventSpec {
  std::optional<std::string> identifier;
  std::optional<uint32_t> eventType;
  std::optional<uint64_t> valueU64;
  std::optional<uint32_t> unit;
  std::optional<std::vector<EventSpec>> children;
  std::optional<uint32_t> valueType;
  std::optional<int64_t> valueI64;
  std::optional<float> valueF32;
  std::optional<std::vector<uint8_t>> valueBytes;
  std::optional<std::string> message;
  std::optional<uint64_t> timestamp;
  std::optional<double> valueF64;
};

struct TimingSpec {
  std::optional<uint64_t> start;
  std::optional<uint64_t> end;
};

struct MessageSpec {
  std::optional<uint64_t> stampTimestamp = 0; // nullopt leaves out the required stamp table
  std::optional<int8_t> methodType;
  std::optional<TimingSpec> timing = TimingSpec{}; // nullopt leaves out the required timing
  std::optional<int8_t> visibility;
  std::optional<std::vector<EventSpec>> events;
  std::optional<std::string> graphName;
};

struct HeaderSpec {
  std::optional<float> timeScale;
  std::optional<uint64_t> epochTimestampUs;
  std::optional<uint64_t> steadyClockTimestamp;
  std::optional<std::string> netRunVersion;
  std::optional<std::string> backendVersion;
};

struct ChunkSpec {
  std::optional<HeaderSpec> header;
  std::optional<std::vector<MessageSpec>> messages;
};

// One chunk as it stands in a log file: the 4-byte little-endian size, then the buffer.
std::vector<uint8_t> buildChunk(const ChunkSpec& chunk);

// Frames a finished buffer as a chunk. The buffer is aligned from its own first byte, which is
// what the reader verifies; a FlatBuffers size-prefixed buffer is aligned from its prefix
// instead and so fails the alignment checks of 8-byte fields.
std::vector<uint8_t> frameChunk(std::span<const uint8_t> buffer);

// The chunks one after the other, as a log file holds them.
std::vector<uint8_t> buildLog(std::span<const ChunkSpec> chunks);

// Writes bytes to path, replacing the file; false when it cannot be written.
bool writeFileBytes(const std::string& path, std::span<const uint8_t> bytes);

} // namespace kvt::profiling
