#include "platform/thread_processor.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sched.h>
#include <thread>

namespace tavenhall::test {
namespace {

cpu_set_t ownProcessors() {
  cpu_set_t own;
  EXPECT_EQ(sched_getaffinity(0, sizeof own, &own), 0);
  return own;
}

bool isBoundTo(int processor) {
  const cpu_set_t own = ownProcessors();
  return CPU_COUNT(&own) == 1 && CPU_ISSET(processor, &own);
}

TEST(ProcessorBond, KeepsTheThreadOnAProcessorUntilItIsReleased) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  bond.moveTo(currentProcessor());
  EXPECT_TRUE(isBoundTo(currentProcessor()));

  bond.release();
  const cpu_set_t after = ownProcessors();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST(ProcessorBond, MovesFromOneProcessorToAnother) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
    if (CPU_ISSET(processor, &before)) {
      bond.moveTo(processor);
      EXPECT_TRUE(isBoundTo(processor)) << processor;
    }
  }
}

TEST(ProcessorBond, EndsWithItself) {
  const cpu_set_t before = ownProcessors();
  { ProcessorBond().moveTo(currentProcessor()); }
  const cpu_set_t after = ownProcessors();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

void keepTo(int processor) {
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(processor, &only);
  ASSERT_EQ(sched_setaffinity(0, sizeof only, &only), 0);
}

// As taskset starts a program. The program below begins anew, and has no more from its start.
TEST(ProcessorBond, GivesBackNoMoreThanTheProcessWasGiven) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const int only = currentProcessor();
  keepTo(only);
  const auto bindAndRelease = [] {
    const int given = currentProcessor();
    ProcessorBond bond;
    bond.moveTo(given);
    bond.release();
    const AnyProcessor anyProcessor;
    std::_Exit(isBoundTo(given) ? 0 : 1);
  };
  EXPECT_EXIT(bindAndRelease(), testing::ExitedWithCode(0), "");
}

TEST(ProcessorBond, NoProcessorChangesNothing) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  bond.moveTo(-1);
  const cpu_set_t after = ownProcessors();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST(AnyProcessor, FreesABoundThreadForItsTime) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  bond.moveTo(currentProcessor());
  {
    const AnyProcessor anyProcessor;
    const cpu_set_t meanwhile = ownProcessors();
    EXPECT_TRUE(CPU_EQUAL(&before, &meanwhile));
  }
  EXPECT_TRUE(isBoundTo(currentProcessor()));
}

TEST(AnyProcessor, FreesAThreadThatABoundOneHasStarted) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  bond.moveTo(currentProcessor());
  std::thread([&before] {
    const AnyProcessor anyProcessor;
    const cpu_set_t meanwhile = ownProcessors();
    EXPECT_TRUE(CPU_EQUAL(&before, &meanwhile));
  }).join();
}

TEST(AnyProcessor, LeavesAFreeThreadAsItIs) {
  const cpu_set_t before = ownProcessors();
  { const AnyProcessor anyProcessor; }
  const cpu_set_t after = ownProcessors();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

}  // namespace
}  // namespace tavenhall::test
