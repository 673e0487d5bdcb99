#include "app/privacy/Export.h"

#include <QProcess>
#include <QStandardPaths>
#include <system_error>

#include "app/record/EventLog.h"
#include "app/record/Files.h"
#include "app/record/RecordFiles.h"
#include "app/record/RunRecord.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

tl::unexpected<Refusal> refuse(ExitCode code, std::string sentence) {
  return tl::unexpected(Refusal{code, std::move(sentence)});
}

QString toQt(const std::string& text) {
  return QString::fromStdString(text);
}

bool isKey(const std::string& recipient) {
  return recipient.starts_with("age1") || recipient.starts_with("ssh-");
}

std::string firstLine(const QByteArray& text) {
  return text.split('\n').front().toStdString();
}

platform::Expected<void> checkHoldsRecord(const fs::path& folder) {
  for (const char* name : {EventLog::kFileName, kResultFileName}) {
    const auto isThere = hasFile(folder, name);
    if (!isThere) return tl::unexpected(isThere.error());
    if (*isThere) return {};
  }
  return platform::failure(inQuotes(folder) + " holds no record. Name the folder of a run.");
}

/// Why a program that was started and has ended failed, by what it said first; empty when it did
/// not fail.
std::string faultOf(QProcess& program) {
  if (program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0) return {};
  const std::string said = firstLine(program.readAllStandardError());
  return said.empty() ? "`" + program.program().toStdString() + "` broke off" : said;
}

/// Why the archive could not be made; empty when it was.
std::string pack(const fs::path& folder, const QStringList& recipients, const fs::path& archive) {
  QProcess tar, age;
  tar.setStandardOutputProcess(&age);
  const fs::path whole = fs::absolute(folder / "").lexically_normal().parent_path();
  // The archive tells nothing of the machine's users.
  tar.start("tar", {"--create", "--file=-", "--sort=name", "--owner=0", "--group=0",
                    "--numeric-owner", "--directory", toQt(whole.parent_path().string()), "--",
                    toQt("./" + whole.filename().string())});
  age.start("age", QStringList{"--encrypt", "--output", toQt(archive.string())} + recipients);
  tar.waitForFinished(-1);
  age.waitForFinished(-1);
  const std::string fault = faultOf(age);
  return fault.empty() ? faultOf(tar) : fault;
}

}  // namespace

tl::expected<void, Refusal> exportRun(const fs::path& folder, const std::string& recipient,
                                      const fs::path& archive) {
  if (const auto held = checkHoldsRecord(folder); !held)
    return refuse(ExitCode::wrongUse, held.error().sentence);
  if (const auto free = checkNewFile(folder, archive, "--output"); !free)
    return refuse(ExitCode::wrongUse, free.error().sentence);
  std::error_code error;
  if (!isKey(recipient) && !fs::is_regular_file(recipient, error)) {
    return refuse(ExitCode::wrongUse,
                  "The recipient must be a public key that begins with age1 or ssh-, or a file of "
                  "such keys.");
  }
  for (const char* program : {"age", "tar"}) {
    if (QStandardPaths::findExecutable(program).isEmpty()) {
      return refuse(ExitCode::machineLacks, std::string("The program `") + program +
                                                "` is missing: install the package " + program +
                                                ".");
    }
  }
  const fs::path draft = archive.string() + ".new";
  const QStringList recipients{isKey(recipient) ? "--recipient" : "--recipients-file",
                               toQt(recipient)};
  const std::string fault = pack(folder, recipients, draft);
  if (fault.empty()) fs::permissions(draft, fs::perms::owner_read | fs::perms::owner_write, error);
  if (fault.empty()) fs::rename(draft, archive, error);
  if (fault.empty() && !error) return {};
  const std::string why = fault.empty() ? error.message() : fault;
  fs::remove(draft, error);
  return refuse(ExitCode::wrongUse, "The archive " + inQuotes(archive) + " could not be made (" +
                                        why + "): check recipient, folder and disk.");
}

}  // namespace corvana::app
