#include "tools/demo_words.h"

namespace tessum {

const std::vector<DemoApplication>& demoApplications() {
  static const std::vector<DemoApplication> kDemoApplications = {
      {"Tuskpad",
       "example.larkwood.Tuskpad",
       24,
       {"harvest_plan.cc \u2014 orchard", "irrigation/valve_test.cc \u2014 orchard",
        "README.md \u2014 orchard", "soil_sensor.h \u2014 orchard", "CHANGES \u2014 seedbank",
        "Untitled-#", "export/report_writer.cc \u2014 seedbank", "Find in files: \"moisture\""}},
      {"Fernglass",
       "example.larkwood.Fernglass",
       22,
       {"Request #: Read valve state once \u00b7 orchard", "Soil moisture \u2013 overview",
        "Search: linker order static library", "Weather for the week | Anywhere",
        "Team wiki / Planting calendar", "Caf\u00e9 Zur Linde \u2013 lunch menu",
        "Build # failed \u00b7 orchard", "How to prune a pear tree \u2013 a guide in 12 pictures",
        "New page"}},
      {"Mottershell",
       "example.mottershell",
       18,
       {"~/orchard \u2014 make", "~/orchard \u2014 less build.log", "root@barn: /var/log",
        "~/seedbank \u2014 sh", "~ \u2014 history | tail -#"}},
      {"Pigeonloft",
       "example.pigeonloft.Mail",
       12,
       {"Inbox (#)", "Re: Greenhouse budget", "Invoice # from the nursery", "Drafts",
        "Re: Re: Who waters over the holidays?", "New message"}},
      {"Hollerbox",
       "example.hollerbox",
       12,
       {"#general", "Mira Okonjo-Vale", "orchard-dev (#)", "Tomas & Ines", "random \U0001F33B"}},
      {"Inkwhistle",
       "example.inkwhistle.Notes",
       7,
       {"Meeting notes, week #", "Ideas", "To do", "Talk \u2013 outline",
        "Einkaufsliste: \u00c4pfel"}},
      {"Tabulane",
       "example.tabulane",
       6,
       {"harvest_2.tab", "budget draft #.tab", "seed orders.tab"}},
      {"Parleyroom", "example.parleyroom.Calls", 4, {"Orchard weekly", "Call with Mira", ""}},
      {"Paperstork",
       "example.paperstork.Reader",
       4,
       {"valve-manual.pdf (page # of 96)", "contract_signed.pdf", "Soil science, volume #.pdf"}},
      {"Muralto", "example.muralto.Draw", 4, {"greenhouse front @2x", "icon set #", ""}},
      {"Cobblefiles", "example.cobble.Files", 5, {"Downloads", "orchard", "Photos/2 spring", ""}},
      {"Dayrack", "example.dayrack", 3, {"This week", "Today"}},
      {"Sundrytunes", "example.sundrytunes", 2, {}},
      {"Kettle Timer", nullptr, 1, {}},
  };
  return kDemoApplications;
}

const std::vector<std::string_view>& demoNotes() {
  static const std::vector<std::string_view> kNotes = {
      "Reviewing the valve driver",        "Fixing the moisture sensor drift",
      "Writing the release notes",         "Weekly planning with Mira",
      "Reading about drip irrigation",     "Mail and small things",
      "Preparing the talk on pear trees",  "Budget for the second greenhouse",
      "Debugging the night-time watchdog", "Pairing with Tomas on the importer",
      "Trying out the new report layout",  "Cleaning up the seedbank export",
  };
  return kNotes;
}

}  // namespace tessum
