// Chunk verification and the message cursor.
#include "FlatBufferReaderUtil.h"

#include "plugin/Logging.h"

namespace kvt::profiling {

namespace {

bool verifyProfileLog(std::span<const uint8_t> buffer) {
  flatbuffers::Verifier::Options options;
  options.max_depth = ChunkLimits::maxDepth;
  options.max_tables = ChunkLimits::maxTables;
  options.check_alignment = true;
  options.check_nested_flatbuffers = true;
  flatbuffers::Verifier verifier(buffer.data(), buffer.size(), options);
  return verifier.VerifyBuffer<schema::ProfileLog>(nullptr);
}

} // namespace

bool hasPlausibleRoot(std::span<const uint8_t> buffer) {
  if (buffer.size() < ChunkLimits::minBytes || buffer.size() >= ChunkLimits::maxBytes)
    return false;
  const uint32_t rootOffset = flatbuffers::ReadScalar<uint32_t>(buffer.data());
  return rootOffset != 0 && (rootOffset & 0x80000000u) == 0 && rootOffset < buffer.size();
}

bool verifyChunk(std::span<const uint8_t> buffer) {
  return hasPlausibleRoot(buffer) && verifyProfileLog(buffer);
}

bool FlatBufferReaderUtil::loadBuffer(std::span<const uint8_t> buffer, Verification verification) {
  const bool valid = verification == Verification::pending ? verifyChunk(buffer)
                                                           : verification == Verification::passed;
  if (!valid) {
    logMessage(logError, "Corrupted flatbuffer binary stream");
    return false;
  }
  rootTable = schema::GetProfileLog(buffer.data());
  if (!headerTable)
    headerTable = rootTable->header();
  messages = rootTable->messages();
  messageCounter = 0;
  return true;
}

const schema::Message* FlatBufferReaderUtil::nextMessage() {
  if (messages && messageCounter < messages->size())
    return messages->Get(flatbuffers::uoffset_t(messageCounter++));
  logMessage(logVerbose, "profiling::FlatBufferReaderUtil no more messages! (Message Counter: %d)",
             int(messageCounter));
  return nullptr;
}

} // namespace kvt::profiling
