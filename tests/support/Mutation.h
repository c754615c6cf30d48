#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <string>

namespace quorel::test {

double secondsSince(std::chrono::steady_clock::time_point start);

/// The most memory that the process has ever had, in bytes.
int64_t peakMemory();

/// One to seven changes, most of them where the headers are, or the end cut off.
std::string mutated(std::string bytes, std::minstd_rand& random);

/// How many files a test is to try: what the environment variable QUOREL_MUTATIONS says, else 300.
int mutationCount();

} // namespace quorel::test
