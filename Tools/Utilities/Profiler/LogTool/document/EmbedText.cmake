# Writes a C++ header that holds schema files as string constants, so that the tool carries its
# schemas and needs no source tree once installed. Include statements are dropped: the tool
# parses the schemas in the order given, so an included schema is already known.
#
# cmake -DOUTPUT=<header> -DNAMES=<name;...> -DFILES=<file;...> -P EmbedText.cmake
set(delimiter "kvt_embedded")
set(content "// Generated at build time from ${FILES}; do not edit.\n#pragma once\n\nnamespace kvt::profiling {\n")
foreach(name file IN ZIP_LISTS NAMES FILES)
  file(READ ${file} text)
  string(FIND "${text}" ")${delimiter}\"" clash)
  if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${file} holds the raw-string delimiter ${delimiter}")
  endif()
  string(REGEX REPLACE "(^|\n)include \"[^\"]*\";" "\\1" text "${text}")
  string(APPEND content "\ninline constexpr const char* ${name} = R\"${delimiter}(${text})${delimiter}\";\n")
endforeach()
string(APPEND content "\n} // namespace kvt::profiling\n")
file(WRITE ${OUTPUT}.tmp "${content}")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.tmp)
