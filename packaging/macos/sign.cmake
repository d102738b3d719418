# Signs `bundle`, or those in `folder`, from the inside out: first the programs and libraries in it, then the bundle with
# its executable, whose seal covers all that lies in it. What somebody has signed with a certificate keeps that
# signature, as the JVM of a vendor does. `identity` "-" signs ad hoc, which a Mac of one's own accepts; any other
# is a certificate's and gets the hardened runtime and a time stamp, which notarisation asks for.
#
#   cmake -D bundle=B -D identity=I -D entitlements=packaging/macos/entitlements.plist -P packaging/macos/sign.cmake
#
# signs again when the platform and the JVM have been put into the bundle.
cmake_minimum_required(VERSION 3.25)

set(options --force --sign "${identity}")
if(NOT identity STREQUAL "-")
  list(APPEND options --options runtime --timestamp)
endif()

# "program", "library", or nothing for what is no code. Of a universal file the first image tells.
function(get_kind file result)
  file(READ "${file}" start LIMIT 32 HEX)
  # The last digit says how long the positions are. Behind it is the number of images; a Java class has its version
  # there, 45 and more.
  if(start MATCHES "^cafebab([ef])000000(0[1-9a-f]|1[0-9a-f]|2[0-9a-c])")
    set(digits 8)
    if(CMAKE_MATCH_1 STREQUAL "f")
      set(digits 16)
    endif()
    string(SUBSTRING "${start}00000000000000000000000000000000" 32 ${digits} first)
    set(start)
    if(digits EQUAL 8 OR first MATCHES "^0") # CMake counts no further, and no file is so long
      math(EXPR first "0x${first}")
      file(READ "${file}" start OFFSET ${first} LIMIT 32 HEX)
    endif()
  endif()
  set(kind)
  if(start MATCHES "^c[ef]faedfe................02000000")
    set(kind program)
  elseif(start MATCHES "^c[ef]faedfe................0[68]000000")
    set(kind library)
  endif()
  set(${result} "${kind}" PARENT_SCOPE)
endfunction()

function(get_is_signed file result)
  execute_process(COMMAND codesign --verify --strict "${file}" RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
  execute_process(COMMAND codesign --display --verbose=2 "${file}" ERROR_VARIABLE told OUTPUT_QUIET)
  if(failed OR told MATCHES "Signature=adhoc")
    set(${result} FALSE PARENT_SCOPE)
  else()
    set(${result} TRUE PARENT_SCOPE)
  endif()
endfunction()

if(DEFINED bundle)
  set(bundles "${bundle}")
else()
  file(GLOB bundles LIST_DIRECTORIES true "${folder}/*.app")
endif()
foreach(bundle IN LISTS bundles)
  file(GLOB_RECURSE files "${bundle}/Contents/*")
  foreach(file IN LISTS files)
    if(IS_SYMLINK "${file}" OR file STREQUAL "${bundle}/Contents/MacOS/rcplauncher") # that is the bundle's
      continue()
    endif()
    get_kind("${file}" kind)
    if(NOT kind)
      continue()
    endif()
    get_is_signed("${file}" is_signed)
    if(NOT is_signed)
      set(entitled) # a library has those of the program that loads it
      if(kind STREQUAL "program")
        set(entitled --entitlements "${entitlements}")
      endif()
      execute_process(COMMAND codesign ${options} ${entitled} "${file}" COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
  execute_process(COMMAND codesign ${options} --entitlements "${entitlements}" "${bundle}"
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND codesign --verify --strict --verbose=2 "${bundle}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
