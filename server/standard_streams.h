// The standard streams at the start of the program.

#pragma once

namespace tessum {

// Fills each of the descriptors 0 to 2 that is closed, so that no file opened later (the store
// least of all) gets its number and is read or written as a standard stream. Using a stream that
// was closed still fails: its stand-in is open the wrong way round.
void fillClosedStandardStreams();

}  // namespace tessum
