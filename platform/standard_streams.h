// The three standard streams, which a caller may have left closed.
#pragma once

namespace rcp {

/// Puts the null device where a standard descriptor is closed, so that none of the files opened
/// later, the log or the lock, becomes a standard stream that something prints into. The platform
/// inherits it. Ends the launch when the null device cannot be opened.
void openMissingStandardStreams();

}  // namespace rcp
