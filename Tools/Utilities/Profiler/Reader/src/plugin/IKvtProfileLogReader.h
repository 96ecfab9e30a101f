// The abstract reader a host holds; the concrete reader adds its operations after these slots.
#pragma once

#include <string>

namespace kvt::profiling {

template <typename Level> class IKvtProfileLogReader {
public:
  // Writes the reader's outputs to the named file; false when that failed.
  virtual bool writeOutputs(const std::string& outputPath) = 0;
  virtual ~IKvtProfileLogReader() = default;
  // The saved log header as text, empty when the log had none.
  virtual std::string printHeaderDetails() = 0;
  // Dispatches the next message of the current chunk; false at the chunk's end.
  virtual bool readNextMessage() = 0;
};

} // namespace kvt::profiling
