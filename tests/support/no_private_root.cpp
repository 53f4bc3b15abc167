#include "tests/support/private_root.h"

// For systems without private mounts, whose tests (portable_tests) use none of the fixed paths.
namespace tavenhall::test {

void enterPrivateRoot() {}

void endWhatIsLeft() {}

void dropOverridesOfPermissions() {}

bool isRealRoot() { return false; }

}  // namespace tavenhall::test
