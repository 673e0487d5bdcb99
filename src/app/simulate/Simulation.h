#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "app/run/FlowEnd.h"
#include "app/run/FlowScreen.h"
#include "app/run/FlowWorld.h"
#include "app/simulate/SimulateScript.h"
#include "app/simulate/SimulateWatch.h"
#include "corvana/Decision.h"
#include "devices/scripted/HostContractValidator.h"
#include "devices/scripted/ScriptedHost.h"
#include "devices/scripted/ScriptedMedia.h"
#include "devices/scripted/ScriptedSystem.h"
#include "devices/system/TerminalSystem.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RandomSource.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::app {

/// One run of a script: the real module before a scripted host, on a virtual clock. Prints a line
/// for each thing that the user sees and hears, the recorder is asked and the caller gets.
class Simulation final : public corvana::DecisionObserver {
 public:
  using ScreenMaker = std::function<std::unique_ptr<FlowScreen>(platform::RunLoop&)>;

  Simulation(SimulateScript script, const std::filesystem::path& resources, std::ostream& out,
             const ScreenMaker& makeScreen = makeHeadlessScreen);
  ~Simulation() override;

  /// Absent when the script ended before the flow did; an error is a fault of the script, in one
  /// sentence.
  platform::Expected<std::optional<Outcome>> run();

  /// Told at each step that takes a picture; may be null.
  std::function<void(FlowScreen& screen, const std::string& name)> onPicture;

  void decided(const corvana::Decision& decision) override;

 private:
  struct Actor;

  devices::NoSettingsApplication makeApplication();
  std::vector<SimulateWatch::Gauge> gauges();
  void print(const std::string& line);
  void watchHost();
  void start();
  void schedule(const SimulateStep& step);
  void perform(const SimulateStep& step);
  void tap(const std::string& button);
  void hear(const devices::HostEvent& event);
  void printContractBreaches();
  void finish(const Outcome& outcome);

  SimulateScript script_;
  std::ostream& out_;
  FlowEnd end_;
  std::optional<platform::Fault> fault_;
  bool isOver_ = false;  ///< what is taken down from now on nobody sees

  platform::VirtualRunLoop loop_;
  std::unique_ptr<FlowScreen> screen_;
  devices::CapturingConsole console_;
  devices::NoSettingsApplication application_;
  devices::ScriptedMediaDevices mediaDevices_{loop_};
  devices::ScriptedSpeechAuthorization speechAuthorization_{loop_};
  devices::ReportingSystemSounds sounds_;
  devices::ScriptedHost host_{loop_, mediaDevices_};
  SimulateWatch watch_;
  platform::SeededRandom randomness_{0};
  FlowWorld world_;
  std::optional<devices::HostContractValidator> validator_;
  std::size_t breachesPrinted_ = 0;
};

}  // namespace corvana::app
