# Makes `folder` anew; one that this did not make, and mark, stays as it is and ends the build.
set(mark "${folder}/.made-by-the-build")
if(EXISTS "${folder}" AND NOT EXISTS "${mark}")
  message(FATAL_ERROR "${folder} was not made by the build; remove it yourself")
endif()
file(REMOVE_RECURSE "${folder}")
file(MAKE_DIRECTORY "${folder}")
file(TOUCH "${mark}")
