// The log schema and the dump document's schema, built into the tool, loaded into FlatBuffers'
// own schema parser for turning chunks into JSON and back.
#pragma once

#include <flatbuffers/idl.h>

namespace kvt::profiling {

enum class SchemaRoot {
  chunk,      // a ProfileLog object: one chunk's buffer
  dumpedChunk // a DumpedChunk object: one chunk of a dump document, with its offset and size
};

// The fully qualified name of a chunk's root table, for printing it from inside a DumpedChunk.
inline constexpr const char* chunkTableName = "kvt.profiling.schema.ProfileLog";

// Options for parsing JSON into chunks: keys may be quoted or bare, comments are allowed, every
// field the JSON names is stored even when it holds its default, and strings may carry \x escapes
// for bytes that are no UTF-8.
flatbuffers::IDLOptions chunkParsingOptions();

// Options for printing chunks: strict JSON, present fields only, in schema order.
flatbuffers::IDLOptions chunkPrintingOptions();

// Loads the schemas into parser, whose root type becomes root. False, with parser.error_ set,
// only when the built-in schema text is broken.
bool loadLogSchema(flatbuffers::Parser& parser, SchemaRoot root);

} // namespace kvt::profiling
