# The replace subcommand is tested through the command-line tool: build it first and tell the
# tests where it is.
if(TARGET kvrtb)
  add_dependencies(test_findreplace kvrtb)
  target_compile_definitions(test_findreplace PRIVATE KVRTB_CLI="$<TARGET_FILE:kvrtb>")
endif()
