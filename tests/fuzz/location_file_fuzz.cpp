#include "context/internal_lookups.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/page_files.h"
#include "tests/fuzz/stops.h"

#include <optional>

// The input is the package-location file. Where a NUL byte is in it, what stands before the first one is the
// subfolder that is asked for, and what follows is the file.
namespace tavenhall::fuzz {

namespace {

constexpr std::size_t kRoom = 1024;  // bytes, of the line and of the result, with the terminator

// The folder that the file names; nothing where it names none.
std::optional<std::string> expectedFolder(std::string_view file) {
  std::string line(file.substr(0, kRoom - 1));
  line = line.substr(0, line.find('\n') == std::string::npos ? line.size() : line.find('\n') + 1);
  line = line.c_str();
  if (line.size() <= 1) {
    return std::nullopt;
  }
  line.pop_back();
  if (line.back() == '/' || line.back() == '\\') {
    line.pop_back();
  }
  const std::size_t separator = line.find_last_of("/\\");
  return separator == std::string::npos ? line : line.substr(0, separator);
}

// Asks for the folder, and requires the result, the stop and the log lines that go with it.
void checkLookup(const std::optional<std::string>& folder, const char* subfolder) {
  const auto stop = stopOf([subfolder] { getFolderContainingPKGfile(subfolder); });
  const std::string expected = !folder ? "" : subfolder == nullptr ? *folder : *folder + "/" + subfolder;
  if (expected.size() >= kRoom) {
    requireSame(stop.value_or("it went on"), stopLine(kRoom), "a folder that does not fit");
  } else {
    requireSame(stop.value_or(""), "", "a folder that fits");
    requireSame(sOutputPathWithCallersSubfolder.view(), expected, "the package's folder");
  }
  if (!folder) {
    requireLog({"getFolderContainingPKGfile: preinstall file is empty"});
  }
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall::fuzz;
  const std::string_view input = asText(data, size);
  const std::size_t nul = input.find('\0');
  const bool hasSubfolder = nul != std::string_view::npos;
  const std::string subfolder(input.substr(0, hasSubfolder ? nul : 0));
  const std::string_view file = input.substr(hasSubfolder ? nul + 1 : 0);

  writeBytes(kLocationFile, file);
  forgetWhatIsReadOncePerProcess();
  const std::optional<std::string> folder = expectedFolder(file);
  checkLookup(folder, hasSubfolder ? subfolder.c_str() : nullptr);
  // It is read once: another file changes nothing any more.
  writeBytes(kLocationFile, "/elsewhere/Installer.pkg\n");
  checkLookup(folder, nullptr);
  checkLookup(folder, "..");
  return 0;
}
