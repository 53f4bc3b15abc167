#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// Short names for the files that tests make and look at. A failure fails the test.
namespace tavenhall::test {

// Writes a file, with all folders above it.
void writeFile(const std::string& path, std::string_view contents);

// Makes a folder, with all folders above it.
void makeFolder(const std::string& path);

[[nodiscard]] std::string readFile(const std::string& path);
[[nodiscard]] bool exists(const std::string& path);
[[nodiscard]] mode_t modeOf(const std::string& path);  // the permission bits, those beyond 0777 with them

// A path of just `length` bytes below `folder`, its names made of `filling` and short enough for any file
// system.
[[nodiscard]] std::string pathOfLength(std::size_t length, const std::string& folder = "/tmp",
                                       char filling = 'd');

// How many descriptors this process has open.
[[nodiscard]] std::ptrdiff_t openDescriptors();

// `size` bytes that differ from place to place and from `seed` to `seed`, the same in every run.
[[nodiscard]] std::string someBytes(std::size_t size, unsigned seed = 1);

// Every path below `folder`, relative to it and sorted: "name/" for folders, "name" for files,
// "name -> target" for links.
[[nodiscard]] std::vector<std::string> treeOf(const std::string& folder);

// ---- The page's own files ----

// /tmp/TavInstallLoc with the package's path and a newline.
void setPackage(const std::string& packagePath);

// Sets the package to /Users/tester/Downloads/Set/Installer.pkg, and writes the attributes file beside it
// with the given text.
inline constexpr const char* kSet = "/Users/tester/Downloads/Set";
void setAttributes(std::string_view text);

// What the page logs of that file.
inline constexpr const char* kFoundLine =
    "Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat";

// The folder of that name for the user's data.
inline constexpr const char* kTanvo = "/Users/tester/Library/Application Support/Tavenhall/TANVO";

// The installation log of the private root's home, and its messages: each record without its time and host
// name ("<message>"), in order. A message may hold newlines.
inline constexpr const char* kLog = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
[[nodiscard]] std::vector<std::string> logMessages(const std::string& path = kLog);

}  // namespace tavenhall::test
