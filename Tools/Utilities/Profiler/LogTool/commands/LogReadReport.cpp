// Without --partial a cut log still fails; the hint says what the option would keep.
#include "LogReadReport.h"

#include <string>

namespace kvt::profiling {

void addPartialFlag(CLI::App& command, bool& partial) {
  command.add_flag("--partial", partial,
                   "read a cut or damaged log up to its first bad chunk and\n"
                   "report on the whole chunks before it (an execution is whole\n"
                   "in its chunk); what was dropped is said on the standard error");
}

bool reportLogRead(std::ostream& err, std::string_view command, const LogReadResult& read,
                   bool partial, std::string_view role) {
  if (read.complete())
    return true;
  const std::string named = role.empty() ? "" : std::string(role) + ' ';
  if (read.stands(partial)) {
    err << command << ": partial: " << named << describePartialRead(read) << '\n';
    return true;
  }
  err << command << ": " << named << describeLogFault(*read.fault) << '\n';
  if (read.stands(true) && read.chunksRead > 0)
    err << command << ": --partial reads the " << read.chunksRead << " whole chunk"
        << (read.chunksRead == 1 ? "" : "s") << " before it\n";
  return false;
}

} // namespace kvt::profiling
