#include "app/report/ReportPage.h"

#include <kainjow/mustache.hpp>

#include "app/record/Files.h"
#include "app/report/PageHash.h"
#include "app/report/ReportModel.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
namespace mustache = kainjow::mustache;
using nlohmann::json;

constexpr std::uint64_t kMostTemplateBytes = 1 << 18;

mustache::data toData(const json& value) {
  if (value.is_boolean()) return mustache::data(value.get<bool>());
  if (value.is_array()) {
    mustache::data list{mustache::data::type::list};
    for (const json& element : value)
      list.push_back(toData(element));
    return list;
  }
  if (value.is_object()) {
    mustache::data object{mustache::data::type::object};
    for (const auto& [key, member] : value.items())
      object.set(key, toData(member));
    return object;
  }
  return mustache::data(value.is_string() ? value.get<std::string>() : value.dump());
}

/// Pictures lie within the page, the film beside it; `file:` is what the browser calls a page's own
/// place when it was opened from a disk.
std::string policyOf(const std::string& style, const std::string& script) {
  return "default-src 'none'; style-src " + policyHash(style) + "; script-src " +
         policyHash(script) +
         "; img-src data:; media-src 'self' file:; base-uri 'none'; form-action 'none'";
}

}  // namespace

platform::Expected<std::string> makeReportPage(const RunFolder& run, const ReportWords& words,
                                               bool hasKeys, const std::string& filmSource,
                                               const fs::path& resources) {
  const auto page = readFile(resources / "report.html", kMostTemplateBytes);
  const auto style = readFile(resources / "report.css", kMostTemplateBytes);
  const auto script = readFile(resources / "report.js", kMostTemplateBytes);
  for (const auto* file : {&page, &style, &script}) {
    if (!*file) return tl::unexpected(file->error());
  }
  mustache::mustache templated(*page);
  if (!templated.is_valid()) {
    return platform::failure("The template of reports can't be used: " + templated.error_message() +
                             ".");
  }
  json model = makeReportModel(run, words, hasKeys);
  if (model["film"].is_object()) model["film"]["source"] = filmSource;
  model["style"] = *style;
  model["script"] = *script;
  model["policy"] = policyOf(*style, *script);
  return templated.render(toData(model));
}

}  // namespace corvana::app
