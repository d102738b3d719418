// The one call of macOS's header of this name that the program makes.
#pragma once

#include <stdint.h>

extern "C" int _NSGetExecutablePath(char* buffer, uint32_t* size);
