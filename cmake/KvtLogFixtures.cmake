# Compiles readable JSON chunks into binary profiling logs at build time.
#
# kvt_add_log_fixture(<targets> <output.log> <chunk.json>...)
#   Each JSON file is one chunk (a ProfileLog root, // comments allowed); the log tool builds
#   them, in the order given, as the chunks of the log. Fields given in the JSON are stored even
#   when they hold their default value, so a fixture says precisely which fields are present;
#   the order the fields are written in does not change the bytes. The log is added to the
#   dependencies of each of <targets> (a list). KVT_LOG_TOOL names the tool: the kvt-profile-log
#   target, or in a cross build the build machine's own (KVT_LOG_TOOL_TARGET then builds it).
if(NOT KVT_LOG_TOOL)
  set(KVT_LOG_TOOL kvt-profile-log)
endif()

function(kvt_add_log_fixture targets output)
  get_filename_component(output_dir ${output} DIRECTORY)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${output_dir}
    COMMAND ${KVT_LOG_TOOL} build --chunks ${ARGN} -o ${output}
    DEPENDS ${ARGN} ${KVT_LOG_TOOL}
    COMMENT "Building log fixture ${output}"
    VERBATIM)
  string(MAKE_C_IDENTIFIER ${output} fixture_target)
  add_custom_target(${fixture_target} DEPENDS ${output})
  if(KVT_LOG_TOOL_TARGET)
    add_dependencies(${fixture_target} ${KVT_LOG_TOOL_TARGET})
  endif()
  foreach(target IN LISTS targets)
    add_dependencies(${target} ${fixture_target})
  endforeach()
endfunction()
