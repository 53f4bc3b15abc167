#pragma once

#include <functional>

namespace tavenhall::test {

// From now on alerts are recorded, and answered by what `answer` gives, instead of shown; so are, always, the
// sheets, whose texts are recorded as the user would see them. Once a process, on the main thread.
void recordAlerts(std::function<long()> answer);

}  // namespace tavenhall::test
