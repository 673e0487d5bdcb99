#include "app/commands/DocumentOptions.h"

#include <string>

namespace corvana::app {

void addDocumentOptions(CLI::App& command, DocumentChoice& choice) {
  command.add_option_function<std::string>(
      "--date",
      [&choice](const std::string& text) {
        choice.date = engine::calendarDate(text);
        if (!choice.date) throw CLI::ValidationError("--date", "give a day as 2026-03-01");
      },
      "the day by which documents are judged and two-digit years settled, as 2026-03-01 (default: "
      "today)");
  command
      .add_option("--least-age", choice.leastAge,
                  "years that the holder must have reached on that day (default 0: any age)")
      ->check(CLI::Range(0, 150).description(""));
  addDocumentsFolder(command, choice);
}

void addDocumentsFolder(CLI::App& command, DocumentChoice& choice) {
  command.add_option("--documents", choice.folder,
                     "folder of further kinds of documents, or of others in place of those that "
                     "come with the program; see docs/documents.md");
}

}  // namespace corvana::app
