// A reader of the folder sees the old report, or none, until the new one is complete.
#include "ReportFile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace kvt::profiling {

bool writeWholeFile(const std::string& path, const std::function<void(std::ostream&)>& write) {
  const std::string partialPath = path + ".partial";
  {
    std::ofstream file(partialPath, std::ios::binary | std::ios::trunc);
    if (file) {
      write(file);
      file.close();
    }
    if (!file) {
      std::remove(partialPath.c_str());
      return false;
    }
  }
  std::error_code renameError;
  std::filesystem::rename(partialPath, path, renameError);
  if (renameError) {
    std::remove(partialPath.c_str());
    return false;
  }
  return true;
}

} // namespace kvt::profiling
