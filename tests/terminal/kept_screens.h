#pragma once

#include "tests/terminal/tmux_terminal.h"

#include <string>

namespace tavenhall::test {

// Waits until what shows is tests/terminal/screens/<name>.txt; fails the test when it never is. Sizes, rates
// and times that differ from run to run are masked. With TAVINSTALL_RENEW=1 in the environment, writes the file
// instead, once what shows stands still, so the test waits before for something that it shows.
void expectScreen(TmuxTerminal& terminal, const std::string& name);

}  // namespace tavenhall::test
