// Logs are read on threads of their own, each into its own slot, so the order of the runs is the
// order of the paths whatever order the threads finish in.
#include "HistoryInputs.h"

#include "StatsJsonFigures.h"
#include "statistics/StatisticsPass.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace kvt::profiling {

namespace {

namespace fs = std::filesystem;

// The problem with the run at path, empty when it was read.
std::string readRun(const std::string& path, const HistoryReadOptions& options,
                    RunSeriesFigures& run) {
  std::ifstream file(path, std::ios::binary);
  if (!file)
    return "cannot open it";
  int first = file.get();
  while (first != EOF && std::isspace(first))
    first = file.get();
  if (first == '{') {
    std::ostringstream text;
    text << char(first) << file.rdbuf();
    std::string problem;
    run.source = path;
    return parseStatsJsonFigures(text.str(), options.figure, run, problem) ? "" : problem;
  }
  file.close();
  StatisticsOptions pass;
  pass.skipFirst = options.skipFirst;
  RunStatistics statistics;
  if (!readRunStatistics(path, pass, statistics))
    return "neither a log the reader takes nor a stats JSON";
  run = figuresOfRun(statistics, options.figure, path);
  return {};
}

} // namespace

std::optional<HistoryInputError> expandRunLists(const std::vector<std::string>& arguments,
                                                std::vector<std::string>& paths) {
  for (const std::string& argument : arguments) {
    if (!argument.starts_with('@')) {
      paths.push_back(argument);
      continue;
    }
    const fs::path listPath = argument.substr(1);
    std::ifstream list(listPath);
    if (!list)
      return HistoryInputError{listPath.string(), "cannot open the list"};
    for (std::string line; std::getline(list, line);) {
      if (!line.empty() && line.back() == '\r')
        line.pop_back();
      if (line.empty() || line.front() == '#')
        continue;
      const fs::path path = line;
      paths.push_back(path.is_relative() ? (listPath.parent_path() / path).string() : line);
    }
  }
  return std::nullopt;
}

std::optional<HistoryInputError> readHistoryRuns(const std::vector<std::string>& paths,
                                                 const HistoryReadOptions& options,
                                                 std::vector<RunSeriesFigures>& runs) {
  std::vector<RunSeriesFigures> read(paths.size());
  std::vector<std::string> problems(paths.size());
  std::atomic<size_t> next{0};
  const auto work = [&] {
    for (size_t i = next++; i < paths.size(); i = next++)
      problems[i] = readRun(paths[i], options, read[i]);
  };
  std::vector<std::jthread> workers;
  const size_t extra = std::min<size_t>(std::max<uint32_t>(options.threads, 1), paths.size());
  for (size_t i = 1; i < extra; ++i)
    workers.emplace_back(work);
  work();
  workers.clear();
  for (size_t i = 0; i < paths.size(); ++i)
    if (!problems[i].empty())
      return HistoryInputError{paths[i], problems[i]};
  runs = std::move(read);
  return std::nullopt;
}

} // namespace kvt::profiling
