// A file that is on no disk: the launcher reads property files, and a check has texts.
#pragma once

namespace rcp::inspect {

/// An empty regular file that goes with its descriptor; readable as /dev/fd/NUMBER. -1 on failure.
int openMemoryFile();

}  // namespace rcp::inspect
