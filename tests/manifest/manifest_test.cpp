#include "host/manifest/manifest.h"
#include "host/base/exit_status.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace tavenhall::test {
namespace {

constexpr const char* kFile = "/tmp/Manifest.sha256";
const std::string kDigest(64, 'a');

TEST(Manifest, ReadsWhatItWrites) {
  const Manifest manifest{"Tessaphon",
                          {{0, "", false}, {1, "Tavenhall Tessaphon A", false}, {2, "Tessaphon\\B", true}},
                          {{"TANVO/a b.db", kDigest, 12288, 1},
                           {"TANVO/line\nbreak\\", kDigest, 0, 2},
                           {"/Library/Audio/x.vst", kDigest, 7, 0}}};
  writeManifest(kFile, manifest);
  EXPECT_EQ(readFile(kFile),
            "# tavinstall manifest 1\n# product Tessaphon\n# volume 0 \n# volume 1 Tavenhall Tessaphon A\n"
            "# full volume 2 Tessaphon\\\\B\n# file 1 12288\n" +
                kDigest + "  TANVO/a b.db\n# file 2 0\n\\" + kDigest +
                "  TANVO/line\\nbreak\\\\\n# file 0 7\n" + kDigest + "  /Library/Audio/x.vst\n");

  const Manifest read = readManifest(kFile);

  EXPECT_EQ(manifestText(read), manifestText(manifest));
  EXPECT_EQ(read.files[1].path, "TANVO/line\nbreak\\");
  EXPECT_EQ(read.volumes[2].name, "Tessaphon\\B");
  EXPECT_TRUE(read.volumes[2].isFullOnly);
}

struct BadManifest {
  const char* name;
  std::string text;
  std::string reason;
};

void PrintTo(const BadManifest& manifest, std::ostream* stream) { *stream << manifest.name; }

class Manifests : public testing::TestWithParam<BadManifest> {};

TEST_P(Manifests, OfAnotherFormAreRefusedWithTheLine) {
  writeFile(kFile, GetParam().text);
  try {
    static_cast<void>(readManifest(kFile));
    ADD_FAILURE() << "it was read";
  } catch (const UsageError& error) {
    EXPECT_EQ(std::string(error.what()), GetParam().reason);
  }
}

const std::string kStart = "# tavinstall manifest 1\n# product T\n# file 1 3\n";

INSTANTIATE_TEST_SUITE_P(
    Each, Manifests,
    testing::Values(
        BadManifest{"Empty", "", "/tmp/Manifest.sha256, line 0: it lists no file"},
        BadManifest{"AnotherTools", kDigest + "  TANVO/a\n",
                    "/tmp/Manifest.sha256, line 1: this is no manifest of tavinstall"},
        BadManifest{"NoFiles", "# tavinstall manifest 1\n", "/tmp/Manifest.sha256, line 1: it lists no file"},
        BadManifest{
            "AShortDigest", kStart + "abc  TANVO/a\n",
            "/tmp/Manifest.sha256, line 4: a digest, two blanks and a path belong here, behind a line with "
            "the size"},
        BadManifest{
            "NoSize", "# tavinstall manifest 1\n" + kDigest + "  TANVO/a\n",
            "/tmp/Manifest.sha256, line 2: a digest, two blanks and a path belong here, behind a line with "
            "the size"},
        BadManifest{"ANegativeSize", "# tavinstall manifest 1\n# file 1 -3\n",
                    "/tmp/Manifest.sha256, line 2: a volume and a size belong here"},
        BadManifest{"APathUpwards", kStart + kDigest + "  TANVO/../../x\n",
                    "/tmp/Manifest.sha256, line 4: the path TANVO/../../x leads out of the folder"},
        BadManifest{"APathElsewhere", kStart + kDigest + "  /etc/passwd\n",
                    "/tmp/Manifest.sha256, line 4: the path /etc/passwd leads out of the folder"}),
    [](const testing::TestParamInfo<BadManifest>& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace tavenhall::test
