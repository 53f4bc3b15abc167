#include "platform/thread_processor.h"

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

TEST(ProcessorBond, GivesBackNoMoreThanTheThreadHad) {
  const int only = currentProcessor();
  cpu_set_t few;
  CPU_ZERO(&few);
  CPU_SET(only, &few);
  ASSERT_EQ(sched_setaffinity(0, sizeof few, &few), 0);
  ProcessorBond bond;
  bond.moveTo(only);
  bond.release();
  EXPECT_TRUE(isBoundTo(only));
}

TEST(ProcessorBond, NoProcessorChangesNothing) {
  const cpu_set_t before = ownProcessors();
  ProcessorBond bond;
  bond.moveTo(-1);
  const cpu_set_t after = ownProcessors();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

}  // namespace
}  // namespace tavenhall::test
