// ID3v2 tags: their header and frames, wherever in a file they begin.
#include "Require.h"
#include "audio/decode/InputFile.h"
#include "media/tags/Id3Reader.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

using quorel::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const int memory = ::memfd_create("fuzz", MFD_CLOEXEC);
    require(memory >= 0, "there is memory for the file");
    require(::write(memory, data, size) == static_cast<ssize_t>(size), "the file is written");
    std::string error;
    const auto file = quorel::InputFile::open("/proc/self/fd/" + std::to_string(memory), error);
    require(file.has_value(), "the file opens");
    for (const int64_t begin : {int64_t{0}, int64_t{20}}) { // behind the heads of WAV and AIFF
        for (const quorel::Id3Item& item : quorel::readId3Tag(*file, begin, file->size())) {
            require(!item.values.isEmpty(), "an item has a value");
            require(item.id.size() == 4, "a frame's name has four letters");
        }
    }
    ::close(memory);
    return 0;
}
