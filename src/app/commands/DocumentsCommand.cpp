#include <iostream>

#include <nlohmann/json.hpp>

#include "app/card/DocumentFolders.h"
#include "app/commands/Commands.h"
#include "app/commands/DocumentOptions.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using engine::DocumentKind;
using engine::KindSide;
using nlohmann::ordered_json;

struct DocumentsArguments {
  bool asJson = false;
  DocumentChoice documents;
  std::optional<fs::path> checked;
};

std::string describe(const KindSide& side) {
  std::string text;
  const auto add = [&](const std::string& mark) { text += (text.empty() ? "" : ", ") + mark; };
  if (side.photo) add("photo");
  if (side.zone) add(std::string("zone ") + engine::nameOf(side.zone->format));
  if (side.code) add("barcode");
  return text.empty() ? "neither zone nor barcode" : text;
}

void print(const DocumentKind& kind) {
  std::cout << kind.stem << ": " << kind.title << ", " << engine::nameOf(kind.size)
            << "\n    front: " << describe(kind.front) << '\n';
  if (kind.back) std::cout << "    back: " << describe(*kind.back) << '\n';
}

ordered_json toJson(const platform::CGRect& place) {
  return {place.x, place.y, place.width, place.height};
}

ordered_json toJson(const engine::SideMark& mark) {
  ordered_json object = ordered_json::object();
  if (mark.place) object["place"] = toJson(*mark.place);
  return object;
}

ordered_json toJson(const KindSide& side) {
  ordered_json object = ordered_json::object();
  if (side.photo) object["photo"] = toJson(*side.photo);
  if (side.zone) {
    object["zone"] = toJson(*side.zone);
    object["zone"]["format"] = engine::nameOf(side.zone->format);
  }
  if (side.code) object["code"] = toJson(*side.code);
  for (const engine::PlacedField& field : side.fields)
    object["fields"].push_back(
        {{"name", engine::nameOf(field.name)}, {"place", toJson(field.place)}});
  return object;
}

ordered_json toJson(const DocumentKind& kind) {
  const platform::CGSize size = millimetresOf(kind.size);
  ordered_json object{{"stem", kind.stem},
                      {"title", kind.title},
                      {"size", engine::nameOf(kind.size)},
                      {"millimetres", {size.width, size.height}},
                      {"standards", kind.standards},
                      {"isRemainder", kind.isRemainder},
                      {"names", ordered_json::object()},
                      {"zoneCodes", kind.zoneCodes},
                      {"codeElements", kind.codeElements}};
  for (const engine::KindName& name : kind.names)
    object["names"][name.language].push_back(name.text);
  if (kind.zoneFormat) object["zoneFormat"] = engine::nameOf(*kind.zoneFormat);
  object["sides"]["front"] = toJson(kind.front);
  if (kind.back) object["sides"]["back"] = toJson(*kind.back);
  object["file"] = kind.file.string();
  return object;
}

void print(const engine::DocumentTables& tables, bool asJson) {
  if (!asJson) {
    for (const DocumentKind& kind : tables.kinds.all())
      print(kind);
    std::cout << "Labels of fields:";
    for (const auto& [language, count] : tables.labels.languages())
      std::cout << ' ' << language << ' ' << count;
    std::cout << '\n';
    return;
  }
  ordered_json all{{"kinds", ordered_json::array()}, {"labels", tables.labels.languages()}};
  for (const DocumentKind& kind : tables.kinds.all())
    all["kinds"].push_back(toJson(kind));
  std::cout << engine::indentedJson(all) << std::endl;
}

ExitCode runDocuments(const DocumentsArguments& arguments) {
  DocumentChoice documents = arguments.documents;
  if (arguments.checked) documents.folder = arguments.checked;
  const auto tables = loadDocuments(findResources(), documents);
  if (!tables) return complain(std::cerr, tables.error());
  if (!arguments.checked) {
    print(**tables, arguments.asJson);
    return ExitCode::result;
  }
  std::cout << "\"" << arguments.checked->string()
            << "\" goes with the program's kinds of documents.\n";
  return ExitCode::result;
}

}  // namespace

void addDocumentsCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("documents", "List or check the kinds of documents that are known");
  auto arguments = std::make_shared<DocumentsArguments>();
  auto* json = command.add_flag("--json", arguments->asJson, "as JSON, with names and places");
  addDocumentsFolder(command, arguments->documents);
  command
      .add_option("--check", arguments->checked,
                  "folder or file of kinds of documents, or a file of labels, that is looked "
                  "through in place of a list; exit code 2 and a sentence if something is wrong")
      ->excludes("--documents")
      ->excludes(json);
  command.callback([arguments, &exitCode] { exitCode = runDocuments(*arguments); });
}

}  // namespace corvana::app
