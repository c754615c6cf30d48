#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quorel::test {

/// The processor time that this thread has used, in seconds: what a bound on work is told by on a
/// machine that others keep busy.
double processorSeconds();

/// The most memory that the process has ever had, in bytes.
int64_t peakMemory();

/// Gives damaged copies of these files to `read`, one by one: 300, or as many as the environment
/// variable QUOREL_MUTATIONS says. Fails, and keeps the copy, where one takes longer than so many
/// seconds; fails where a quarter or less could be read, or all took much memory.
void readMutations(const std::vector<std::string>& seeds, double longest,
                   const std::function<bool(const std::string& path)>& read);

/// The files of the corpus of audio files beside the project; none where there is no such.
std::vector<std::string> corpusFiles();

} // namespace quorel::test
