# Compiles readable JSON chunks into binary profiling logs at build time.
#
# kvt_add_log_fixture(<target> <output.log> <chunk.json>...)
#   Each JSON file is one chunk (a ProfileLog root, // comments allowed); flatc compiles it and
#   the log tool frames the buffers, in the order given, as the chunks of the log. (flatc's own
#   --size-prefixed output is aligned from the prefix, not from the buffer the reader verifies.)
#   Fields given in the JSON are stored even when they hold their default value, so a fixture
#   says precisely which fields are present. The log is added to <target>'s dependencies.
function(kvt_add_log_fixture target output)
  get_filename_component(output_dir ${output} DIRECTORY)
  set(chunk_dir ${output}.chunks)
  set(chunks)
  foreach(json IN LISTS ARGN)
    get_filename_component(stem ${json} NAME_WE)
    list(APPEND chunks ${chunk_dir}/${stem}.bin)
    add_custom_command(
      OUTPUT ${chunk_dir}/${stem}.bin
      COMMAND flatbuffers::flatc -b --force-defaults -o ${chunk_dir}
              ${KVT_SCHEMA_FILE} ${json}
      DEPENDS ${json} ${KVT_SCHEMA_FILE} flatbuffers::flatc
      COMMENT "Compiling log fixture chunk ${json}"
      VERBATIM)
  endforeach()
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${output_dir}
    COMMAND kvt-profile-log frame -o ${output} ${chunks}
    DEPENDS ${chunks} kvt-profile-log
    VERBATIM)
  string(MAKE_C_IDENTIFIER ${output} fixture_target)
  add_custom_target(${fixture_target} DEPENDS ${output})
  add_dependencies(${target} ${fixture_target})
endfunction()
