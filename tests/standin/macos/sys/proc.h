// What the program uses of macOS's header of this name.
#pragma once

constexpr unsigned SZOMB = 5;
