#include "tests/support/private_root.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/resource.h>

int main(int argumentCount, char** arguments) {
  testing::InitGoogleTest(&argumentCount, arguments);
  const rlimit noCoreFiles{0, 0};  // some tests expect a process to abort
  setrlimit(RLIMIT_CORE, &noCoreFiles);
  setenv("LANGUAGE", "en", 1);  // the texts that tests compare
  if (GTEST_FLAG_GET(list_tests)) {
    return RUN_ALL_TESTS();
  }
  tavenhall::test::enterPrivateRoot();
  const int status = RUN_ALL_TESTS();
  tavenhall::test::endWhatIsLeft();
  return status;
}
