#pragma once

#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"

#include <string>

namespace tavenhall::test {

inline const std::string kTo = kTanvo;
inline const std::string kFound = std::string("log ") + kFoundLine;

// The attributes file of a set whose pass tells where it copies, and of a size of one million bytes.
inline void setTexts(const std::string& more) {
  setAttributes("InstallingData = Copying to %s\nInstalledData = Done in %s\nTotalSizeMillionsBytes = 1\n" +
                more);
}

// A page that is about to run one pass for the folder TANVO, with its trace.
struct VolumePass {
  RecordingHost host;
  InstallDataPane pane{host};
  EventTrace trace{host};

  explicit VolumePass(std::int32_t mode, const std::string& root = "/tmp/Start",
                      const std::string& pluginName = "Tessaphon") {
    pane.gInstallMode = mode;
    pane.gPathOfSourceDataExcludingTANVOtail.assign(root);
    pane.gPluginNameChar.assign(pluginName);
    pane.gTANVOorDOVAnameOnly.assign("TANVO");
    pane.gTANVOorDOVA_destinationPath = kTanvo;
    makeFolder(kTanvo);
  }

  // On the test's own thread, with copy threads beside it.
  void run() {
    pane.installAllVolumesForOneOf_TANVOorDOVA();
    platform().joinPageThreads();
  }

  [[nodiscard]] std::string root() const { return pane.gPathOfSourceDataExcludingTANVOtail.c_str(); }

  [[nodiscard]] std::vector<std::string> messages(const std::string& start) const {
    return thoseThatBegin(logMessages(), start);
  }
};

}  // namespace tavenhall::test
