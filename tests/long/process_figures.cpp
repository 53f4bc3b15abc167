#include "tests/long/process_figures.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <unistd.h>

namespace tavenhall::test {

Figures figuresOf(pid_t process) {
  namespace fs = std::filesystem;
  const fs::path folder = "/proc/" + std::to_string(process);
  Figures figures;
  std::ifstream status(folder / "status");
  for (std::string line; std::getline(status, line);) {
    const auto take = [&line](std::string_view name, std::int64_t& value) {
      if (line.starts_with(name)) {
        value = std::stoll(line.substr(name.size()));
      }
    };
    take("VmRSS:", figures.resident);
    take("RssAnon:", figures.ownMemory);
    take("VmHWM:", figures.peakMemory);
    take("Threads:", figures.threads);
  }
  status.close();
  std::error_code error;
  for (fs::directory_iterator entry(folder / "fd", error), end; !error && entry != end;
       entry.increment(error)) {
    ++figures.descriptors;
  }
  figures.descriptors -= process == getpid() && figures.descriptors > 0 ? 1 : 0;  // the listing's own
  return figures;
}

std::string tableOf(const std::vector<Figures>& figures, std::size_t rows) {
  std::string table = "   seconds  resident kB  own kB  descriptors  threads\n";
  for (std::size_t row = 0; row < rows && row < figures.size(); ++row) {
    const std::size_t shown = std::min(rows, figures.size());
    const Figures& at = figures[shown == 1 ? 0 : row * (figures.size() - 1) / (shown - 1)];
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(), "%10.1f  %11lld  %6lld  %11lld  %7lld\n", at.seconds,
                  static_cast<long long>(at.resident), static_cast<long long>(at.ownMemory),
                  static_cast<long long>(at.descriptors), static_cast<long long>(at.threads));
    table += line.data();
  }
  return table;
}

}  // namespace tavenhall::test
