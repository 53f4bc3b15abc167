#pragma once

#include "pane/install_data_pane.h"
#include "tests/support/recording_host.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavenhall::test {

// A page that copies what it is told.
struct CopyingPage {
  RecordingHost host;
  InstallDataPane pane{host};

  std::int32_t copyFile(const std::string& source = "/tmp/one.dat", const std::string& dest = "/tmp/to.dat") {
    return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), "", false);
  }
  std::int32_t copyFolder(const std::string& source, const std::string& dest) {
    return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), "TANVO", true);
  }
  [[nodiscard]] std::vector<std::string> sheets() const { return host.linesThatBegin("sheet "); }
};

}  // namespace tavenhall::test
