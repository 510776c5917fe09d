#include "desktop/reports/finds_report.h"

#include "desktop/periods/wall_clock.h"

namespace tessum {
std::string findsReport(const Finds& finds, std::size_t most, const Paper& paper) {
  const auto all = finds.newestFirst();
  if (all.empty()) return "Nothing was found.\n";
  using enum Table::Alignment;
  Table table({left, right, right, right, left, left});
  for (std::size_t i = 0; i < std::min(all.size(), most); ++i) {
    const Find& find = all[i];
    table.addRow({{dateText(find.last), Tone::faint},
                  {clockText(find.last), Tone::faint},
                  {shortDuration(find.total.seconds)},
                  {counted(find.total.sessions, "session"), Tone::faint},
                  {find.appName, Tone::strong},
                  {find.title.value_or("")}});
  }
  const std::string total =
      shortDuration(finds.total().seconds) + " in " + counted(finds.total().sessions, "session");
  std::string text = heading("Found", total, paper) + "\n" + table.text(paper);
  if (all.size() > most) {
    text += "\n" + paragraph(counted(all.size() - most, "older one is", "older ones are") +
                                 " not shown; --limit N shows more.",
                             paper);
  }
  return text;
}

}  // namespace tessum
