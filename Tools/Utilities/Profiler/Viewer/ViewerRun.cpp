// Driving a reader library through its exports, as any host of it does.
#include "ViewerRun.h"

#include "ProgressLine.h"
#include "ReadProgress.h"
#include "ReaderLibrary.h"
#include "ReaderLocation.h"
#include "StderrLogger.h"
#include "plugin/KvtProfileLogReader.h"

#include <exception>
#include <iostream>
#include <memory>

namespace kvt::profiling {

namespace {

int runReader(const ReaderExports& exports, const ViewerOptions& options) {
  const std::unique_ptr<KvtReader, DeleteReaderFunction> reader(
      exports.createReader(options.inputPath, options.visibilityLevel), exports.deleteReader);
  if (!reader) {
    printDiagnostic("the reader library could not create a reader");
    return exitFailure;
  }
  // parseLog is a later slot of the concrete reader; every reader library derives from it.
  auto& concrete = static_cast<KvtProfileLogReader&>(*reader);
  bool parsed = false;
  {
    // The line is wiped before the outputs are written.
    const ReadProgress progress(options.inputPath, standardErrorIsTerminal());
    parsed = concrete.parseLog(options.extendedBackendReport);
  }
  if (!parsed) {
    printDiagnostic("cannot parse the log " + options.inputPath);
    return exitFailure;
  }
  const bool written = reader->writeOutputs(options.outputPath);
  std::cout.flush();
  if (!written) {
    printDiagnostic("the reader could not write its outputs" +
                    (options.outputPath.empty() ? std::string(" (no --output given)")
                                                : " to " + options.outputPath));
    return exitFailure;
  }
  return exitSuccess;
}

} // namespace

int runViewer(const ViewerOptions& options) {
  std::string error;
  const std::optional<std::filesystem::path> libraryPath =
      findReaderLibrary(options.reader, executablePath().parent_path(), error);
  if (!libraryPath) {
    printDiagnostic(error);
    return exitFailure;
  }
  const std::optional<ReaderLibrary> library = ReaderLibrary::open(*libraryPath, error);
  if (!library) {
    printDiagnostic(error);
    return exitFailure;
  }
  const ReaderExports& exports = library->exports();
  exports.registerLogger(logToStderr, options.logLevel, 0);
  int exitCode = exitFailure;
  // Allocation failures are the one error the library lets through as an exception.
  try {
    exitCode = runReader(exports, options);
  } catch (const std::exception& failure) {
    printDiagnostic(std::string("the reader failed: ") + failure.what());
  }
  exports.unregisterLogger();
  return exitCode;
}

} // namespace kvt::profiling
