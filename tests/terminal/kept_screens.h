#pragma once

#include <string>

namespace tavenhall::test {

// Compares what shows with tests/terminal/screens/<name>.txt. Sizes, rates and times that differ from run to
// run are masked in both. With TAVINSTALL_RENEW=1 in the environment, writes the file instead.
void expectScreen(const std::string& shown, const std::string& name);

}  // namespace tavenhall::test
