#include "pane/install_data_pane.h"
#include "tests/support/recording_host.h"

#include <gtest/gtest.h>
#include <memory>

extern "C" tavenhall::InstallerPane* createInstallDataPane(tavenhall::InstallerHost* host,
                                                           std::uint32_t interfaceVersion) noexcept;

namespace tavenhall::test {
namespace {

TEST(PageFactory, MakesThePageForAHostOfItsOwnInterfaceVersion) {
  RecordingHost host;
  const std::unique_ptr<InstallerPane> page(createInstallDataPane(&host, kInstallerInterfaceVersion));
  EXPECT_NE(page, nullptr);
}

TEST(PageFactory, MakesNoneForAnyOtherVersionAndWithoutAHost) {
  RecordingHost host;
  EXPECT_EQ(createInstallDataPane(&host, kInstallerInterfaceVersion - 1), nullptr);
  EXPECT_EQ(createInstallDataPane(&host, kInstallerInterfaceVersion + 1), nullptr);
  EXPECT_EQ(createInstallDataPane(&host, 0), nullptr);
  EXPECT_EQ(createInstallDataPane(nullptr, kInstallerInterfaceVersion), nullptr);
}

}  // namespace
}  // namespace tavenhall::test
