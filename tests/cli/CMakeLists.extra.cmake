# The command-line tool is run as a user runs it.
target_compile_definitions(test_cli PRIVATE KVRTB_CLI="$<TARGET_FILE:kvrtb>")
add_dependencies(test_cli kvrtb)
