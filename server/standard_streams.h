// The standard streams at the start of the program.

#pragma once

namespace tessum {

// Opens /dev/null for each of the descriptors 0 to 2 that is closed, so that no file opened later,
// such as the database, gets its number and is used as a standard stream. Using the closed stream
// still fails because /dev/null is opened for the other direction.
void fillClosedStandardStreams();

}  // namespace tessum
