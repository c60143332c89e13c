cmake_policy(SET CMP0057 NEW) # IN_LIST
# Copies one public header of the library into the flat include folder a host sees
# (<KvRichTextBox/NAME.h>), rewriting its includes of the library's own headers to the flat names.
# A public header that includes a private one is an error: the host could not compile it.
#
#   cmake -DINPUT=src/.../kvrtb.h -DOUTPUT=build/include/KvRichTextBox/kvrtb.h
#         "-DPUBLIC=kvrtb.h;kvrtbtypes.h;..." -P PublicHeader.cmake
file(READ "${INPUT}" text)
string(REGEX MATCHALL "#include \"[a-z]+/[A-Za-z0-9_]+\\.h\"" includes "${text}")
foreach(inc IN LISTS includes)
  string(REGEX REPLACE "#include \"[a-z]+/([A-Za-z0-9_]+\\.h)\"" "\\1" name "${inc}")
  if(NOT name IN_LIST PUBLIC)
    message(FATAL_ERROR "${INPUT}: a public header includes the private header ${name}")
  endif()
endforeach()
string(REGEX REPLACE "#include \"[a-z]+/([A-Za-z0-9_]+\\.h)\"" "#include \"\\1\"" text "${text}")
file(WRITE "${OUTPUT}.tmp" "${text}")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
