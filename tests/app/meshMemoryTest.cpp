// The memory guard: estimate against real allocation, and the one-line end when allocation fails.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "app/meshMemory.h"
#include "domain/bcDomain.h"
#include "project/applyParameters.h"
#include "solver/solverCommon.h"
#include "testGrid.h"
#include "testSupport.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

std::size_t heapInUse() {
  const struct mallinfo2 m = mallinfo2();
  return m.uordblks + m.hblkhd;
}

TEST(MeshMemory, TheEstimateCoversWhatTheDomainAndTheSolverAllocate) {
  if (sanitized) GTEST_SKIP() << "the sanitizer's allocator keeps its own counts";
  for (int cmode : {0, 1}) {
    for (int age : {0, 1}) {
      marv::appConfig cfg;
      marv::testing::setGrid(cfg, 40, 30, 20);
      marv::testing::setTiles(cfg, 1, 1, 1);
      cfg.cmode = cmode;
      cfg.ageFlag = static_cast<std::uint8_t>(age);
      marv::setColourTables(cfg);
      const std::size_t before = heapInUse();
      {
        marv::bcDomain domain;
        marv::constructDomain(domain, cfg);
        std::unique_ptr<marv::solverCommon> solver = marv::makeSolver(cfg, domain);
        const std::size_t used = heapInUse() - before;
        const std::uint64_t estimate = marv::meshMemoryBytes(cfg);
        EXPECT_GE(estimate, used) << "cmode " << cmode << " age " << age;
        EXPECT_LE(estimate, used * 2) << "cmode " << cmode << " age " << age << ": far above what is used";
      }
    }
  }
}

TEST(MeshMemory, AFailedAllocationEndsWithOneLineAndStatusOne) {
  if (sanitized) GTEST_SKIP() << "the sanitizer reports failed allocations itself";
  const std::filesystem::path folder = marvtest::scratchFolder("oom"), said = folder / "said.txt";
  const pid_t pid = fork();
  if (pid == 0) {
    if (std::freopen(said.c_str(), "w", stderr) == nullptr) _exit(2);
    marv::endOnAllocationFailure("marvanesse-test");
    volatile std::size_t huge = static_cast<std::size_t>(1) << 50;  // a PiB
    void* block = ::operator new(huge);
    std::printf("%p\n", block);  // keeps the allocation from being left out
    _exit(0);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  const std::string text = marvtest::readText(said);
  std::filesystem::remove_all(folder);
  ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal instead of an exit";
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_TRUE(text.starts_with("marvanesse-test: out of memory")) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
}

}  // namespace
