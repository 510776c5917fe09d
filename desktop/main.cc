// Tessum, the host program: records what is in front, and lets a person use the history.

#include <cstdio>
#include <exception>

#include "core/store/database_error.h"
#include "core/store/history.h"
#include "desktop/host/host.h"
#include "desktop/program.h"
#include "desktop/settings/settings_reader.h"
#include "desktop/text/text_layout.h"

int main(int argc, char** argv) {
  try {
    return tessum::runCommand(argc, argv);
  } catch (const tessum::DatabaseError& error) {
    std::fprintf(stderr, "Tessum: %s\n", error.what());
    std::fprintf(stderr, "%s\n", tessum::remedy(error).c_str());
    return tessum::kFailure;
  } catch (const tessum::SettingsError& error) {
    std::fprintf(stderr, "Tessum: %s\n", tessum::printable(error.what()).c_str());
    return tessum::kUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Tessum: %s\n", error.what());
    return tessum::kFailure;
  }
}
