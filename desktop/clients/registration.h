// Registers Tessum in the configuration file of an assistant application, removes it from there,
// and tells whether it is there.
//
// The file is edited in place: every byte outside our entry stays. A file that cannot be edited
// safely is refused with the lines to paste. What was added is remembered in registrations.json in
// the data folder, so that removing it gives back the file's bytes as they were, and takes away an
// object, a file or a folder that was made for it.
//
// All calls throw std::system_error when a file cannot be read or written, and then leave the
// application's file as it was. Two concurrent writers of one file are not coordinated: the last
// one wins. Any thread.

#pragma once

#include <optional>
#include <string>

#include "desktop/clients/entry_check.h"
#include "desktop/clients/server_entry.h"
#include "desktop/host/host.h"

namespace tessum {

// A file of an application, by its absolute path.
struct RegistrationFile {
  std::string path;
  ServerFormat format = {};
};

struct RegistrationOptions {
  EntryForm form = EntryForm::stdio;
  bool isDryRun = false;   // change nothing, only tell what would change
  bool isRewrite = false;  // rewrite the whole file, a copy of what is no plain object kept aside
};

// What was done to a file, or would be.
struct RegistrationChange {
  enum class Outcome {
    changed,
    unchanged,  // it was so already
    refused     // the file cannot be edited safely, and stays as it is
  };
  Outcome outcome = Outcome::unchanged;
  std::string difference = {};  // of the file's lines, as "diff -u" shows it; only when changed
  std::string text = {};        // of the file from then on; only when registering has changed it
  std::string copy = {};        // the path of the copy kept aside; empty when there is none
  std::string problem =
      {};  // why it was refused, and the lines to paste or to take out; else empty
};

// Adds our entry, or corrects it; missing folders and a missing file are made. Throws
// std::runtime_error when there is no stdio server to start.
[[nodiscard]] RegistrationChange registerIn(const RegistrationFile& file,
                                            const RegistrationOptions& options, const Host& host);

// Takes our entry out. Only `isDryRun` of the options counts.
[[nodiscard]] RegistrationChange unregisterFrom(const RegistrationFile& file,
                                                const RegistrationOptions& options,
                                                const Host& host);

// What a file says about us.
struct Registration {
  std::optional<EntryReport> entry = {};  // absent when there is no entry
  std::string problem = {};               // why the file cannot be made out; else empty
};

// Checks the entry too, and so may wait a few seconds for the endpoint.
[[nodiscard]] Registration registrationIn(const RegistrationFile& file, const Host& host);

}  // namespace tessum
