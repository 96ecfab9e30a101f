// Each log lives only as long as its statistics pass: the comparison needs the values, not the
// files, and a calibration makes thousands of them.
#include "SynthComparison.h"

#include "statistics/StatisticsPass.h"

#include <filesystem>
#include <sstream>

namespace kvt::profiling {

namespace {

bool synthesizeAndRead(SynthOptions options, const std::string& path, std::ostream& err,
                       RunStatistics& run) {
  options.outputPath = path;
  const std::optional<std::string> failure = synthLog(options, err, false);
  if (failure)
    err << *failure << '\n';
  const bool read = !failure && readRunStatistics(path, {}, run);
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
  return read;
}

} // namespace

std::optional<Comparison> compareSynthesizedRuns(SynthOptions base, SynthOptions next,
                                                 const ComparisonOptions& options,
                                                 const std::string& dir, std::ostream& err) {
  RunStatistics baseRun;
  RunStatistics nextRun;
  const std::filesystem::path folder(dir);
  if (!synthesizeAndRead(std::move(base), (folder / "base.log").string(), err, baseRun) ||
      !synthesizeAndRead(std::move(next), (folder / "new.log").string(), err, nextRun))
    return std::nullopt;
  return compareRuns(baseRun, nextRun, options);
}

SynthOptions calibrationRun(SynthOptions model, uint64_t pair, bool isNew) {
  model.noiseSeed = 2 * pair + (isNew ? 1 : 0);
  return model;
}

} // namespace kvt::profiling
