# The word-list subcommands are tested through the command-line tool: build it first and tell
# the tests where it is.
if(TARGET kvrtb)
  add_dependencies(test_spelling kvrtb)
  target_compile_definitions(test_spelling PRIVATE KVRTB_CLI="$<TARGET_FILE:kvrtb>")
endif()
