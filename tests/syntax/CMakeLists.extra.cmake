# The colour subcommand is tested through the command-line tool: build it first and tell the
# tests where it is.
if(TARGET kvrtb)
  add_dependencies(test_syntax kvrtb)
  target_compile_definitions(test_syntax PRIVATE KVRTB_CLI="$<TARGET_FILE:kvrtb>")
endif()
