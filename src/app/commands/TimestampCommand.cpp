#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/Commands.h"
#include "app/record/Files.h"
#include "app/record/RecordFiles.h"
#include "app/record/RunRecord.h"
#include "app/stamp/StampService.h"
#include "app/stamp/Stamps.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct TimestampArguments {
  fs::path folder;
  fs::path request;
  std::optional<std::string> answer;
  std::optional<std::string> address;
  int waitSeconds = 30;
  std::optional<fs::path> authorities;
};

platform::Expected<std::string> readSeal(const fs::path& folder) {
  const auto isThere = hasFile(folder, kResultSealName);
  if (!isThere) return tl::unexpected(isThere.error());
  if (*isThere) return readFile(folder / kResultSealName, kMostStampBytes);
  return platform::failure(inQuotes(folder) +
                           " holds no seal to be stamped: name the folder of a run that was "
                           "recorded with --key.");
}

platform::Expected<std::string> readAnswer(const std::string& source) {
  if (source != "-") return readFile(source, kMostStampBytes);
  std::string answer(kMostStampBytes + 1, '\0');
  std::cin.read(answer.data(), static_cast<std::streamsize>(answer.size()));
  answer.resize(static_cast<std::size_t>(std::cin.gcount()));
  if (std::ferror(stdin) != 0)
    return platform::failure("Standard input can't be read: name the answer's file.");
  if (answer.size() <= kMostStampBytes) return answer;
  return platform::failure("The answer on standard input is too long for a time stamp.");
}

ExitCode writeRequest(const TimestampArguments& arguments, const std::string& seal) {
  std::error_code error;
  if (fs::exists(arguments.request, error)) {
    return refuse("There is a file " + inQuotes(arguments.request) +
                  " already: give its answer with --answer, or take it away.");
  }
  const auto written = checkOutside(arguments.folder, arguments.request).and_then([&] {
    return writeFile(arguments.request, makeStampRequest(seal));
  });
  if (!written) return refuse(written.error());
  std::cout << arguments.request.string()
            << ": send it to a time stamp authority (application/timestamp-query), then come "
               "again with --answer\n";
  return ExitCode::result;
}

ExitCode keepStamp(const TimestampArguments& arguments, const std::string& seal,
                   const std::string& request, const std::string& answer) {
  std::optional<StampAuthorities> trusted;
  if (arguments.authorities) {
    auto loaded = StampAuthorities::load(*arguments.authorities);
    if (!loaded) return refuse(loaded.error());
    trusted = std::move(*loaded);
  }
  const auto time = checkStamp(answer, request, seal, trusted ? &*trusted : nullptr);
  if (!time) {
    return complain(std::cerr, ExitCode::flowError,
                    "The answer " + time.error().sentence + "; the record stays as it is.");
  }
  const auto stamp = addStamp(arguments.folder, request, answer);
  if (!stamp) return refuse(stamp.error());
  std::cout << stamp->answer << ": the seal was there at " << formatUtc(*time)
            << (trusted ? ", says a trusted authority\n" : ", says its authority\n");
  return ExitCode::result;
}

ExitCode takeAnswer(const TimestampArguments& arguments, const std::string& seal) {
  const auto request = readFile(arguments.request, kMostStampBytes);
  if (!request) return refuse(request.error());
  const auto answer = readAnswer(*arguments.answer);
  if (!answer) return refuse(answer.error());
  const ExitCode code = keepStamp(arguments, seal, *request, *answer);
  std::error_code ignored;  // It lies in the record now.
  if (code == ExitCode::result) fs::remove(arguments.request, ignored);
  return code;
}

ExitCode fetchStamp(const TimestampArguments& arguments, const std::string& seal) {
  const std::string request = makeStampRequest(seal);
  const auto answer =
      askAuthority(*arguments.address, request, std::chrono::seconds(arguments.waitSeconds));
  if (!answer) return refuse(answer.error());
  return keepStamp(arguments, seal, request, *answer);
}

ExitCode runTimestamp(TimestampArguments arguments) {
  const auto seal = readSeal(arguments.folder);
  if (!seal) return refuse(seal.error());
  if (arguments.address) return fetchStamp(arguments, *seal);
  if (arguments.request.empty()) {
    // Beside the record: it is no part of it until it has an answer.
    arguments.request = fs::absolute(arguments.folder).lexically_normal();
    if (!arguments.request.has_filename()) arguments.request = arguments.request.parent_path();
    arguments.request += ".tsq";
  }
  return arguments.answer ? takeAnswer(arguments, *seal) : writeRequest(arguments, *seal);
}

}  // namespace

void addTimestampCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "timestamp", "Have a third party say when a sealed record was there (RFC 3161)");
  auto arguments = std::make_shared<TimestampArguments>();
  command.add_option("folder", arguments->folder, "the run's folder")->required();
  auto* request = command.add_option("--request", arguments->request,
                                     "file of the request (default: the folder's name with .tsq)");
  auto* answer = command.add_option(
      "--answer", arguments->answer,
      "the authority's answer to that request, which is kept in the record; - reads it from "
      "standard input");
  auto* address = command
                      .add_option("--url", arguments->address,
                                  "address of an authority (https or http), which is asked at once")
                      ->excludes(request)
                      ->excludes(answer);
  command
      .add_option("--wait", arguments->waitSeconds,
                  "seconds in which the authority has to answer (default 30)")
      ->needs(address)
      ->check(CLI::Range(1, 600).description(""));
  command.add_option("--stamp-ca", arguments->authorities,
                     "PEM certificates of authorities: the answer must be signed by one");
  command.callback([arguments, &exitCode] { exitCode = runTimestamp(*arguments); });
}

}  // namespace corvana::app
