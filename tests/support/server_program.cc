#include "tests/support/server_program.h"

namespace tessum {

std::string serverProgram() {
  return TESSUM_SERVER_PROGRAM;
}

}  // namespace tessum
