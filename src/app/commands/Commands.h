#pragma once

#include <CLI/CLI.hpp>

#include "app/run/ExitCode.h"

/// The small commands; each sets `exitCode` when it runs.
namespace corvana::app {

/// `videoid enroll`: an earlier capture of a card, read into a reference.
void addEnrollCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid key`: makes and shows the key that seals records.
void addKeyCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid verify`: whether a record is what was recorded, and who vouches for it.
void addVerifyCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid recheck`: judges the film of a record again.
void addRecheckCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid redact`: a copy of a record for people who may not see the card.
void addRedactCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid report`: a page that shows people what a record holds.
void addReportCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid purge`: removes runs that are no longer to be kept.
void addPurgeCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid export`: an archive of a run that only its recipient can open.
void addExportCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid timestamp`: a third party's word for when a record was there.
void addTimestampCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid devices`: cameras and microphones that `capture` can use.
void addDevicesCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid documents`: the kinds of documents that are known.
void addDocumentsCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid compare`: whether two photographs show the same face.
void addCompareCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid embed`: what the face model makes of photographs.
void addEmbedCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid doctor`: what the machine lacks.
void addDoctorCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid options`: every key with unit, default and meaning.
void addOptionsCommand(CLI::App& app, ExitCode& exitCode);
/// `videoid commands`: every command with its arguments, of which manual and completions are made.
void addCommandsCommand(CLI::App& app, ExitCode& exitCode);

}  // namespace corvana::app
