# The convert tests run the command-line tool: build it first and tell the tests where it is.
if(TARGET kvrtb)
  add_dependencies(test_documents kvrtb)
  target_compile_definitions(test_documents PRIVATE KVRTB_CLI="$<TARGET_FILE:kvrtb>")
endif()
