# Signs the bundle in `folder`, from the inside out: programs and libraries, then the bundle, whose seal covers
# all that lies in it. `identity` "-" signs ad hoc, for this Mac; any other is a certificate's and gets the
# hardened runtime and a time stamp, which notarisation asks for.
file(GLOB bundles LIST_DIRECTORIES true "${folder}/*.app")
set(options --force --sign "${identity}")
if(NOT identity STREQUAL "-")
  list(APPEND options --options runtime --timestamp)
endif()
foreach(bundle IN LISTS bundles)
  file(GLOB plugins "${bundle}/Contents/Eclipse/rcp/eclipse/plugins/*/macosx/x86/*.so"
    "${bundle}/Contents/Eclipse/rcp/eclipse/plugins/*/macosx/x86/*.dylib")
  foreach(code IN LISTS plugins)
    execute_process(COMMAND codesign ${options} "${code}" COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  execute_process(COMMAND codesign ${options} --entitlements "${entitlements}" "${bundle}"
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND codesign --verify --strict --verbose=2 "${bundle}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
