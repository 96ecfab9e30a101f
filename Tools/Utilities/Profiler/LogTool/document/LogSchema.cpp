// Loading the built-in schemas.
#include "LogSchema.h"

#include "EmbeddedSchemas.h"

namespace kvt::profiling {

flatbuffers::IDLOptions chunkParsingOptions() {
  flatbuffers::IDLOptions options;
  options.force_defaults = true;
  options.allow_non_utf8 = true;
  return options;
}

flatbuffers::IDLOptions chunkPrintingOptions() {
  flatbuffers::IDLOptions options;
  options.strict_json = true;
  options.allow_non_utf8 = true;
  return options;
}

bool loadLogSchema(flatbuffers::Parser& parser, SchemaRoot root) {
  if (!parser.Parse(profileLogSchemaText, nullptr, "ProfileLog.fbs"))
    return false;
  return root == SchemaRoot::chunk || parser.Parse(dumpedChunkSchemaText, nullptr, "LogDump.fbs");
}

} // namespace kvt::profiling
